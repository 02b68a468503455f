// SPDX-License-Identifier: Apache-2.0
#include <aidl/android/hardware/thermal/BpThermal.h>
#include <aidl/android/hardware/thermal/BpThermalChangedCallback.h>

#include "fp_host/aidl_interface.h"

namespace aidl::android::hardware::thermal {
namespace {

using fp_host::binder::Query;
using fp_host::binder::Transact;
using fp_host::binder::TranslateForReceiver;
using ndk::ScopedAStatus;
using Callback = std::shared_ptr<IThermalChangedCallback>;

}  // namespace

const char* IThermal::descriptor = "android.hardware.thermal.IThermal";
const char* IThermalChangedCallback::descriptor =
    "android.hardware.thermal.IThermalChangedCallback";

std::shared_ptr<IThermal> IThermal::fromBinder(const ndk::SpAIBinder& binder) {
  return fp_host::binder::FromBinder<IThermal, BpThermal>(binder);
}

ScopedAStatus BpThermal::getCoolingDevices(std::vector<CoolingDevice>* _aidl_return) {
  return Query(*this, &IThermal::getCoolingDevices, _aidl_return);
}

ScopedAStatus BpThermal::getCoolingDevicesWithType(CoolingType in_type,
                                                   std::vector<CoolingDevice>* _aidl_return) {
  return Query(*this, &IThermal::getCoolingDevicesWithType, _aidl_return, in_type);
}

ScopedAStatus BpThermal::getTemperatures(std::vector<Temperature>* _aidl_return) {
  return Query(*this, &IThermal::getTemperatures, _aidl_return);
}

ScopedAStatus BpThermal::getTemperaturesWithType(TemperatureType in_type,
                                                 std::vector<Temperature>* _aidl_return) {
  return Query(*this, &IThermal::getTemperaturesWithType, _aidl_return, in_type);
}

ScopedAStatus BpThermal::getTemperatureThresholds(std::vector<TemperatureThreshold>* _aidl_return) {
  return Query(*this, &IThermal::getTemperatureThresholds, _aidl_return);
}

ScopedAStatus BpThermal::getTemperatureThresholdsWithType(
    TemperatureType in_type, std::vector<TemperatureThreshold>* _aidl_return) {
  return Query(*this, &IThermal::getTemperatureThresholdsWithType, _aidl_return, in_type);
}

ScopedAStatus BpThermal::registerThermalChangedCallback(const Callback& in_callback) {
  return Transact(asBinder(), [&](ndk::ICInterface& object) {
    return static_cast<IThermal&>(object).registerThermalChangedCallback(
        TranslateForReceiver(in_callback));
  });
}

ScopedAStatus BpThermal::registerThermalChangedCallbackWithType(const Callback& in_callback,
                                                                TemperatureType in_type) {
  return Transact(asBinder(), [&](ndk::ICInterface& object) {
    return static_cast<IThermal&>(object).registerThermalChangedCallbackWithType(
        TranslateForReceiver(in_callback), in_type);
  });
}

ScopedAStatus BpThermal::unregisterThermalChangedCallback(const Callback& in_callback) {
  return Transact(asBinder(), [&](ndk::ICInterface& object) {
    return static_cast<IThermal&>(object).unregisterThermalChangedCallback(
        TranslateForReceiver(in_callback));
  });
}

std::shared_ptr<IThermalChangedCallback> IThermalChangedCallback::fromBinder(
    const ndk::SpAIBinder& binder) {
  return fp_host::binder::FromBinder<IThermalChangedCallback, BpThermalChangedCallback>(binder);
}

ScopedAStatus BpThermalChangedCallback::notifyThrottling(const Temperature& in_temperature) {
  return fp_host::binder::TransactOneway(
      asBinder(), [temperature = in_temperature](ndk::ICInterface& object) {
        return static_cast<IThermalChangedCallback&>(object).notifyThrottling(temperature);
      });
}

}  // namespace aidl::android::hardware::thermal
