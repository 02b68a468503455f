// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include <android/binder_interface_utils.h>

// What an AIDL interface of the simulated phone is made of: fromBinder(), and proxies whose calls
// go to an object of another simulated process.
//
// Threading:  any thread may call any function. A call runs on the caller's thread, with the delays
//             and deaths that its service's controls have set.

namespace fp_host::binder {

// The implementation of a local binder; null for a proxy.
std::shared_ptr<ndk::ICInterface> LocalImplementation(const ndk::SpAIBinder& binder);
// Whether the object of a proxy has this interface. The first call asks the object and is false if
// it is dead.
bool HasInterface(const ndk::SpAIBinder& proxy, const char* descriptor);

// Implements fromBinder() of the interfaces.
template <typename INTERFACE, typename PROXY>
std::shared_ptr<INTERFACE> FromBinder(const ndk::SpAIBinder& binder) {
  if (binder.get() == nullptr) {
    return nullptr;
  }
  if (const auto local = LocalImplementation(binder)) {
    return std::static_pointer_cast<INTERFACE>(local);
  }
  return HasInterface(binder, INTERFACE::descriptor) ? ndk::SharedRefBase::make<PROXY>(binder)
                                                     : nullptr;
}

// What the receiver of a call gets for an object that the sender passes: a proxy for an object of
// the sender, and the object itself for a proxy of the receiver's own object.
ndk::SpAIBinder TranslateForReceiver(const ndk::SpAIBinder& binder);

// The same for an interface that is an argument of a call.
template <typename INTERFACE>
std::shared_ptr<INTERFACE> TranslateForReceiver(const std::shared_ptr<INTERFACE>& object) {
  return object == nullptr ? nullptr
                           : INTERFACE::fromBinder(TranslateForReceiver(object->asBinder()));
}

using Transaction = std::function<ndk::ScopedAStatus(ndk::ICInterface&)>;

// Runs `transaction` on the object of a proxy, in the process of the object. Returns what it
// returns, or STATUS_DEAD_OBJECT if the process is dead or dies before the answer.
ndk::ScopedAStatus Transact(const ndk::SpAIBinder& proxy, const Transaction& transaction);
// A one-way call: returns at once. The call runs on the binder pool, after earlier one-way calls on
// the same object.
ndk::ScopedAStatus TransactOneway(const ndk::SpAIBinder& proxy, Transaction transaction);

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
