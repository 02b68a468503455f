// SPDX-License-Identifier: Apache-2.0
#include <aidl/android/hardware/thermal/BnThermalChangedCallback.h>
#include <aidl/android/hardware/thermal/BpThermalChangedCallback.h>

#include "binder/interface.h"

namespace aidl::android::hardware::thermal {
namespace {

using fp_host::binder::Query;
using ndk::ScopedAStatus;

const AIBinder_Class* CallbackClass() {
  static const AIBinder_Class* const clazz =
      fp_host::binder::DefineClass(IThermalChangedCallback::descriptor);
  return clazz;
}

}  // namespace

const char* IThermalChangedCallback::descriptor =
    "android.hardware.thermal.IThermalChangedCallback";
const int32_t IThermalChangedCallback::version;

IThermalChangedCallback::IThermalChangedCallback() = default;
IThermalChangedCallback::~IThermalChangedCallback() = default;

std::shared_ptr<IThermalChangedCallback> IThermalChangedCallback::fromBinder(
    const ndk::SpAIBinder& binder) {
  return fp_host::binder::FromBinder<IThermalChangedCallback, BpThermalChangedCallback>(
      binder, CallbackClass());
}

BnThermalChangedCallback::BnThermalChangedCallback() = default;
BnThermalChangedCallback::~BnThermalChangedCallback() = default;

ScopedAStatus BnThermalChangedCallback::getInterfaceVersion(int32_t* _aidl_return) {
  *_aidl_return = version;
  return ScopedAStatus::ok();
}

ScopedAStatus BnThermalChangedCallback::getInterfaceHash(std::string* _aidl_return) {
  *_aidl_return = hash;
  return ScopedAStatus::ok();
}

ndk::SpAIBinder BnThermalChangedCallback::createBinder() {
  return ndk::SpAIBinder(AIBinder_new(CallbackClass(), static_cast<ICInterface*>(this)));
}

BpThermalChangedCallback::BpThermalChangedCallback(const ndk::SpAIBinder& binder)
    : BpCInterface(binder) {}
BpThermalChangedCallback::~BpThermalChangedCallback() = default;

ScopedAStatus BpThermalChangedCallback::notifyThrottling(const Temperature& in_temperature) {
  return fp_host::binder::TransactOneway(
      asBinder().get(), [temperature = in_temperature](ndk::ICInterface& object) {
        return static_cast<IThermalChangedCallback&>(object).notifyThrottling(temperature);
      });
}

ScopedAStatus BpThermalChangedCallback::getInterfaceVersion(int32_t* _aidl_return) {
  return Query(*this, &IThermalChangedCallback::getInterfaceVersion, _aidl_return);
}

ScopedAStatus BpThermalChangedCallback::getInterfaceHash(std::string* _aidl_return) {
  return Query(*this, &IThermalChangedCallback::getInterfaceHash, _aidl_return);
}

}  // namespace aidl::android::hardware::thermal
