// SPDX-License-Identifier: Apache-2.0
#include "binder/interface.h"

namespace fp_host::binder {
namespace {

ndk::ScopedAStatus Answer(AIBinder* local, const Serve& serve) {
  const std::shared_ptr<ndk::ICInterface> object = ndk::ICInterface::asInterface(local);
  ndk::ScopedAStatus status = serve(*object);
  // A service that returns no status at all has nothing to put into its reply.
  return status.get() == nullptr ? ndk::ScopedAStatus::fromStatus(STATUS_UNEXPECTED_NULL)
                                 : std::move(status);
}

}  // namespace

AIBinder_Class* DefineClass(const char* descriptor) {
  return ndk::ICInterface::defineClass(
      descriptor, [](AIBinder*, transaction_code_t, const AParcel*, AParcel*) -> binder_status_t {
        return STATUS_UNKNOWN_TRANSACTION;
      });
}

ndk::ScopedAStatus Transact(AIBinder* binder, const Serve& serve) {
  RemoteBinder* remote = binder->AsRemote();
  if (remote == nullptr) {
    return Answer(binder, serve);
  }
  ndk::ScopedAStatus status;
  const bool answered = remote->Call([&] { status = Answer(remote->GetTarget(), serve); });
  return answered ? std::move(status) : ndk::ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT);
}

ndk::ScopedAStatus TransactOneway(AIBinder* binder, Serve serve) {
  RemoteBinder* remote = binder->AsRemote();
  if (remote == nullptr) {
    return Answer(binder, serve);
  }
  if (!remote->Ping()) {
    return ndk::ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT);
  }
  LocalBinder* target = remote->GetTarget();
  target->PostOneway([target, serve = std::move(serve)] { Answer(target, serve); });
  return ndk::ScopedAStatus::ok();
}

}  // namespace fp_host::binder
