// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <iterator>
#include <type_traits>

namespace ndk {
namespace internal {

// Specialised for each enumeration by the header that declares it, with a std::array of all values.
template <typename EnumType>
constexpr void* enum_values = nullptr;

}  // namespace internal

// All values of an enumeration, in the order of their declaration.
template <typename EnumType, typename = std::enable_if_t<std::is_enum<EnumType>::value>>
class enum_range {
 public:
  constexpr auto begin() const { return std::begin(internal::enum_values<EnumType>); }
  constexpr auto end() const { return std::end(internal::enum_values<EnumType>); }
};

}  // namespace ndk
