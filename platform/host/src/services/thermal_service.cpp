// SPDX-License-Identifier: Apache-2.0
#include "fp_host/thermal_service.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

#include <aidl/android/hardware/thermal/BnThermal.h>

#include "ipc/process.h"

namespace fp_host {

using aidl::android::hardware::thermal::BnThermal;
using aidl::android::hardware::thermal::CoolingType;
using aidl::android::hardware::thermal::IThermalChangedCallback;
using aidl::android::hardware::thermal::TemperatureType;
using ndk::ScopedAStatus;

struct ThermalService::State {
  using Callback = std::shared_ptr<IThermalChangedCallback>;
  struct Registration {
    Callback callback;
    std::optional<TemperatureType> filter;
  };

  // Returns the records of type `filter`, or all without a filter.
  template <typename Record, typename Type>
  ScopedAStatus Answer(const char* call, const std::vector<Record> State::*records,
                       std::optional<Type> filter, std::vector<Record>* answer) {
    const std::lock_guard lock(mutex);
    RecordCall(call, filter);
    const auto& all = this->*records;
    std::copy_if(all.begin(), all.end(), std::back_inserter(*answer),
                 [&](const Record& record) { return record.type == filter.value_or(record.type); });
    return refusal == nullptr ? ScopedAStatus::ok() : refusal();
  }

  ScopedAStatus Register(const char* call, const Callback& callback,
                         std::optional<TemperatureType> filter) {
    const std::lock_guard lock(mutex);
    RecordCall(call, filter);
    if (refusal != nullptr) {
      return refusal();
    }
    if (callback == nullptr || Find(callback) != registrations.end()) {
      return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_ARGUMENT);
    }
    registrations.push_back({callback, filter});
    return ScopedAStatus::ok();
  }

  ScopedAStatus Unregister(const Callback& callback) {
    const std::lock_guard lock(mutex);
    RecordCall("unregisterThermalChangedCallback", std::optional<TemperatureType>());
    if (refusal != nullptr) {
      return refusal();
    }
    const auto known = callback == nullptr ? registrations.end() : Find(callback);
    if (known == registrations.end()) {
      return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_ARGUMENT);
    }
    registrations.erase(known);
    return ScopedAStatus::ok();
  }

  std::mutex mutex;

  // Guarded by mutex.
  std::vector<Temperature> temperatures;
  std::vector<TemperatureThreshold> thresholds;
  std::vector<CoolingDevice> cooling_devices;
  std::function<ScopedAStatus()> refusal;
  std::vector<Registration> registrations;
  std::deque<std::string> calls;

 private:
  // Each call passes another proxy. Proxies of one callback have the same binder.
  std::vector<Registration>::iterator Find(const Callback& callback) {
    return std::find_if(registrations.begin(), registrations.end(), [&](const auto& registration) {
      return registration.callback->asBinder() == callback->asBinder();
    });
  }

  template <typename Type>
  void RecordCall(const char* call, std::optional<Type> filter) {
    calls.push_back(call);
    if (filter.has_value()) {
      calls.back() += " " + std::to_string(static_cast<int32_t>(*filter));
    }
    if (calls.size() > 1000) {
      calls.pop_front();  // programs that never call TakeCalls() must not grow
    }
  }
};

class ThermalService::Implementation : public BnThermal {
 public:
  explicit Implementation(std::shared_ptr<State> state) : state_(std::move(state)) {}

  ScopedAStatus getCoolingDevices(std::vector<CoolingDevice>* _aidl_return) override {
    return state_->Answer("getCoolingDevices", &State::cooling_devices,
                          std::optional<CoolingType>(), _aidl_return);
  }
  ScopedAStatus getCoolingDevicesWithType(CoolingType in_type,
                                          std::vector<CoolingDevice>* _aidl_return) override {
    return state_->Answer("getCoolingDevicesWithType", &State::cooling_devices,
                          std::optional(in_type), _aidl_return);
  }
  ScopedAStatus getTemperatures(std::vector<Temperature>* _aidl_return) override {
    return state_->Answer("getTemperatures", &State::temperatures, std::optional<TemperatureType>(),
                          _aidl_return);
  }
  ScopedAStatus getTemperaturesWithType(TemperatureType in_type,
                                        std::vector<Temperature>* _aidl_return) override {
    return state_->Answer("getTemperaturesWithType", &State::temperatures, std::optional(in_type),
                          _aidl_return);
  }
  ScopedAStatus getTemperatureThresholds(std::vector<TemperatureThreshold>* _aidl_return) override {
    return state_->Answer("getTemperatureThresholds", &State::thresholds,
                          std::optional<TemperatureType>(), _aidl_return);
  }
  ScopedAStatus getTemperatureThresholdsWithType(
      TemperatureType in_type, std::vector<TemperatureThreshold>* _aidl_return) override {
    return state_->Answer("getTemperatureThresholdsWithType", &State::thresholds,
                          std::optional(in_type), _aidl_return);
  }
  ScopedAStatus registerThermalChangedCallback(
      const std::shared_ptr<IThermalChangedCallback>& in_callback) override {
    return state_->Register("registerThermalChangedCallback", in_callback, std::nullopt);
  }
  ScopedAStatus registerThermalChangedCallbackWithType(
      const std::shared_ptr<IThermalChangedCallback>& in_callback,
      TemperatureType in_type) override {
    return state_->Register("registerThermalChangedCallbackWithType", in_callback, in_type);
  }
  ScopedAStatus unregisterThermalChangedCallback(
      const std::shared_ptr<IThermalChangedCallback>& in_callback) override {
    return state_->Unregister(in_callback);
  }

  binder_status_t dump(int fd, const char** args, uint32_t count) override {
    dprintf(fd, "thermal");
    for (uint32_t i = 0; i < count; ++i) {
      dprintf(fd, " '%s'", args[i]);
    }
    dprintf(fd, "\n");
    return STATUS_OK;
  }

 private:
  const std::shared_ptr<State> state_;
};

ThermalService::ThermalService()
    : AidlService(BnThermal::makeServiceName("default")), state_(std::make_shared<State>()) {}

ThermalService::~ThermalService() = default;

void ThermalService::SetTemperatures(std::vector<Temperature> temperatures) {
  const std::lock_guard lock(state_->mutex);
  state_->temperatures = std::move(temperatures);
}

void ThermalService::SetThresholds(std::vector<TemperatureThreshold> thresholds) {
  const std::lock_guard lock(state_->mutex);
  state_->thresholds = std::move(thresholds);
}

void ThermalService::SetCoolingDevices(std::vector<CoolingDevice> devices) {
  const std::lock_guard lock(state_->mutex);
  state_->cooling_devices = std::move(devices);
}

void ThermalService::Refuse(std::function<ScopedAStatus()> refusal) {
  const std::lock_guard lock(state_->mutex);
  state_->refusal = std::move(refusal);
}

void ThermalService::Accept() { Refuse(nullptr); }

void ThermalService::Notify(const Temperature& temperature) {
  const std::lock_guard lock(state_->mutex);
  for (const auto& registration : state_->registrations) {
    if (temperature.type == registration.filter.value_or(temperature.type)) {
      registration.callback->notifyThrottling(temperature);
    }
  }
}

int ThermalService::CountCallbacks() const {
  const std::lock_guard lock(state_->mutex);
  return static_cast<int>(state_->registrations.size());
}

std::vector<std::string> ThermalService::TakeCalls() {
  const std::lock_guard lock(state_->mutex);
  const auto calls = std::exchange(state_->calls, {});
  return {calls.begin(), calls.end()};
}

ndk::SpAIBinder ThermalService::MakeBinder() {
  return ndk::SharedRefBase::make<Implementation>(state_)->asBinder();
}

std::shared_ptr<void> ThermalService::MakeService(const std::shared_ptr<ipc::Process>& process) {
  process->OnDeath([state = state_] {
    std::vector<State::Registration> forgotten;  // destroyed after the lock is released
    const std::lock_guard lock(state->mutex);
    forgotten.swap(state->registrations);
  });
  return AidlService::MakeService(process);
}

}  // namespace fp_host
