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

// Tells how hard the device throttles for heat. Uses the AIDL thermal HAL where the device declares
// it, the HIDL 2.0 one otherwise. The constructor starts a worker thread that makes the only
// attempt to connect; if it fails, the object stays without a connection.
//
// Threading:  GetCpuSeverity() locks, across the HAL's answer.
// Ownership:  when the object is destroyed, the worker may still be waiting for a HAL that never
//             starts. It is not stopped, and does not use the object any more.
// Blocking:   the constructor waits 10 ms at most for the connection, GetCpuSeverity() for the HAL.
// Errors:     logged; see GetCpuSeverity().
class FP_UTILS_EXPORT Thermal {
 public:
  // The instance of the process, made on first use and never destroyed.
  static Thermal& GetInstance();

  Thermal();
  ~Thermal();
  Thermal(const Thermal&) = delete;
  Thermal& operator=(const Thermal&) = delete;

  // The throttling severity, 0 (none) to 6 (shutdown), of the first skin sensor; 0 also when the
  // HAL fails or knows no such sensor. -ENODEV while not connected.
  int32_t GetCpuSeverity();

 private:
  class ConnectThermalHalThread;

  std::mutex mutex_;

  // Guarded by mutex_.
  sp<hardware::thermal::V2_0::IThermal> thermal_ FP_GUARDED_BY(mutex_);

  // Constant after construction.
  sp<ConnectThermalHalThread> connect_thermal_hal_thread_;
  const std::shared_ptr<LivenessGuard> liveness_;  // shared with the worker

  // Whether thermal_ is set, for the constructor, which must not wait for the lock.
  std::atomic<bool> connected_ = false;
};

}  // namespace android::fp_utils
