// SPDX-License-Identifier: Apache-2.0
#include "binder/interface.h"

namespace fp_host::binder {
namespace {

ndk::ScopedAStatus Answer(const LocalBinder& local, const Serve& serve) {
  ndk::ScopedAStatus status = serve(*local.GetImplementation());
  // A default ScopedAStatus owns no status that could be written into the reply.
  return status.get() == nullptr ? ndk::ScopedAStatus::fromStatus(STATUS_UNEXPECTED_NULL)
                                 : std::move(status);
}

}  // namespace

ndk::ScopedAStatus Transact(const ndk::SpAIBinder& proxy, const Serve& serve) {
  RemoteBinder* remote = proxy.get()->AsRemote();
  ndk::ScopedAStatus status;
  const bool answered = remote->Call([&] { status = Answer(*remote->GetTarget(), serve); });
  return answered ? std::move(status) : ndk::ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT);
}

ndk::ScopedAStatus TransactOneway(const ndk::SpAIBinder& proxy, Serve serve) {
  RemoteBinder* remote = proxy.get()->AsRemote();
  if (!remote->IsAlive()) {
    return ndk::ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT);
  }
  LocalBinder* target = remote->GetTarget();
  target->PostOneway([target, serve = std::move(serve)] { Answer(*target, serve); });
  return ndk::ScopedAStatus::ok();
}

}  // namespace fp_host::binder
