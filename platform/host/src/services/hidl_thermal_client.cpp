// SPDX-License-Identifier: Apache-2.0
#include "fp_host/hidl_thermal_client.h"

#include <mutex>
#include <utility>

#include "hidl_thermal/proxies.h"
#include "ipc/process.h"

namespace fp_host {

using android::sp;
using android::hardware::Return;
using android::hardware::Void;
using android::hardware::thermal::V2_0::BpHwThermal;
using android::hardware::thermal::V2_0::BpHwThermalChangedCallback;

class HidlThermalClient::Callback : public IThermalChangedCallback {
 public:
  Return<void> notifyThrottling(const Temperature& temperature) override {
    const std::lock_guard lock(mutex_);
    received_.push_back(temperature);
    return Void();
  }

  std::vector<Temperature> Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(received_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<Temperature> received_;  // Guarded by mutex_.
};

HidlThermalClient::HidlThermalClient()
    : callback_(new Callback),
      process_(std::make_shared<ipc::Process>(std::make_shared<ipc::CallPlan>())) {}

HidlThermalClient::~HidlThermalClient() = default;

void HidlThermalClient::Connect(const sp<IThermal>& service) {
  service_ = service == nullptr ? nullptr : sp<IThermal>(new BpHwThermal(service, nullptr));
}

sp<HidlThermalClient::IThermalChangedCallback> HidlThermalClient::NewProxy() const {
  return sp<IThermalChangedCallback>(new BpHwThermalChangedCallback(callback_, process_));
}

void HidlThermalClient::Kill() { process_->Kill(); }

std::vector<HidlThermalClient::Temperature> HidlThermalClient::TakeReceived() {
  return callback_->Take();
}

}  // namespace fp_host
