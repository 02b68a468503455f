// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include <utils/StrongPointer.h>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::hardware::thermal::V2_0 {
struct IThermal;
}  // namespace android::hardware::thermal::V2_0

namespace android::fp_utils {

class LivenessGuard;

// Reports how severely the device throttles because of heat. Uses the AIDL thermal HAL if the
// device declares it, otherwise the HIDL 2.0 one. The constructor starts a worker thread that tries
// once to connect. If that fails, the object stays without a connection.
//
// Threading:  GetCpuSeverity() locks, and holds the lock while it waits for the HAL.
// Ownership:  when the object is destroyed, the worker may still be waiting for a HAL that never
//             starts. The worker is not stopped, but no longer uses the object.
// Blocking:   the constructor waits at most 10 ms for the connection. GetCpuSeverity() waits for
//             the HAL.
// Errors:     logged; see GetCpuSeverity().
class FP_UTILS_EXPORT Thermal {
 public:
  // The process-wide instance, created on first use and never destroyed.
  static Thermal& GetInstance();

  Thermal();
  ~Thermal();
  Thermal(const Thermal&) = delete;
  Thermal& operator=(const Thermal&) = delete;

  // Returns the throttling severity of the first skin sensor, 0 (none) to 6 (shutdown). Also
  // returns 0 if the HAL fails or has no skin sensor. Returns -ENODEV while not connected.
  int32_t GetCpuSeverity();

 private:
  class ConnectThermalHalThread;

  std::mutex mutex_;

  // Guarded by mutex_.
  sp<hardware::thermal::V2_0::IThermal> thermal_ FP_GUARDED_BY(mutex_);

  // Constant after construction.
  sp<ConnectThermalHalThread> connect_thermal_hal_thread_;
  const std::shared_ptr<LivenessGuard> liveness_;  // shared with the worker

  // Whether thermal_ is set. The constructor reads this flag, because it must not wait for the
  // lock.
  std::atomic<bool> connected_ = false;
};

}  // namespace android::fp_utils
