// SPDX-License-Identifier: Apache-2.0
#include "sensorndkbridge/looper.h"

#include <algorithm>
#include <chrono>

#include "sensorndkbridge/calls.h"
#include "sensorndkbridge/handles.h"

int ALooper::Poll(int timeout_ms) {
  std::optional<int> fault;
  const auto has_result = [this, &fault] {
    if (fp_host::AreCallsInstrumented()) {
      fault = fp_host::TakeFault("ALooper_pollOnce");
    }
    return fault || awoken_ || !ready_.empty();
  };
  std::unique_lock lock(mutex_);
  ++waiting_;
  if (timeout_ms < 0) {
    changed_.wait(lock, has_result);
  } else {
    changed_.wait_for(lock, std::chrono::milliseconds(timeout_ms), has_result);
  }
  --waiting_;
  if (fault) {
    return *fault;
  }
  if (!ready_.empty()) {
    ready_.clear();  // data comes first; a wake is reported by the next poll
    return ALOOPER_POLL_CALLBACK;
  }
  if (awoken_) {
    awoken_ = false;
    return ALOOPER_POLL_WAKE;
  }
  return ALOOPER_POLL_TIMEOUT;
}

void ALooper::Wake() {
  const std::lock_guard lock(mutex_);
  awoken_ = true;
  changed_.notify_one();
}

void ALooper::SignalData(ASensorEventQueue* queue) {
  const std::lock_guard lock(mutex_);
  if (!fp_host::IsAlive(queue)) {
    return;  // the queue has been destroyed in the meantime
  }
  if (std::find(ready_.begin(), ready_.end(), queue) == ready_.end()) {
    ready_.push_back(queue);
  }
  changed_.notify_one();
}

void ALooper::Forget(ASensorEventQueue* queue) {
  const std::lock_guard lock(mutex_);
  std::erase(ready_, queue);
}

void ALooper::Recheck() {
  const std::lock_guard lock(mutex_);
  changed_.notify_all();
}

bool ALooper::IsIdle(int waiting_threads) {
  const std::lock_guard lock(mutex_);
  return waiting_ == waiting_threads && ready_.empty() && !awoken_;
}

namespace fp_host {

ALooper& TheLooper() {
  static auto* const looper = new ALooper;
  return *looper;
}

bool ArePollersWaiting(int threads) { return TheLooper().IsIdle(threads); }

}  // namespace fp_host

using fp_host::PlatformCall;
using fp_host::TheLooper;

ALooper* ALooper_forThread() {
  return PlatformCall("ALooper_forThread", [] { return &TheLooper(); });
}

ALooper* ALooper_prepare(int opts) {
  return PlatformCall(
      "ALooper_prepare", [] { return &TheLooper(); }, opts);
}

int ALooper_pollOnce(int timeout_ms, int* /*out_fd*/, int* /*out_events*/, void** /*out_data*/) {
  return PlatformCall(
      "ALooper_pollOnce", [timeout_ms] { return TheLooper().Poll(timeout_ms); }, timeout_ms);
}

void ALooper_wake(ALooper* looper) {
  if (looper == nullptr) {
    fp_host::AbortForArgument("ALooper_wake", "null");
  }
  PlatformCall(
      "ALooper_wake",
      [looper] {
        looper->Wake();
        return 0;
      },
      looper);
}
