// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include <android/hardware/thermal/1.0/types.h>
#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

namespace android::hardware::thermal::V1_0 {

// Each operation calls its callback exactly once before it returns, unless the transport fails.
struct IThermal : public ::android::hidl::base::V1_0::IBase {
  using getTemperatures_cb = std::function<void(
      const ThermalStatus& status, const ::android::hardware::hidl_vec<Temperature>& temperatures)>;
  virtual ::android::hardware::Return<void> getTemperatures(getTemperatures_cb _hidl_cb) = 0;

  using getCpuUsages_cb = std::function<void(
      const ThermalStatus& status, const ::android::hardware::hidl_vec<CpuUsage>& cpuUsages)>;
  virtual ::android::hardware::Return<void> getCpuUsages(getCpuUsages_cb _hidl_cb) = 0;

  using getCoolingDevices_cb = std::function<void(
      const ThermalStatus& status, const ::android::hardware::hidl_vec<CoolingDevice>& devices)>;
  virtual ::android::hardware::Return<void> getCoolingDevices(getCoolingDevices_cb _hidl_cb) = 0;
};

}  // namespace android::hardware::thermal::V1_0
