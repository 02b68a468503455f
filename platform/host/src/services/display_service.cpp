// SPDX-License-Identifier: Apache-2.0
#include "fp_host/display_service.h"

#include <mutex>
#include <utility>

#include <aidl/com/norvan/hardware/kestra/display/BnDisplay.h>

namespace fp_host {

using aidl::com::norvan::hardware::kestra::display::BnDisplay;

struct DisplayService::State {
  std::mutex mutex;

  // Guarded by mutex.
  bool lhbm_on = false;
  std::vector<bool> requests;
  std::function<ndk::ScopedAStatus()> refusal;
};

class DisplayService::Implementation : public BnDisplay {
 public:
  explicit Implementation(std::shared_ptr<State> state) : state_(std::move(state)) {}

  ndk::ScopedAStatus setLhbmState(bool in_enabled) override {
    const std::lock_guard lock(state_->mutex);
    state_->requests.push_back(in_enabled);
    if (state_->refusal != nullptr) {
      return state_->refusal();
    }
    state_->lhbm_on = in_enabled;
    return ndk::ScopedAStatus::ok();
  }

 private:
  const std::shared_ptr<State> state_;
};

DisplayService::DisplayService()
    : AidlService(BnDisplay::makeServiceName("default")), state_(std::make_shared<State>()) {}

DisplayService::~DisplayService() = default;

void DisplayService::Refuse(std::function<ndk::ScopedAStatus()> refusal) {
  const std::lock_guard lock(state_->mutex);
  state_->refusal = std::move(refusal);
}

void DisplayService::Accept() { Refuse(nullptr); }

bool DisplayService::IsLhbmOn() const {
  const std::lock_guard lock(state_->mutex);
  return state_->lhbm_on;
}

std::vector<bool> DisplayService::TakeRequests() {
  const std::lock_guard lock(state_->mutex);
  return std::exchange(state_->requests, {});
}

ndk::SpAIBinder DisplayService::MakeBinder() {
  const std::lock_guard lock(state_->mutex);
  state_->lhbm_on = false;
  return ndk::SharedRefBase::make<Implementation>(state_)->asBinder();
}

}  // namespace fp_host
