// SPDX-License-Identifier: Apache-2.0
#include "services/aidl_objects.h"

#include <utility>

#include "binder/ibinder.h"
#include "binder/manager.h"

namespace fp_host {

std::shared_ptr<void> Publish(const ndk::SpAIBinder& local, std::shared_ptr<ipc::Process> process) {
  binder::LocalBinder* object = local.get()->AsLocal();
  object->SetHome(std::move(process));
  return binder::ToEntry(object->GetProxy());
}

std::shared_ptr<void> PublishStranger(std::shared_ptr<ipc::Process> process) {
  static const AIBinder_Class* const stranger = AIBinder_Class_define(
      "fp_host.IStranger", [](void* args) { return args; }, [](void*) {},
      [](AIBinder*, transaction_code_t, const AParcel*, AParcel*) -> binder_status_t {
        return STATUS_UNKNOWN_TRANSACTION;
      });
  return Publish(ndk::SpAIBinder(AIBinder_new(stranger, nullptr)), std::move(process));
}

}  // namespace fp_host
