// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fps_touch_handler.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include <android-base/properties.h>

#include "common/log.h"
#include "connectors/lock_unless.h"
#include "connectors/touch_polling_worker.h"
#include "connectors/touch_report.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "FpsTouchHandler";

uint32_t ScalingFactor() {
  return base::GetUintProperty<uint32_t>("persist.vendor.udfps.fth.touch_resolution_scaling_factor",
                                         1, 4294967295U);
}

// Wraps around in 32 bits, as the device's own arithmetic does.
int32_t Scale(int32_t value, uint32_t factor) {
  return static_cast<int32_t>(static_cast<uint32_t>(value) * factor);
}

// Sets the cleared form. Every byte except the type is zero, padding included.
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

bool FpsTouchHandler::Configure(const TouchConfig& config) {
  if (!IsFpsTouchHandlerSupported()) {
    FP_LOG_ERROR(kTag, "%s: FpsTouchHandler is not supported on this device", "Configure");
    return false;
  }
  if (!Lock()) {
    return SetSensingArea(config);  // there is a worker, hence also an open device
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  if (touch_fd_ < 0 && !OpenTouchDevice()) {
    FP_LOG_ERROR(kTag, "%s: failed to open touch device", "Configure");
    return false;
  }
  if (touch_polling_worker_thread_ == nullptr && !CreateWorker()) {
    return false;
  }
  return SetSensingArea(config);
}

bool FpsTouchHandler::SetSensingArea(const TouchConfig& config) {
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

bool FpsTouchHandler::Start() {
  if (!Lock()) {
    FP_LOG_DEBUG(kTag, "%s", "Start");
    return RefuseStart();
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  FP_LOG_DEBUG(kTag, "%s", "Start");
  if (!configured_) {
    FP_LOG_ERROR(kTag, "%s: configuration has not been completed", "Start");
    return false;
  }
  if (worker_state_ == WorkerState::kEnding && IsOnWorker()) {
    return RefuseStart();
  }
  if (worker_state_ != WorkerState::kRunning) {
    JoinWorker();
    worker_state_ = WorkerState::kRunning;
    touch_polling_worker_thread_->Start();
  }
  return true;
}

bool FpsTouchHandler::RefuseStart() {
  FP_LOG_ERROR(kTag, "%s: the worker is ending and cannot start itself", "Start");
  return false;
}

bool FpsTouchHandler::Stop() {
  if (IsOnWorker()) {
    StopFromCallback();
    return true;
  }
  const std::lock_guard lock(mutex_);
  FP_LOG_DEBUG(kTag, "%s", "Stop");
  JoinWorker();
  return true;
}

void FpsTouchHandler::StopFromCallback() {
  if (!Lock()) {
    FP_LOG_DEBUG(kTag, "%s", "Stop");
    worker_state_ = WorkerState::kJoiningEnding;
    return;
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  FP_LOG_DEBUG(kTag, "%s", "Stop");
  if (worker_state_ == WorkerState::kRunning) {
    worker_state_ = WorkerState::kEnding;
    touch_polling_worker_thread_->RequestEnd();
  }
}

void FpsTouchHandler::JoinWorker() {
  if (worker_state_ == WorkerState::kRunning) {
    worker_state_ = WorkerState::kJoining;
    touch_polling_worker_thread_->Stop();
  } else if (worker_state_ == WorkerState::kEnding) {
    worker_state_ = WorkerState::kJoiningEnding;
    touch_polling_worker_thread_->requestExitAndWait();
  }
  worker_state_ = WorkerState::kStopped;
}

bool FpsTouchHandler::IsOnWorker() const { return worker_id_.load() == std::this_thread::get_id(); }

bool FpsTouchHandler::Lock() {
  if (!IsOnWorker()) {
    mutex_.lock();
    return true;
  }
  return LockUnlessJoining();
}

bool FpsTouchHandler::LockUnlessJoining() {
  return LockUnless(mutex_, [this] {
    const WorkerState state = worker_state_;
    return state == WorkerState::kJoining || state == WorkerState::kJoiningEnding;
  });
}

// FingerState calls this with its own lock held, which a callback may be waiting for. While Stop()
// waits for that callback, the request is made without the lock.
bool FpsTouchHandler::EnableLptwEventReport(bool enable) {
  if (!LockUnlessJoining()) {
    return SetLptwEventReport(enable);
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  return SetLptwEventReport(enable);
}

bool FpsTouchHandler::SetLptwEventReport(bool enable) {
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
  touch_device::Reports reports;  // not zeroed, because most reads fill only a small part
  ssize_t bytes = 0;
  {
    if (!LockUnlessJoining()) {
      return true;  // the worker has to end; the device did not fail
    }
    const std::lock_guard lock(mutex_, std::adopt_lock);
    if (touch_fd_ < 0) {
      FP_LOG_ERROR(kTag, "%s: invalid fd", "ReadTouchEvent");
      return false;
    }
    bytes = read(touch_fd_, &reports, sizeof reports);
  }
  if (bytes <= 0) {
    return bytes < 0 && errno == EINTR;  // only a signal says nothing about the device
  }
  const uint32_t count = touch_device::ZeroFillShortRead(reports, static_cast<size_t>(bytes));
  for (uint32_t i = 0; i < count && !IsDroppingRest(); ++i) {
    if (touch_device::IsValid(reports.records[i])) {
      Deliver(touch_device::Decode(reports.records[i], resolution_scaling_factor_));
    } else {
      FP_LOG_ERROR(kTag, "%s: invalid event", "ReadTouchEvent");
    }
  }
  return true;
}

bool FpsTouchHandler::IsDroppingRest() const {
  const WorkerState state = worker_state_;
  return state == WorkerState::kEnding || state == WorkerState::kJoiningEnding;
}

void FpsTouchHandler::Deliver(const TouchEvent& event) {
  {
    const std::lock_guard lock(touch_event_mutex_);
    touch_event_ = event;
  }
  if (!touch_event_callback_) {
    FP_LOG_ERROR(kTag, "%s: no callback is installed", "ReadTouchEvent");
    abort();  // a fault of the service that must not go unnoticed
  }
  // Passes a copy, because another thread may clear touch_event_ during the callback.
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
