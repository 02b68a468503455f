// SPDX-License-Identifier: Apache-2.0
#include <android/hardware/thermal/2.0/IThermal.h>

#include "hidl_thermal/proxies.h"
#include "ipc/registry.h"

namespace android::hardware::thermal::V2_0 {

using fp_host::hidl::Query;

const char* IThermal::descriptor = "android.hardware.thermal@2.0::IThermal";

sp<IThermal> IThermal::getService(const std::string& service_name, bool get_stub) {
  auto& services = fp_host::ipc::Registry::Get();
  const std::string name = std::string(descriptor) + "/" + service_name;
  if (get_stub || !services.IsDeclared(name)) {
    return nullptr;
  }
  const auto entry = std::static_pointer_cast<fp_host::hidl::Entry>(services.Wait(name));
  return entry == nullptr ? nullptr : sp<IThermal>(new BpHwThermal(entry->object, entry->process));
}

namespace {

// The callback as the receiving process gets it: a proxy.
sp<IThermalChangedCallback> TranslateForReceiver(const sp<IThermalChangedCallback>& callback) {
  if (callback == nullptr || callback->isRemote()) {
    return callback;
  }
  return sp<IThermalChangedCallback>(new BpHwThermalChangedCallback(callback, nullptr));
}

}  // namespace

Return<void> BpHwThermal::getTemperatures(getTemperatures_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) { return Get().getTemperatures(answer); });
}

Return<void> BpHwThermal::getCpuUsages(getCpuUsages_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) { return Get().getCpuUsages(answer); });
}

Return<void> BpHwThermal::getCoolingDevices(getCoolingDevices_cb _hidl_cb) {
  return Query(*this, _hidl_cb,
               [&](const auto& answer) { return Get().getCoolingDevices(answer); });
}

Return<void> BpHwThermal::getCurrentTemperatures(bool filter_type, TemperatureType type,
                                                 getCurrentTemperatures_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) {
    return Get().getCurrentTemperatures(filter_type, type, answer);
  });
}

Return<void> BpHwThermal::getTemperatureThresholds(bool filter_type, TemperatureType type,
                                                   getTemperatureThresholds_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) {
    return Get().getTemperatureThresholds(filter_type, type, answer);
  });
}

Return<void> BpHwThermal::registerThermalChangedCallback(
    const sp<IThermalChangedCallback>& callback, bool filter_type, TemperatureType type,
    registerThermalChangedCallback_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) {
    return Get().registerThermalChangedCallback(TranslateForReceiver(callback), filter_type, type,
                                                answer);
  });
}

Return<void> BpHwThermal::unregisterThermalChangedCallback(
    const sp<IThermalChangedCallback>& callback, unregisterThermalChangedCallback_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) {
    return Get().unregisterThermalChangedCallback(TranslateForReceiver(callback), answer);
  });
}

Return<void> BpHwThermal::getCurrentCoolingDevices(bool filter_type, CoolingType type,
                                                   getCurrentCoolingDevices_cb _hidl_cb) {
  return Query(*this, _hidl_cb, [&](const auto& answer) {
    return Get().getCurrentCoolingDevices(filter_type, type, answer);
  });
}

Return<void> BpHwThermalChangedCallback::notifyThrottling(const Temperature& temperature) {
  return CallOneway([object = GetObject(), temperature] {
    // The caller of a one-way call does not learn of a failure.
    static_cast<IThermalChangedCallback&>(*object).notifyThrottling(temperature).isOk();
  });
}

}  // namespace android::hardware::thermal::V2_0
