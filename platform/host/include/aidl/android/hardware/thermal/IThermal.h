// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/CoolingDevice.h>
#include <aidl/android/hardware/thermal/CoolingType.h>
#include <aidl/android/hardware/thermal/IThermalChangedCallback.h>
#include <aidl/android/hardware/thermal/Temperature.h>
#include <aidl/android/hardware/thermal/TemperatureThreshold.h>
#include <aidl/android/hardware/thermal/TemperatureType.h>
#include <android/binder_auto_utils.h>
#include <android/binder_interface_utils.h>

namespace aidl::android::hardware::thermal {

// All operations answer EX_ILLEGAL_STATE while the service is not ready. The callback operations
// answer EX_ILLEGAL_ARGUMENT for null, if a callback is registered twice, and if one that is not
// registered is unregistered.
class IThermal : public ::ndk::ICInterface {
 public:
  static const char* descriptor;

  static std::shared_ptr<IThermal> fromBinder(const ::ndk::SpAIBinder& binder);

  virtual ::ndk::ScopedAStatus getCoolingDevices(
      std::vector<::aidl::android::hardware::thermal::CoolingDevice>* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getCoolingDevicesWithType(
      ::aidl::android::hardware::thermal::CoolingType in_type,
      std::vector<::aidl::android::hardware::thermal::CoolingDevice>* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getTemperatures(
      std::vector<::aidl::android::hardware::thermal::Temperature>* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getTemperaturesWithType(
      ::aidl::android::hardware::thermal::TemperatureType in_type,
      std::vector<::aidl::android::hardware::thermal::Temperature>* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getTemperatureThresholds(
      std::vector<::aidl::android::hardware::thermal::TemperatureThreshold>* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus getTemperatureThresholdsWithType(
      ::aidl::android::hardware::thermal::TemperatureType in_type,
      std::vector<::aidl::android::hardware::thermal::TemperatureThreshold>* _aidl_return) = 0;
  virtual ::ndk::ScopedAStatus registerThermalChangedCallback(
      const std::shared_ptr<::aidl::android::hardware::thermal::IThermalChangedCallback>&
          in_callback) = 0;
  virtual ::ndk::ScopedAStatus registerThermalChangedCallbackWithType(
      const std::shared_ptr<::aidl::android::hardware::thermal::IThermalChangedCallback>&
          in_callback,
      ::aidl::android::hardware::thermal::TemperatureType in_type) = 0;
  virtual ::ndk::ScopedAStatus unregisterThermalChangedCallback(
      const std::shared_ptr<::aidl::android::hardware::thermal::IThermalChangedCallback>&
          in_callback) = 0;
};

}  // namespace aidl::android::hardware::thermal
