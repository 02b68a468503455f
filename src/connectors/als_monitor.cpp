// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/als_monitor.h"

#include <cerrno>
#include <optional>

#include <android/sensor.h>
#include <utils/Errors.h>

#include "common/log.h"
#include "connectors/sensor_queue.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "AlsMonitor";

// GetLight() is on the capture path. An event that arrives later is read by the next call.
constexpr int kPollTimeoutMs = 1;

}  // namespace

AlsMonitor* AlsMonitor::instance_ = nullptr;
std::mutex& AlsMonitor::mutex_ = *new std::mutex;

AlsMonitor* AlsMonitor::GetInstance() {
  const std::lock_guard lock(mutex_);
  if (instance_ == nullptr) {
    instance_ = new AlsMonitor;
  }
  return instance_;
}

void AlsMonitor::OnSystemServerDeath() {
  const std::lock_guard lock(mutex_);
  FP_LOG_INFO(kTag, "system server died.");
  delete instance_;
  instance_ = nullptr;
}

bool AlsMonitor::ConnectSensorManagerIfNeeded() {
  const std::lock_guard lock(mutex_);
  return Connect();
}

bool AlsMonitor::Connect() {
  if (this != instance_) {
    return false;  // deleted while the caller waited for the lock: no member may be read
  }
  ASensorManager* manager = GetSensorManager(kTag);
  if (manager == nullptr) {
    return false;
  }
  if (manager != sensor_manager_) {
    sensor_manager_ = manager;
    event_queue_ = nullptr;  // destroyed together with the old sensor service
    sensor_ = nullptr;
    started_ = false;
    FP_LOG_DEBUG(kTag, "Successfully connected to Sensor Manager.");
  }
  return true;
}

bool AlsMonitor::ConnectForOperation() {
  if (!Connect()) {
    FP_LOG_ERROR(kTag, "Failed to connect sensor manager.");
    return false;
  }
  return true;
}

int AlsMonitor::StartSampling() {
  const std::lock_guard lock(mutex_);
  if (!ConnectForOperation()) {
    return -ENOMEM;
  }
  if (sensor_ == nullptr) {
    sensor_ = ASensorManager_getDefaultSensor(sensor_manager_, ASENSOR_TYPE_LIGHT);
  }
  if (sensor_ == nullptr) {
    FP_LOG_ERROR(kTag, "Failed to get sensor.");
    return UNEXPECTED_NULL;
  }
  if (!PrepareQueue(kTag, sensor_manager_, looper_, event_queue_)) {
    return -ENOMEM;
  }
  const int error = RegisterSensor(event_queue_, sensor_);
  if (error != 0) {
    FP_LOG_ERROR(kTag, "%s: Failed to register sensor, err=%d.", "StartSampling", error);
    return error;
  }
  FP_LOG_DEBUG(kTag, "Sampling is started.");
  started_ = true;
  return 0;
}

int AlsMonitor::StopSampling() {
  const std::lock_guard lock(mutex_);
  if (!ConnectForOperation()) {
    return -ENOMEM;
  }
  if (event_queue_ != nullptr) {
    if (sensor_ != nullptr) {
      ASensorEventQueue_disableSensor(event_queue_, sensor_);
    }
    ASensorManager_destroyEventQueue(sensor_manager_, event_queue_);
    event_queue_ = nullptr;
  }
  FP_LOG_DEBUG(kTag, "Sampling is stopped.");
  started_ = false;
  return 0;
}

int AlsMonitor::GetLight(float* lux) {
  if (lux == nullptr) {
    FP_LOG_ERROR(kTag, "%s: lux is null.", "GetLight");
    return -EINVAL;
  }
  const std::lock_guard lock(mutex_);
  if (!ConnectForOperation()) {
    return -ENOMEM;
  }
  if (!started_) {
    FP_LOG_ERROR(kTag, "Sensor sampler is not started.");
    return UNKNOWN_ERROR;
  }
  if (const int error = Drain(); error != 0) {
    return error;
  }
  if (!has_sample_) {
    FP_LOG_ERROR(kTag, "Sample is not available.");
    return -EINVAL;
  }
  *lux = last_lux_;
  return 0;
}

int AlsMonitor::Drain() {
  // The result of the poll does not matter: another poller can have taken the signal of the events
  // in this queue, and this poll can have taken another poller's wake.
  std::optional<float> newest;
  const int error = DrainSensorEvents(
      kTag, kPollTimeoutMs,
      [queue = event_queue_](int /*polled*/, ASensorEvent* events) {
        return ASensorEventQueue_getEvents(queue, events, kSensorBatch);
      },
      [&newest](const ASensorEvent* events, ssize_t count) {
        newest = events[count - 1].light;
        return true;
      });
  if (newest) {
    has_sample_ = true;
    last_lux_ = *newest;
  }
  return error;
}

}  // namespace android::fp_utils
