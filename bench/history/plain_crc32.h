// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace fp_bench {

inline constexpr std::array<uint32_t, 256> kPlainTable = [] {
  std::array<uint32_t, 256> table = {};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    table[byte] = byte;
    for (int bit = 0; bit < 8; ++bit) {
      table[byte] = (table[byte] >> 1) ^ ((table[byte] & 1) != 0 ? 0xEDB88320 : 0);
    }
  }
  return table;
}();

// The usual implementation: one table, one byte per step.
inline uint32_t PlainCrc32(const void* data, size_t length) {
  const auto* bytes = static_cast<const uint8_t*>(data);
  uint32_t crc = 0xFFFFFFFF;
  for (size_t i = 0; i < length; ++i) {
    crc = (crc >> 8) ^ kPlainTable[(crc ^ bytes[i]) & 0xFF];
  }
  return ~crc;
}

}  // namespace fp_bench
