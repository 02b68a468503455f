// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <utility>

#include <android/binder_interface_utils.h>

#include "binder/ibinder.h"

// What the proxies of all AIDL interfaces have in common.

namespace fp_host::binder {

// See IFoo::fromBinder() of any interface.
template <typename INTERFACE, typename PROXY>
std::shared_ptr<INTERFACE> FromBinder(const ndk::SpAIBinder& binder) {
  if (binder.get() == nullptr) {
    return nullptr;
  }
  if (LocalBinder* local = binder.get()->AsLocal()) {
    return std::static_pointer_cast<INTERFACE>(local->GetImplementation());
  }
  return binder.get()->AsRemote()->HasInterface(INTERFACE::descriptor)
             ? ndk::SharedRefBase::make<PROXY>(binder)
             : nullptr;
}

// An interface as the receiver of a call sees what its sender passed.
template <typename INTERFACE>
std::shared_ptr<INTERFACE> CrossOver(const std::shared_ptr<INTERFACE>& object) {
  return object == nullptr ? nullptr : INTERFACE::fromBinder(CrossOver(object->asBinder()));
}

using Serve = std::function<ndk::ScopedAStatus(ndk::ICInterface&)>;

// A call on the object behind a proxy.
ndk::ScopedAStatus Transact(const ndk::SpAIBinder& proxy, const Serve& serve);
// A call that nobody waits for: it runs on the binder pool, after the earlier ones on the object.
ndk::ScopedAStatus TransactOneway(const ndk::SpAIBinder& proxy, Serve serve);

// A call of a proxy's method whose last parameter is its result. Of the failures only a reply that
// cannot be parsed writes a result: what was read up to there.
template <typename INTERFACE, typename METHOD, typename RESULT, typename... ARGUMENTS>
ndk::ScopedAStatus Query(ndk::BpCInterface<INTERFACE>& proxy, METHOD method, RESULT* result,
                         const ARGUMENTS&... arguments) {
  RESULT answer{};
  ndk::ScopedAStatus status = Transact(proxy.asBinder(), [&](ndk::ICInterface& object) {
    return (static_cast<INTERFACE&>(object).*method)(arguments..., &answer);
  });
  if (status.isOk() || status.getStatus() == STATUS_NOT_ENOUGH_DATA) {
    *result = std::move(answer);
  }
  return status;
}

}  // namespace fp_host::binder
