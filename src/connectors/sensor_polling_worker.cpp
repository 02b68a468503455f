// SPDX-License-Identifier: Apache-2.0
#include "connectors/sensor_polling_worker.h"

#include <chrono>
#include <thread>

#include <android/looper.h>

namespace android::fp_utils {
namespace {

// How long Stop() waits for the worker to end before it wakes the looper again.
constexpr std::chrono::milliseconds kWakeInterval{1};

thread_local const SensorListener::SensorPollingWorkerThread* current_worker = nullptr;

}  // namespace

bool SensorListener::SensorPollingWorkerThread::Start() {
  return isRunning() || run("SensorPollingWorkerThread", 0, 0) == OK;
}

bool SensorListener::SensorPollingWorkerThread::Stop() {
  if (isRunning()) {
    requestExit();
    // Another thread that polls the same looper can consume the wake, so one wake may not be
    // enough. A superfluous one only ends a poll early.
    do {
      ALooper_wake(listener_->looper_);
      std::this_thread::sleep_for(kWakeInterval);
    } while (isRunning());
    requestExitAndWait();
  }
  return true;
}

bool SensorListener::SensorPollingWorkerThread::IsCurrent() const { return current_worker == this; }

bool SensorListener::SensorPollingWorkerThread::IsCurrentWorkerOf(const SensorListener* listener) {
  return current_worker != nullptr && current_worker->listener_ == listener;
}

bool SensorListener::SensorPollingWorkerThread::IsEndingWorkerOf(const SensorListener* listener) {
  return IsCurrentWorkerOf(listener) && current_worker->exitPending();
}

bool SensorListener::SensorPollingWorkerThread::threadLoop() {
  current_worker = this;
  while (!exitPending()) {
    listener_->PollSensorEvent();
  }
  return true;
}

}  // namespace android::fp_utils
