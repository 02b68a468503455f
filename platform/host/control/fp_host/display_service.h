// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <android/binder_auto_utils.h>

#include "fp_host/aidl_service.h"

namespace fp_host {

// The display HAL. A new process has the local high-brightness mode off.
//
// Threading:  any thread may call any operation.
class DisplayService : public AidlService {
 public:
  DisplayService();
  ~DisplayService() override;

  // Until Accept(), calls change nothing and return what `refusal` returns. `refusal` runs on the
  // client's thread and must not use this object.
  void Refuse(std::function<ndk::ScopedAStatus()> refusal);
  void Accept() override;

  bool IsLhbmOn() const;
  // The states asked for since the last TakeRequests(), refused ones too, oldest first.
  std::vector<bool> TakeRequests();

 protected:
  ndk::SpAIBinder MakeBinder() override;

 private:
  struct State;
  class Implementation;

  const std::shared_ptr<State> state_;
};

}  // namespace fp_host
