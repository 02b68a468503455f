// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

#include <android/hardware/thermal/1.0/IThermal.h>
#include <android/hardware/thermal/2.0/IThermalChangedCallback.h>
#include <android/hardware/thermal/2.0/types.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

namespace android::hardware::thermal::V2_0 {

// Each operation calls its callback exactly once before it returns, unless the transport fails.
// With a filter, an operation covers only records of `type`.
struct IThermal : public ::android::hardware::thermal::V1_0::IThermal {
  static const char* descriptor;

  using getTemperatures_cb = ::android::hardware::thermal::V1_0::IThermal::getTemperatures_cb;
  ::android::hardware::Return<void> getTemperatures(getTemperatures_cb _hidl_cb) override = 0;
  using getCpuUsages_cb = ::android::hardware::thermal::V1_0::IThermal::getCpuUsages_cb;
  ::android::hardware::Return<void> getCpuUsages(getCpuUsages_cb _hidl_cb) override = 0;
  using getCoolingDevices_cb = ::android::hardware::thermal::V1_0::IThermal::getCoolingDevices_cb;
  ::android::hardware::Return<void> getCoolingDevices(getCoolingDevices_cb _hidl_cb) override = 0;

  using getCurrentTemperatures_cb =
      std::function<void(const ::android::hardware::thermal::V1_0::ThermalStatus& status,
                         const ::android::hardware::hidl_vec<Temperature>& temperatures)>;
  virtual ::android::hardware::Return<void> getCurrentTemperatures(
      bool filterType, TemperatureType type, getCurrentTemperatures_cb _hidl_cb) = 0;

  using getTemperatureThresholds_cb = std::function<void(
      const ::android::hardware::thermal::V1_0::ThermalStatus& status,
      const ::android::hardware::hidl_vec<TemperatureThreshold>& temperatureThresholds)>;
  virtual ::android::hardware::Return<void> getTemperatureThresholds(
      bool filterType, TemperatureType type, getTemperatureThresholds_cb _hidl_cb) = 0;

  using registerThermalChangedCallback_cb =
      std::function<void(const ::android::hardware::thermal::V1_0::ThermalStatus& status)>;
  virtual ::android::hardware::Return<void> registerThermalChangedCallback(
      const ::android::sp<IThermalChangedCallback>& callback, bool filterType, TemperatureType type,
      registerThermalChangedCallback_cb _hidl_cb) = 0;

  using unregisterThermalChangedCallback_cb =
      std::function<void(const ::android::hardware::thermal::V1_0::ThermalStatus& status)>;
  virtual ::android::hardware::Return<void> unregisterThermalChangedCallback(
      const ::android::sp<IThermalChangedCallback>& callback,
      unregisterThermalChangedCallback_cb _hidl_cb) = 0;

  using getCurrentCoolingDevices_cb =
      std::function<void(const ::android::hardware::thermal::V1_0::ThermalStatus& status,
                         const ::android::hardware::hidl_vec<CoolingDevice>& devices)>;
  virtual ::android::hardware::Return<void> getCurrentCoolingDevices(
      bool filterType, CoolingType type, getCurrentCoolingDevices_cb _hidl_cb) = 0;

  // Returns null at once if the device's manifest does not name the instance; otherwise waits until
  // the service is up. `getStub` asks for an implementation in this process, of which there is
  // none.
  static ::android::sp<IThermal> getService(const std::string& serviceName = "default",
                                            bool getStub = false);
};

}  // namespace android::hardware::thermal::V2_0
