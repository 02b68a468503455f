// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermal.h>

namespace aidl::android::hardware::thermal {

class BpThermal : public ::ndk::BpCInterface<IThermal> {
 public:
  using BpCInterface::BpCInterface;

  ::ndk::ScopedAStatus getCoolingDevices(
      std::vector<::aidl::android::hardware::thermal::CoolingDevice>* _aidl_return) override;
  ::ndk::ScopedAStatus getCoolingDevicesWithType(
      ::aidl::android::hardware::thermal::CoolingType in_type,
      std::vector<::aidl::android::hardware::thermal::CoolingDevice>* _aidl_return) override;
  ::ndk::ScopedAStatus getTemperatures(
      std::vector<::aidl::android::hardware::thermal::Temperature>* _aidl_return) override;
  ::ndk::ScopedAStatus getTemperaturesWithType(
      ::aidl::android::hardware::thermal::TemperatureType in_type,
      std::vector<::aidl::android::hardware::thermal::Temperature>* _aidl_return) override;
  ::ndk::ScopedAStatus getTemperatureThresholds(
      std::vector<::aidl::android::hardware::thermal::TemperatureThreshold>* _aidl_return) override;
  ::ndk::ScopedAStatus getTemperatureThresholdsWithType(
      ::aidl::android::hardware::thermal::TemperatureType in_type,
      std::vector<::aidl::android::hardware::thermal::TemperatureThreshold>* _aidl_return) override;
  ::ndk::ScopedAStatus registerThermalChangedCallback(
      const std::shared_ptr<::aidl::android::hardware::thermal::IThermalChangedCallback>&
          in_callback) override;
  ::ndk::ScopedAStatus registerThermalChangedCallbackWithType(
      const std::shared_ptr<::aidl::android::hardware::thermal::IThermalChangedCallback>&
          in_callback,
      ::aidl::android::hardware::thermal::TemperatureType in_type) override;
  ::ndk::ScopedAStatus unregisterThermalChangedCallback(
      const std::shared_ptr<::aidl::android::hardware::thermal::IThermalChangedCallback>&
          in_callback) override;
};

}  // namespace aidl::android::hardware::thermal
