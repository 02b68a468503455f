// SPDX-License-Identifier: Apache-2.0
#include "binder/ibinder.h"
#include "fp_host/aidl_interface.h"
#include "ipc/pool.h"

namespace fp_host::binder {
namespace {

ndk::ScopedAStatus Execute(const LocalBinder& local, const Transaction& transaction) {
  ndk::ScopedAStatus status = transaction(*local.GetImplementation());
  // A default ScopedAStatus owns no status that could be written into the reply.
  return status.get() == nullptr ? ndk::ScopedAStatus::fromStatus(STATUS_UNEXPECTED_NULL)
                                 : std::move(status);
}

}  // namespace

std::shared_ptr<ndk::ICInterface> LocalImplementation(const ndk::SpAIBinder& binder) {
  LocalBinder* local = binder.get()->AsLocal();
  return local == nullptr ? nullptr : local->GetImplementation();
}

bool HasInterface(const ndk::SpAIBinder& proxy, const char* descriptor) {
  return proxy.get()->AsRemote()->HasInterface(descriptor);
}

ndk::SpAIBinder TranslateForReceiver(const ndk::SpAIBinder& binder) {
  if (LocalBinder* local = binder.get()->AsLocal()) {
    ipc::BinderPool().WarnUnlessStarted("A call to an object that was passed to another process");
    return local->GetProxy();
  }
  LocalBinder* target = binder.get()->AsRemote()->GetTarget();
  target->IncStrong();
  return ndk::SpAIBinder(target);
}

ndk::ScopedAStatus Transact(const ndk::SpAIBinder& proxy, const Transaction& transaction) {
  RemoteBinder* remote = proxy.get()->AsRemote();
  ndk::ScopedAStatus status;
  const bool answered = remote->Call([&] { status = Execute(*remote->GetTarget(), transaction); });
  return answered ? std::move(status) : ndk::ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT);
}

ndk::ScopedAStatus TransactOneway(const ndk::SpAIBinder& proxy, Transaction transaction) {
  RemoteBinder* remote = proxy.get()->AsRemote();
  if (!remote->IsAlive()) {
    return ndk::ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT);
  }
  LocalBinder* target = remote->GetTarget();
  target->PostOneway(
      [target, transaction = std::move(transaction)] { Execute(*target, transaction); });
  return ndk::ScopedAStatus::ok();
}

}  // namespace fp_host::binder
