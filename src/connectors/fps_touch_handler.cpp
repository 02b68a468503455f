// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fps_touch_handler.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include <android-base/properties.h>

#include "common/log.h"
#include "connectors/touch_polling_worker.h"
#include "connectors/touch_report.h"

namespace android::fp_utils {
namespace {

constexpr const char* kTag = log_tag::kFpsTouchHandler;

uint32_t ScalingFactor() {
  return base::GetUintProperty<uint32_t>("persist.vendor.udfps.fth.touch_resolution_scaling_factor",
                                         1, 4294967295U);
}

// Wraps around in 32 bits, as the device's own arithmetic does.
int32_t Scale(int32_t value, uint32_t factor) {
  return static_cast<int32_t>(static_cast<uint32_t>(value) * factor);
}

// Every byte but the type is zero, padding included: services copy events as bytes.
void Clear(TouchEvent& event) {
  memset(static_cast<void*>(&event), 0, sizeof event);
  event.type = -1;
}

}  // namespace

bool IsFpsTouchHandlerSupported() {
  static const bool supported =
      base::GetBoolProperty("persist.vendor.udfps.fps_touch_handler_supported", true);
  return supported;
}

FpsTouchHandler::FpsTouchHandler() : resolution_scaling_factor_(ScalingFactor()) {
  Clear(touch_event_);
}

FpsTouchHandler::~FpsTouchHandler() = default;

bool FpsTouchHandler::Configure(const TouchConfig& config)
    FP_NO_THREAD_SAFETY_ANALYSIS {  // as Start()
  if (!IsFpsTouchHandlerSupported()) {
    FP_LOG_ERROR(kTag, "%s: FpsTouchHandler is not supported on this device", "Configure");
    return false;
  }
  // Without the lock, when Stop() waits for this very worker, device and worker are there already.
  const std::unique_lock lock = IsOnWorker() ? LockUnlessStopping() : std::unique_lock(mutex_);
  if (touch_fd_ < 0 && !OpenTouchDevice()) {
    FP_LOG_ERROR(kTag, "%s: failed to open touch device", "Configure");
    return false;
  }
  if (touch_polling_worker_thread_ == nullptr && !CreateWorker()) {
    return false;
  }
  touch_device::Configuration block = {
      .left = Scale(config.left, resolution_scaling_factor_),
      .top = Scale(config.top, resolution_scaling_factor_),
      .right = Scale(config.right, resolution_scaling_factor_),
      .bottom = Scale(config.bottom, resolution_scaling_factor_),
  };
  FP_LOG_DEBUG(kTag, "%s: left:%d, right:%d, top:%d, bottom:%d", "Configure", block.left,
               block.right, block.top, block.bottom);
  const int result = ioctl(touch_fd_, touch_device::kSetSensingArea, &block);
  if (result != 0) {
    FP_LOG_ERROR(kTag, "%s: fth ioctl %d error %d", "Configure", touch_device::kSetSensingArea,
                 result);
    return false;
  }
  configured_ = true;
  return true;
}

bool FpsTouchHandler::OpenTouchDevice() {
  const std::string path =
      base::GetProperty("persist.vendor.udfps.fth.touch_dev_path", "/dev/fth_fd");
  FP_LOG_DEBUG(kTag, "%s: opening device: %s", "OpenTouchDevice", path.c_str());
  touch_fd_ = open(path.c_str(), O_RDWR);  // NOLINT(android-cloexec-open): as the driver expects
  if (touch_fd_ < 0) {
    FP_LOG_ERROR(kTag, "%s: could not open %s, %s\n", "OpenTouchDevice", path.c_str(),
                 strerror(errno));
    return false;
  }
  return true;
}

bool FpsTouchHandler::CreateWorker() {
  touch_polling_worker_thread_ = new TouchPollingWorkerThread(this);
  if (!touch_polling_worker_thread_->Init()) {
    FP_LOG_ERROR(kTag, "%s: failed to init touch_polling_worker_thread_", "Configure");
    touch_polling_worker_thread_.clear();
    return false;
  }
  return true;
}

bool FpsTouchHandler::Start() FP_NO_THREAD_SAFETY_ANALYSIS {  // of a lock that may not be taken
  const std::unique_lock lock = IsOnWorker() ? LockUnlessStopping() : std::unique_lock(mutex_);
  FP_LOG_DEBUG(kTag, "%s", "Start");
  if (!configured_) {
    FP_LOG_ERROR(kTag, "%s: configuration has not been completed", "Start");
    return false;
  }
  if (!lock.owns_lock() || (ending_itself_ && IsOnWorker())) {
    FP_LOG_ERROR(kTag, "%s: the worker is ending and cannot start itself", "Start");
    return false;
  }
  if (!started_) {
    WaitForWorkerEndingItself();
    dropping_rest_ = false;
    touch_polling_worker_thread_->Start();
    started_ = true;
  }
  return true;
}

bool FpsTouchHandler::Stop() FP_NO_THREAD_SAFETY_ANALYSIS {  // of a lock that may not be taken
  if (IsOnWorker()) {
    const std::unique_lock lock = LockUnlessStopping();
    FP_LOG_DEBUG(kTag, "%s", "Stop");
    dropping_rest_ = true;
    if (lock.owns_lock() && started_) {
      touch_polling_worker_thread_->RequestEnd();
      ending_itself_ = true;
      started_ = false;
    }
    return true;
  }
  const std::lock_guard lock(mutex_);
  stopping_ = true;
  FP_LOG_DEBUG(kTag, "%s", "Stop");
  if (started_) {
    touch_polling_worker_thread_->Stop();
    started_ = false;
  } else {
    WaitForWorkerEndingItself();
  }
  stopping_ = false;
  return true;
}

void FpsTouchHandler::WaitForWorkerEndingItself() {
  if (ending_itself_) {
    stopping_ = true;
    touch_polling_worker_thread_->requestExitAndWait();
    stopping_ = false;
    ending_itself_ = false;
  }
}

bool FpsTouchHandler::IsOnWorker() const { return worker_id_.load() == std::this_thread::get_id(); }

// The lock, or none when Stop() holds it to wait for the worker. Whoever is on the worker, or holds
// what a callback on the worker is waiting for, must not wait for that Stop() in turn.
std::unique_lock<std::mutex> FpsTouchHandler::LockUnlessStopping() {
  // Not a timed lock: its deadline would move with the wall clock.
  constexpr std::chrono::microseconds kMoment{100};
  std::unique_lock lock(mutex_, std::try_to_lock);
  while (!lock.owns_lock() && !stopping_ && !lock.try_lock()) {
    std::this_thread::sleep_for(kMoment);
  }
  return lock;
}

bool FpsTouchHandler::EnableLptwEventReport(bool enable) {
  // FingerState calls this with its own lock, for which a callback may be waiting. While Stop()
  // waits for that callback, the request goes out without the lock.
  const std::unique_lock lock = LockUnlessStopping();
  FP_LOG_DEBUG(kTag, "%s:%d", "EnableLptwEventReport", enable ? 1 : 0);
  if (!configured_) {
    FP_LOG_ERROR(kTag, "%s: configuration has not been completed", "EnableLptwEventReport");
    return false;
  }
  const unsigned request = enable ? touch_device::kEnableLptw : touch_device::kDisableLptw;
  const int result = ioctl(touch_fd_, request, nullptr);
  if (result != 0) {
    FP_LOG_ERROR(kTag, "%s: fth ioctl %d error %d", "EnableLptwEventReport", request, result);
    return false;
  }
  return true;
}

bool FpsTouchHandler::ReadTouchEvent() {
  if (!configured_) {
    FP_LOG_ERROR(kTag, "%s: configuration has not been completed", "ReadTouchEvent");
    return false;
  }
  touch_device::Reports reports;  // not zeroed: most reads fill little of it
  ssize_t bytes = 0;
  {
    const std::unique_lock lock = LockUnlessStopping();
    if (!lock.owns_lock()) {
      return true;  // nothing wrong, but the worker is wanted elsewhere
    }
    if (touch_fd_ < 0) {
      FP_LOG_ERROR(kTag, "%s: invalid fd", "ReadTouchEvent");
      return false;
    }
    bytes = read(touch_fd_, &reports, sizeof reports);
  }
  if (bytes <= 0) {
    return bytes < 0 && errno == EINTR;  // only a signal says nothing about the device
  }
  const uint32_t count = touch_device::CompleteWithZeros(reports, static_cast<size_t>(bytes));
  for (uint32_t i = 0; i < count && !dropping_rest_; ++i) {
    if (touch_device::IsValid(reports.records[i])) {
      Deliver(touch_device::Decode(reports.records[i], resolution_scaling_factor_));
    } else {
      FP_LOG_ERROR(kTag, "%s: invalid event", "ReadTouchEvent");
    }
  }
  return true;
}

void FpsTouchHandler::Deliver(const TouchEvent& event) {
  {
    const std::lock_guard lock(touch_event_mutex_);
    touch_event_ = event;
  }
  if (!touch_event_callback_) {
    FP_LOG_ERROR(kTag, "%s: no callback is installed", "ReadTouchEvent");
    abort();  // a service that polls without one is broken, and has to show it at once
  }
  // The argument is not touch_event_ itself, which a finger up may clear meanwhile.
  touch_event_callback_(event);
}

TouchEvent FpsTouchHandler::GetTouchEvent() const {
  const std::lock_guard lock(touch_event_mutex_);
  return touch_event_;
}

void FpsTouchHandler::ClearTouchEvent() {
  const std::lock_guard lock(touch_event_mutex_);
  Clear(touch_event_);
}

}  // namespace android::fp_utils
