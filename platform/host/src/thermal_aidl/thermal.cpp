// SPDX-License-Identifier: Apache-2.0
#include <aidl/android/hardware/thermal/BnThermal.h>
#include <aidl/android/hardware/thermal/BpThermal.h>

#include "binder/interface.h"

namespace aidl::android::hardware::thermal {
namespace {

using fp_host::binder::CrossOver;
using fp_host::binder::Query;
using fp_host::binder::Transact;
using ndk::ScopedAStatus;
using Callback = std::shared_ptr<IThermalChangedCallback>;

const AIBinder_Class* ThermalClass() {
  static const AIBinder_Class* const clazz = fp_host::binder::DefineClass(IThermal::descriptor);
  return clazz;
}

}  // namespace

const char* IThermal::descriptor = "android.hardware.thermal.IThermal";
const int32_t IThermal::version;
const char* Temperature::descriptor = "android.hardware.thermal.Temperature";
const char* TemperatureThreshold::descriptor = "android.hardware.thermal.TemperatureThreshold";
const char* CoolingDevice::descriptor = "android.hardware.thermal.CoolingDevice";

IThermal::IThermal() = default;
IThermal::~IThermal() = default;

std::shared_ptr<IThermal> IThermal::fromBinder(const ndk::SpAIBinder& binder) {
  return fp_host::binder::FromBinder<IThermal, BpThermal>(binder, ThermalClass());
}

BnThermal::BnThermal() = default;
BnThermal::~BnThermal() = default;

ScopedAStatus BnThermal::getInterfaceVersion(int32_t* _aidl_return) {
  *_aidl_return = version;
  return ScopedAStatus::ok();
}

ScopedAStatus BnThermal::getInterfaceHash(std::string* _aidl_return) {
  *_aidl_return = hash;
  return ScopedAStatus::ok();
}

ndk::SpAIBinder BnThermal::createBinder() {
  return ndk::SpAIBinder(AIBinder_new(ThermalClass(), static_cast<ICInterface*>(this)));
}

BpThermal::BpThermal(const ndk::SpAIBinder& binder) : BpCInterface(binder) {}
BpThermal::~BpThermal() = default;

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
  return Transact(asBinder().get(), [&](ndk::ICInterface& object) {
    return static_cast<IThermal&>(object).registerThermalChangedCallback(CrossOver(in_callback));
  });
}

ScopedAStatus BpThermal::registerThermalChangedCallbackWithType(const Callback& in_callback,
                                                                TemperatureType in_type) {
  return Transact(asBinder().get(), [&](ndk::ICInterface& object) {
    return static_cast<IThermal&>(object).registerThermalChangedCallbackWithType(
        CrossOver(in_callback), in_type);
  });
}

ScopedAStatus BpThermal::unregisterThermalChangedCallback(const Callback& in_callback) {
  return Transact(asBinder().get(), [&](ndk::ICInterface& object) {
    return static_cast<IThermal&>(object).unregisterThermalChangedCallback(CrossOver(in_callback));
  });
}

ScopedAStatus BpThermal::getInterfaceVersion(int32_t* _aidl_return) {
  return Query(*this, &IThermal::getInterfaceVersion, _aidl_return);
}

ScopedAStatus BpThermal::getInterfaceHash(std::string* _aidl_return) {
  return Query(*this, &IThermal::getInterfaceHash, _aidl_return);
}

}  // namespace aidl::android::hardware::thermal
