// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstring>

namespace android::fp_utils {

// The vtable pointer of `object`. Relies on the Itanium C++ ABI (section 2.4), which Android and
// Linux follow on every processor: an object of a polymorphic class without virtual bases starts
// with its vtable pointer.
template <typename Base>
const void* VtableOf(const Base& object) {
  const void* vtable = nullptr;
  memcpy(&vtable, static_cast<const void*>(&object), sizeof vtable);
  return vtable;
}

// Returns `object` as a Known if that is exactly its class, and null if it is of any other class,
// also one derived from Known. Known must be an exported class whose virtual functions are defined
// in one source, so that the process has one vtable for it. typeid cannot be used instead: most
// services are built without RTTI, and the vtables of their classes have no type information.
template <typename Known, typename Base>
const Known* ExactCast(const Base& object) {
  static const void* const vtable = VtableOf<Base>(Known());
  return VtableOf(object) == vtable ? static_cast<const Known*>(&object) : nullptr;
}

}  // namespace android::fp_utils
