// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include <android/binder_interface_utils.h>

#include "binder/ibinder.h"

// What the Bn and Bp classes of all interfaces have in common.

namespace fp_host::binder {

AIBinder_Class* DefineClass(const char* descriptor);

// See IFoo::fromBinder() of any interface.
template <typename INTERFACE, typename PROXY>
std::shared_ptr<INTERFACE> FromBinder(const ndk::SpAIBinder& binder, const AIBinder_Class* clazz) {
  if (!AIBinder_associateClass(binder.get(), clazz)) {
    return nullptr;
  }
  if (const auto implementation = ndk::ICInterface::asInterface(binder.get())) {
    return std::static_pointer_cast<INTERFACE>(implementation);
  }
  return ndk::SharedRefBase::make<PROXY>(binder);
}

// An interface as the receiver of a call sees what its sender passed.
template <typename INTERFACE>
std::shared_ptr<INTERFACE> CrossOver(const std::shared_ptr<INTERFACE>& object) {
  return object == nullptr ? nullptr : INTERFACE::fromBinder(CrossOver(object->asBinder()));
}

using Serve = std::function<ndk::ScopedAStatus(ndk::ICInterface&)>;

// A call on the object behind `binder`.
ndk::ScopedAStatus Transact(AIBinder* binder, const Serve& serve);
// A call that nobody waits for: it runs on the binder pool, after the earlier ones on the object.
ndk::ScopedAStatus TransactOneway(AIBinder* binder, Serve serve);

// A call of a proxy's method whose last parameter is its result. As on the wire, the result is
// written by success only.
template <typename INTERFACE, typename METHOD, typename RESULT, typename... ARGUMENTS>
ndk::ScopedAStatus Query(ndk::BpCInterface<INTERFACE>& proxy, METHOD method, RESULT* result,
                         const ARGUMENTS&... arguments) {
  RESULT answer{};
  ndk::ScopedAStatus status = Transact(proxy.asBinder().get(), [&](ndk::ICInterface& object) {
    return (static_cast<INTERFACE&>(object).*method)(arguments..., &answer);
  });
  if (status.isOk()) {
    *result = std::move(answer);
  }
  return status;
}

}  // namespace fp_host::binder
