// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/crc32.h"

#include <array>
#include <cstddef>

// Slicing-by-16 after Kounavis and Berry, "Novel Table Lookup-Based Algorithms for High-Performance
// CRC Generation" (IEEE Transactions on Computers, 2008): 16 bytes per step and one table per byte
// position, all derived from the usual 256-entry table.

namespace android::fp_utils {
namespace {

constexpr uint32_t kPolynomial = 0xEDB88320;
constexpr size_t kSlices = 16;

using Table = std::array<uint32_t, 256>;

constexpr std::array<Table, kSlices> MakeTables() {
  std::array<Table, kSlices> tables = {};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t value = byte;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value >> 1) ^ ((value & 1) != 0 ? kPolynomial : 0);
    }
    tables[0][byte] = value;
  }
  // tables[k][b] is the effect of byte b on the register after k more zero bytes.
  for (size_t k = 1; k < kSlices; ++k) {
    for (size_t byte = 0; byte < 256; ++byte) {
      const uint32_t previous = tables[k - 1][byte];
      tables[k][byte] = (previous >> 8) ^ tables[0][previous & 0xFF];
    }
  }
  return tables;
}

constexpr std::array<Table, kSlices> kTables = MakeTables();

uint32_t LoadLittleEndian(const uint8_t* bytes) {
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// The contribution of the four bytes of `word` when `k` bytes follow them.
uint32_t Slice(uint32_t word, size_t k) {
  return kTables[k + 3][word & 0xFF] ^ kTables[k + 2][word >> 8 & 0xFF] ^
         kTables[k + 1][word >> 16 & 0xFF] ^ kTables[k][word >> 24];
}

}  // namespace

uint32_t crc32(const void* data, unsigned long length) {
  if (length == 0) {
    return 0;
  }
  const auto* bytes = static_cast<const uint8_t*>(data);
  uint32_t crc = 0xFFFFFFFF;
  // Bytes 4 to 15 do not depend on the register, so they need not wait for the previous step.
  for (; length >= 16; length -= 16, bytes += 16) {
    const uint32_t rest = Slice(LoadLittleEndian(bytes + 4), 8) ^
                          Slice(LoadLittleEndian(bytes + 8), 4) ^
                          Slice(LoadLittleEndian(bytes + 12), 0);
    crc = rest ^ Slice(LoadLittleEndian(bytes) ^ crc, 12);
  }
  if ((length & 8) != 0) {
    crc = Slice(LoadLittleEndian(bytes + 4), 0) ^ Slice(LoadLittleEndian(bytes) ^ crc, 4);
    bytes += 8;
  }
  if ((length & 4) != 0) {
    crc = Slice(LoadLittleEndian(bytes) ^ crc, 0);
    bytes += 4;
  }
  if ((length & 2) != 0) {
    crc ^= static_cast<uint32_t>(bytes[0] | bytes[1] << 8);
    crc = (crc >> 16) ^ kTables[1][crc & 0xFF] ^ kTables[0][crc >> 8 & 0xFF];
    bytes += 2;
  }
  if ((length & 1) != 0) {
    crc = (crc >> 8) ^ kTables[0][(crc ^ *bytes) & 0xFF];
  }
  return ~crc;
}

}  // namespace android::fp_utils
