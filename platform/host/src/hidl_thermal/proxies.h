// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <android/hardware/thermal/2.0/IThermal.h>
#include <android/hardware/thermal/2.0/IThermalChangedCallback.h>

#include "hidl/remote.h"

namespace android::hardware::thermal::V2_0 {

class BpHwThermal : public fp_host::hidl::Proxy<IThermal> {
 public:
  using Proxy::Proxy;

  Return<void> getTemperatures(getTemperatures_cb _hidl_cb) override;
  Return<void> getCpuUsages(getCpuUsages_cb _hidl_cb) override;
  Return<void> getCoolingDevices(getCoolingDevices_cb _hidl_cb) override;
  Return<void> getCurrentTemperatures(bool filter_type, TemperatureType type,
                                      getCurrentTemperatures_cb _hidl_cb) override;
  Return<void> getTemperatureThresholds(bool filter_type, TemperatureType type,
                                        getTemperatureThresholds_cb _hidl_cb) override;
  Return<void> registerThermalChangedCallback(const sp<IThermalChangedCallback>& callback,
                                              bool filter_type, TemperatureType type,
                                              registerThermalChangedCallback_cb _hidl_cb) override;
  Return<void> unregisterThermalChangedCallback(
      const sp<IThermalChangedCallback>& callback,
      unregisterThermalChangedCallback_cb _hidl_cb) override;
  Return<void> getCurrentCoolingDevices(bool filter_type, CoolingType type,
                                        getCurrentCoolingDevices_cb _hidl_cb) override;
};

class BpHwThermalChangedCallback : public fp_host::hidl::Proxy<IThermalChangedCallback> {
 public:
  using Proxy::Proxy;

  Return<void> notifyThrottling(const Temperature& temperature) override;
};

}  // namespace android::hardware::thermal::V2_0
