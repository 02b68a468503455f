// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include <android/binder_auto_utils.h>

#include "fp_host/services.h"

namespace fp_host {

// Base of the simulated services with an AIDL interface. `instance` is the name under which clients
// look the service up, "<descriptor>/default". The destructor of a derived class must call Kill()
// if the object that MakeBinder() returns uses members of that class.
class AidlService : public RemoteService {
 protected:
  explicit AidlService(std::string instance) : RemoteService(std::move(instance)) {}

  // Makes the service's object, a BnCInterface, in its initial state for a new process.
  virtual ndk::SpAIBinder MakeBinder() = 0;

  std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) override;
  std::shared_ptr<void> MakeImpostor(const std::shared_ptr<ipc::Process>& process) override;
};

}  // namespace fp_host
