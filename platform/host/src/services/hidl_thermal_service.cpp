// SPDX-License-Identifier: Apache-2.0
#include "fp_host/hidl_thermal_service.h"

#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

#include <android/hardware/thermal/2.0/IThermal.h>

#include "hidl/remote.h"

namespace fp_host {

using android::sp;
using android::hardware::Return;
using android::hardware::Void;
using android::hardware::thermal::V1_0::ThermalStatus;
using android::hardware::thermal::V1_0::ThermalStatusCode;
using android::hardware::thermal::V2_0::CoolingType;
using android::hardware::thermal::V2_0::IThermal;
using android::hardware::thermal::V2_0::IThermalChangedCallback;
using android::hardware::thermal::V2_0::TemperatureType;

struct HidlThermalService::State {
  std::mutex mutex;

  // Guarded by mutex.
  std::vector<Temperature> temperatures;
  std::optional<std::string> refusal;
};

class HidlThermalService::Implementation : public IThermal {
 public:
  explicit Implementation(std::shared_ptr<State> state) : state_(std::move(state)) {}

  Return<void> getCurrentTemperatures(bool filter_type, TemperatureType type,
                                      getCurrentTemperatures_cb _hidl_cb) override {
    const std::lock_guard lock(state_->mutex);
    if (state_->refusal.has_value()) {
      _hidl_cb({ThermalStatusCode::FAILURE, *state_->refusal}, {});
      return Void();
    }
    std::vector<Temperature> answer;
    std::copy_if(
        state_->temperatures.begin(), state_->temperatures.end(), std::back_inserter(answer),
        [&](const Temperature& temperature) { return !filter_type || temperature.type == type; });
    _hidl_cb({ThermalStatusCode::SUCCESS, ""}, answer);
    return Void();
  }

  Return<void> getTemperatures(getTemperatures_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated, {});
    return Void();
  }
  Return<void> getCpuUsages(getCpuUsages_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated, {});
    return Void();
  }
  Return<void> getCoolingDevices(getCoolingDevices_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated, {});
    return Void();
  }
  Return<void> getTemperatureThresholds(bool, TemperatureType,
                                        getTemperatureThresholds_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated, {});
    return Void();
  }
  Return<void> getCurrentCoolingDevices(bool, CoolingType,
                                        getCurrentCoolingDevices_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated, {});
    return Void();
  }
  Return<void> registerThermalChangedCallback(const sp<IThermalChangedCallback>&, bool,
                                              TemperatureType,
                                              registerThermalChangedCallback_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated);
    return Void();
  }
  Return<void> unregisterThermalChangedCallback(
      const sp<IThermalChangedCallback>&, unregisterThermalChangedCallback_cb _hidl_cb) override {
    _hidl_cb(kNotSimulated);
    return Void();
  }

 private:
  const ThermalStatus kNotSimulated = {ThermalStatusCode::FAILURE, "not simulated"};
  const std::shared_ptr<State> state_;
};

HidlThermalService::HidlThermalService()
    : RemoteService(std::string(IThermal::descriptor) + "/default"),
      state_(std::make_shared<State>()) {}

HidlThermalService::~HidlThermalService() = default;

void HidlThermalService::SetTemperatures(std::vector<Temperature> temperatures) {
  const std::lock_guard lock(state_->mutex);
  state_->temperatures = std::move(temperatures);
}

void HidlThermalService::Refuse(std::string message) {
  const std::lock_guard lock(state_->mutex);
  state_->refusal = std::move(message);
}

void HidlThermalService::Accept() {
  const std::lock_guard lock(state_->mutex);
  state_->refusal.reset();
}

std::shared_ptr<void> HidlThermalService::MakeService(
    const std::shared_ptr<ipc::Process>& process) {
  return std::make_shared<hidl::Entry>(
      hidl::Entry{sp<hidl::IBase>(new Implementation(state_)), process});
}

std::shared_ptr<void> HidlThermalService::MakeImpostor(const std::shared_ptr<ipc::Process>&) {
  return nullptr;
}

}  // namespace fp_host
