// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstring>
#include <functional>
#include <memory>
#include <utility>

#include <android/binder_interface_utils.h>

#include "binder/ibinder.h"

// Shared by the proxies of all AIDL interfaces.

namespace fp_host::binder {

// Implements fromBinder() of the interfaces.
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

// TranslateForReceiver() for an interface that is an argument of a call.
template <typename INTERFACE>
std::shared_ptr<INTERFACE> TranslateForReceiver(const std::shared_ptr<INTERFACE>& object) {
  return object == nullptr ? nullptr
                           : INTERFACE::fromBinder(TranslateForReceiver(object->asBinder()));
}

using Serve = std::function<ndk::ScopedAStatus(ndk::ICInterface&)>;

// Calls the object behind a proxy.
ndk::ScopedAStatus Transact(const ndk::SpAIBinder& proxy, const Serve& serve);
// A one-way call: returns at once. The call runs on the binder pool, after earlier one-way calls on
// the same object.
ndk::ScopedAStatus TransactOneway(const ndk::SpAIBinder& proxy, Serve serve);

// Calls a method whose result is an output parameter. A failed call does not write the result,
// except when the reply cannot be parsed to its end: then the part before that is written.
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
