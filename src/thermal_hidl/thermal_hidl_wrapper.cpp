// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/thermal_hidl_wrapper.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include <aidl/android/hardware/thermal/BnThermalChangedCallback.h>
#include <aidl/android/hardware/thermal/IThermal.h>
#include <hidl/HidlTransportSupport.h>

#include "thermal_hidl/convert.h"

namespace aidl::android::hardware::thermal {

namespace V1_0 = ::android::hardware::thermal::V1_0;
namespace V2_0 = ::android::hardware::thermal::V2_0;
using ::android::sp;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::ndk::ScopedAStatus;

namespace {

constexpr char kUnsupported[] = "Operation unsupported by Thermal HIDL wrapper";
constexpr char kNoClient[] = "Thermal AIDL HAL client used by HIDL wrapper was not initialized";
constexpr char kNullCallback[] = "Invalid nullptr callback";
constexpr char kRegisteredBefore[] = "The callback was already registered through wrapper";
constexpr char kNotRegistered[] = "The callback was not registered through wrapper before";

V1_0::ThermalStatus Success() { return {V1_0::ThermalStatusCode::SUCCESS, ""}; }

V1_0::ThermalStatus Failure(const char* message) {
  return {V1_0::ThermalStatusCode::FAILURE, message};
}

V1_0::ThermalStatus ToHidl(const ScopedAStatus& status) {
  return status.isOk() ? Success() : Failure(status.getMessage());
}

// Makes an AIDL query with `query` and passes the result to a HIDL callback.
template <typename Record, typename Callback, typename Query>
Return<void> Answer(const std::shared_ptr<IThermal>& service, const Callback& cb, Query query) {
  if (service == nullptr) {
    cb(Failure(kNoClient), {});
    return Void();
  }
  std::vector<Record> records;
  const ScopedAStatus status = query(*service, &records);
  hidl_vec<decltype(ToHidl(std::declval<Record>()))> converted;
  if (status.isOk()) {
    converted.resize(records.size());
    std::transform(records.begin(), records.end(), converted.begin(),
                   [](const Record& record) { return ToHidl(record); });
  }
  cb(ToHidl(status), converted);
  return Void();
}

}  // namespace

// The AIDL callback that is registered for a HIDL callback.
class ThermalHidlWrapper::IThermalChangedCallbackWrapper : public BnThermalChangedCallback {
 public:
  explicit IThermalChangedCallbackWrapper(sp<V2_0::IThermalChangedCallback> callback)
      : callback_hidl(std::move(callback)) {}

  // Runs on a binder thread. The service does not learn whether the client is alive.
  ScopedAStatus notifyThrottling(const Temperature& temperature) override {
    // Without isOk() a failed result aborts the process.
    callback_hidl->notifyThrottling(ToHidl(temperature)).isOk();
    return ScopedAStatus::ok();
  }

  const sp<V2_0::IThermalChangedCallback> callback_hidl;
};

ThermalHidlWrapper::ThermalHidlWrapper(
    std::shared_ptr<::aidl::android::hardware::thermal::IThermal> thermal_service)
    : thermal_service_(std::move(thermal_service)) {}

ThermalHidlWrapper::~ThermalHidlWrapper() = default;

Return<void> ThermalHidlWrapper::getTemperatures(getTemperatures_cb cb) {
  cb(Failure(kUnsupported), {});
  return Void();
}

Return<void> ThermalHidlWrapper::getCpuUsages(getCpuUsages_cb cb) {
  cb(Failure(kUnsupported), {});
  return Void();
}

Return<void> ThermalHidlWrapper::getCoolingDevices(getCoolingDevices_cb cb) {
  cb(Failure(kUnsupported), {});
  return Void();
}

Return<void> ThermalHidlWrapper::getCurrentTemperatures(bool filter_type,
                                                        V2_0::TemperatureType type,
                                                        getCurrentTemperatures_cb cb) {
  return Answer<Temperature>(thermal_service_, cb, [=](auto& service, auto* temperatures) {
    return filter_type
               ? service.getTemperaturesWithType(static_cast<TemperatureType>(type), temperatures)
               : service.getTemperatures(temperatures);
  });
}

Return<void> ThermalHidlWrapper::getTemperatureThresholds(bool filter_type,
                                                          V2_0::TemperatureType type,
                                                          getTemperatureThresholds_cb cb) {
  return Answer<TemperatureThreshold>(thermal_service_, cb, [=](auto& service, auto* thresholds) {
    return filter_type ? service.getTemperatureThresholdsWithType(
                             static_cast<TemperatureType>(type), thresholds)
                       : service.getTemperatureThresholds(thresholds);
  });
}

Return<void> ThermalHidlWrapper::getCurrentCoolingDevices(bool filter_type, V2_0::CoolingType type,
                                                          getCurrentCoolingDevices_cb cb) {
  return Answer<CoolingDevice>(thermal_service_, cb, [=](auto& service, auto* devices) {
    return filter_type ? service.getCoolingDevicesWithType(static_cast<CoolingType>(type), devices)
                       : service.getCoolingDevices(devices);
  });
}

Return<void> ThermalHidlWrapper::registerThermalChangedCallback(
    const sp<V2_0::IThermalChangedCallback>& callback, bool filter_type, V2_0::TemperatureType type,
    registerThermalChangedCallback_cb cb) {
  if (thermal_service_ == nullptr || callback == nullptr) {
    cb(Failure(thermal_service_ == nullptr ? kNoClient : kNullCallback));
    return Void();
  }
  // Held across the call, so that the list and the service agree.
  const std::lock_guard lock(callback_wrappers_mutex_);
  if (FindWrapper(callback) != callback_wrappers_.end()) {
    cb(Failure(kRegisteredBefore));
    return Void();
  }
  const auto wrapper = ndk::SharedRefBase::make<IThermalChangedCallbackWrapper>(callback);
  const ScopedAStatus status = filter_type
                                   ? thermal_service_->registerThermalChangedCallbackWithType(
                                         wrapper, static_cast<TemperatureType>(type))
                                   : thermal_service_->registerThermalChangedCallback(wrapper);
  if (status.isOk()) {
    callback_wrappers_.push_back(wrapper);
  }
  cb(ToHidl(status));
  return Void();
}

Return<void> ThermalHidlWrapper::unregisterThermalChangedCallback(
    const sp<V2_0::IThermalChangedCallback>& callback, unregisterThermalChangedCallback_cb cb) {
  if (thermal_service_ == nullptr || callback == nullptr) {
    cb(Failure(thermal_service_ == nullptr ? kNoClient : kNullCallback));
    return Void();
  }
  const std::lock_guard lock(callback_wrappers_mutex_);
  const auto wrapper = FindWrapper(callback);
  if (wrapper == callback_wrappers_.end()) {
    cb(Failure(kNotRegistered));
    return Void();
  }
  const ScopedAStatus status = thermal_service_->unregisterThermalChangedCallback(*wrapper);
  if (status.isOk()) {
    callback_wrappers_.erase(wrapper);
  }
  cb(ToHidl(status));
  return Void();
}

Return<void> ThermalHidlWrapper::debug(const hidl_handle& handle,
                                       const hidl_vec<hidl_string>& options) {
  if (thermal_service_ == nullptr || handle.getNativeHandle() == nullptr || handle->numFds < 1) {
    return Void();
  }
  // The copies are never released: the client may still use its arguments after dump() returns, and
  // this runs only for a bug report.
  std::vector<const char*> arguments;
  for (const hidl_string& option : options) {
    arguments.push_back(strdup(option.c_str()));
  }
  thermal_service_->dump(handle->data[0], arguments.data(),
                         static_cast<uint32_t>(arguments.size()));
  return Void();
}

ThermalHidlWrapper::CallbackWrappers::iterator ThermalHidlWrapper::FindWrapper(
    const sp<V2_0::IThermalChangedCallback>& callback) {
  return std::find_if(
      callback_wrappers_.begin(), callback_wrappers_.end(), [&callback](const auto& wrapper) {
        return ::android::hardware::interfacesEqual(wrapper->callback_hidl, callback);
      });
}

}  // namespace aidl::android::hardware::thermal
