// SPDX-License-Identifier: Apache-2.0
#include "fp_host/aidl_service.h"

#include "binder/ibinder.h"

namespace fp_host {
namespace {

struct IUnknown : ndk::ICInterface {
  static constexpr const char* descriptor = "fp_host.IUnknown";
};
struct Unknown : ndk::BnCInterface<IUnknown> {};

// Makes `local` an object of `process`. Returns its proxy, in the form in which the service manager
// stores it.
std::shared_ptr<void> MakeRemoteObject(const ndk::SpAIBinder& local,
                                       const std::shared_ptr<ipc::Process>& process) {
  binder::LocalBinder* object = local.get()->AsLocal();
  object->SetProcess(process);
  return std::make_shared<ndk::SpAIBinder>(object->GetProxy());
}

}  // namespace

std::shared_ptr<void> AidlService::MakeService(const std::shared_ptr<ipc::Process>& process) {
  return MakeRemoteObject(MakeBinder(), process);
}

std::shared_ptr<void> AidlService::MakeImpostor(const std::shared_ptr<ipc::Process>& process) {
  return MakeRemoteObject(ndk::SharedRefBase::make<Unknown>()->asBinder(), process);
}

}  // namespace fp_host
