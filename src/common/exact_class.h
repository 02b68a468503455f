// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstring>

namespace android::fp_utils {

// The table of virtual functions of the class of `object`. In the Itanium C++ ABI, which Android
// and Linux follow on every processor, an object whose class is polymorphic and has no virtual base
// begins with the address of that table (section 2.4).
template <typename Base>
const void* VirtualTable(const Base& object) {
  const void* table = nullptr;
  memcpy(&table, static_cast<const void*>(&object), sizeof table);
  return table;
}

// `object` as a Known if that is its class, null if it is of another one or of one derived from
// Known. Known is a class of the library's interface that is defined in one of its sources, so that
// there is one table for it in the process. A typeid would need services that are built with
// run-time type information, which most are not: their classes leave a null in its place.
template <typename Known, typename Base>
const Known* ExactCast(const Base& object) {
  static const void* const table = VirtualTable<Base>(Known());
  return VirtualTable(object) == table ? static_cast<const Known*>(&object) : nullptr;
}

}  // namespace android::fp_utils
