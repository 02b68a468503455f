// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

#include <utils/StrongPointer.h>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Whether the property persist.vendor.udfps.fps_touch_handler_supported is true (the default). Read
// at the first call only; the result holds for the life of the process.
FP_UTILS_EXPORT bool IsFpsTouchHandlerSupported();

// One report of the touch controller. The default is the cleared form: type -1, the rest zero. The
// controller defines the meaning of type, info, flags and stamp and the order of coords.
struct TouchEvent {
  int32_t type = -1;  // 0, 1 or 2; -1: no report, or an unknown type
  uint32_t info = 0;
  int32_t id = 0;                     // -1: coordinates are not scaled
  std::array<float, 20> coords = {};  // display coordinates
  std::array<uint8_t, 10> flags = {};
  std::array<float, 2> signed_coords = {};  // display coordinates
  float angle = 0;                          // radians
  uint64_t stamp = 0;
};

// Client of the fingerprint touch-handler device. Tells it which rectangle of the screen covers the
// sensor, switches its LPTW event report, and passes its touch reports to a callback.
//
// Use: install touch_event_callback_, Configure(), Start(); Stop() when done. Configure() again
// moves the rectangle.
//
// Threading:  Configure, Start, Stop and EnableLptwEventReport lock and may come from any thread,
//             the callback included. The callback runs on the worker thread without a lock.
// Ownership:  the device stays open and the worker object is reused for the life of the handler.
//             The destructor does not stop the worker: call Stop() before it.
// Blocking:   ioctls. Stop() waits for a running callback, and so do a Configure() or Start() that
//             run in the meantime: their callers must hold no lock that the callback takes. Stop()
//             returns after the last callback. Called from a callback, it returns at once: the
//             worker ends when the callback returns, the rest of its buffer is dropped, and only
//             another thread can Start() it again.
// Errors:     logged and returned as false. A failing or missing device is logged once and polled
//             until it works again. Retry delay: 10 ms, doubling to 1 s.
// Units:      display coordinates in pixels. A pixel is resolution_scaling_factor device units.
class FP_UTILS_EXPORT FpsTouchHandler {
 public:
  class TouchPollingWorkerThread;

  // The sensing area in display coordinates.
  struct TouchConfig {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
  };

  // The process-wide instance, created on first use and never destroyed.
  static FpsTouchHandler& GetInstance() {
    static FpsTouchHandler* const instance = new FpsTouchHandler;
    return *instance;
  }

  FpsTouchHandler();
  ~FpsTouchHandler();
  FpsTouchHandler(const FpsTouchHandler&) = delete;
  FpsTouchHandler& operator=(const FpsTouchHandler&) = delete;

  // Opens the device unless it is open, and sets its sensing area.
  bool Configure(const TouchConfig& config);

  // Starts the worker. False before a successful Configure().
  bool Start();

  // Ends the worker. Always true.
  bool Stop();

  bool EnableLptwEventReport(bool enable);

  // Reads one buffer of reports and delivers them; called by the worker. False if the read failed
  // or returned nothing.
  bool ReadTouchEvent();

  // The last report, or the cleared form. Safe from any thread.
  TouchEvent GetTouchEvent() const;
  void ClearTouchEvent();

  bool IsConfigured() const { return configured_; }
  uint32_t GetResolutionScalingFactor() const { return resolution_scaling_factor_; }

 private:
  friend class TouchPollingWorkerThread;

  // In kJoining and kJoiningEnding a thread that holds mutex_ waits for the worker: what mutex_
  // guards does not change, and the worker must not wait for mutex_.
  //   kStopped --Start()--> kRunning --Stop()--> kJoining --> kStopped
  //   kRunning --Stop() in a callback--> kEnding --Stop() or Start()--> kJoiningEnding --> kStopped
  //   kJoining --Stop() in a callback--> kJoiningEnding
  // In kEnding and kJoiningEnding, reports that have been read are no longer delivered.
  enum class WorkerState { kStopped, kRunning, kEnding, kJoining, kJoiningEnding };

  bool OpenTouchDevice() FP_REQUIRES(mutex_);
  bool CreateWorker() FP_REQUIRES(mutex_);
  void JoinWorker() FP_REQUIRES(mutex_);
  static bool RefuseStart();
  void StopFromCallback();
  bool IsOnWorker() const;
  bool IsDroppingRest() const;

  // Both lock mutex_ and return true. While the worker is being joined, LockUnlessJoining() returns
  // false without the lock; Lock() does so only on the worker.
  [[nodiscard]] bool LockUnlessJoining() FP_TRY_ACQUIRE(true, mutex_);
  [[nodiscard]] bool Lock() FP_TRY_ACQUIRE(true, mutex_);

  // Call them with mutex_ held, or while the worker is being joined.
  bool SetSensingArea(const TouchConfig& config);
  bool SetLptwEventReport(bool enable);

  void Deliver(const TouchEvent& event);

  android::sp<TouchPollingWorkerThread> touch_polling_worker_thread_ FP_GUARDED_BY(mutex_);
  mutable std::mutex mutex_;
  std::atomic<bool> configured_ = false;  // never false again; the worker reads it without the lock
  std::atomic<WorkerState> worker_state_ = WorkerState::kStopped;
  std::atomic<std::thread::id> worker_id_ = std::thread::id();  // none unless it runs

 public:
  // Installed by the service before Start(); calling an empty one aborts the process.
  std::function<void(const TouchEvent&)> touch_event_callback_;

 private:
  std::atomic<int32_t> touch_fd_ = -1;
  const uint32_t resolution_scaling_factor_;

  // Guards touch_event_ while it is copied.
  mutable std::mutex touch_event_mutex_;

 public:
  // The last report, or the cleared form. Not locked: reading it is safe only while no report
  // arrives and nothing clears it. Use GetTouchEvent(); the callback gets a copy.
  TouchEvent touch_event_;
};

}  // namespace android::fp_utils
