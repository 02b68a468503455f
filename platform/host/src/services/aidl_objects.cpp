// SPDX-License-Identifier: Apache-2.0
#include "services/aidl_objects.h"

#include <utility>

#include "binder/ibinder.h"

namespace fp_host {
namespace {

struct IUnknown : ndk::ICInterface {
  static constexpr const char* descriptor = "fp_host.IUnknown";
};
struct Unknown : ndk::BnCInterface<IUnknown> {};

}  // namespace

std::shared_ptr<void> Publish(const ndk::SpAIBinder& local, std::shared_ptr<ipc::Process> process) {
  binder::LocalBinder* object = local.get()->AsLocal();
  object->SetHome(std::move(process));
  return std::make_shared<ndk::SpAIBinder>(object->GetProxy());
}

std::shared_ptr<void> PublishUnknownInterface(std::shared_ptr<ipc::Process> process) {
  return Publish(ndk::SharedRefBase::make<Unknown>()->asBinder(), std::move(process));
}

}  // namespace fp_host
