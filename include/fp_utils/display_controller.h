// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

struct AIBinder_DeathRecipient;

namespace aidl::com::norvan::hardware::kestra::display {
class IDisplay;
}  // namespace aidl::com::norvan::hardware::kestra::display

namespace android::fp_utils {

// Switches the display's local high-brightness mode (LHBM), which lights the area over the sensor
// while a finger is captured. Connects to the display HAL on first use and again after the HAL has
// died.
//
// Threading:  SetLhbm() and BinderDied() lock; the lock is held across connection and service call.
//             The process needs a started binder thread pool, on which the HAL's death arrives.
// Ownership:  may be destroyed while connected. The destructor drops the connection and waits for a
//             death notification that is being delivered. It must not run during a call or inside
//             BinderOnDeath().
// Blocking:   the first switch after a start or a death waits until the display HAL is up; every
//             switch waits for the HAL's answer.
// Errors:     logged, and returned as negative codes; a failed switch-on also becomes a critical
//             error. Only a successful switch changes the known state.
// Units:      milliseconds.
class FP_UTILS_EXPORT DisplayController {
 public:
  DisplayController();
  ~DisplayController();
  DisplayController(const DisplayController&) = delete;
  DisplayController& operator=(const DisplayController&) = delete;

  // Returns 0 if the mode was switched or was already in the requested state, -ENODEV if the
  // display HAL cannot be reached, FAILED_TRANSACTION if it refused or the call failed. `elapsed`,
  // if not null, gets the duration of a successful switch, including the connection, and 0
  // otherwise.
  int SetLhbm(bool on, unsigned int* elapsed);

  // Connects unless connected. Returns 0 or -ENODEV; 0 also on a device that does not declare the
  // display HAL. SetLhbm() calls it with the lock held. Call it otherwise only while no other
  // thread uses the object.
  int ConnectDisplayHal();

  // The death recipient's callback; `cookie` is the controller. Does nothing if the controller has
  // been destroyed.
  static void BinderOnDeath(void* cookie);

  // Drops the connection, but keeps the known state: after a restart of the HAL, a switch to the
  // same state still returns 0 without a call.
  void BinderDied();

 private:
  bool Switch(bool on) FP_REQUIRES(mutex_);

  std::mutex mutex_;

  // Guarded by mutex_.
  std::shared_ptr<aidl::com::norvan::hardware::kestra::display::IDisplay> display_
      FP_GUARDED_BY(mutex_);  // null: not connected
  AIBinder_DeathRecipient* death_recipient_ FP_GUARDED_BY(mutex_) = nullptr;
  int32_t lhbm_state_ FP_GUARDED_BY(mutex_) = 0;  // set by the last successful switch
};

}  // namespace android::fp_utils
