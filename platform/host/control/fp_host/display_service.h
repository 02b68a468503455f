// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <android/binder_auto_utils.h>

#include "fp_host/services.h"

namespace fp_host {

// The display HAL. A new process has the local high-brightness mode off.
class DisplayService : public RemoteService {
 public:
  DisplayService();
  ~DisplayService() override;

  // Calls are answered with what `refusal` makes and change nothing, until Accept().
  void Refuse(std::function<ndk::ScopedAStatus()> refusal);
  void Accept() override;

  bool IsLhbmOn() const;
  // The states asked for in all calls that the service handled, oldest first.
  std::vector<bool> GetRequests() const;

 protected:
  std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) override;
  std::shared_ptr<void> MakeImpostor(const std::shared_ptr<ipc::Process>& process) override;

 private:
  struct State;
  class Implementation;

  const std::shared_ptr<State> state_;
};

}  // namespace fp_host
