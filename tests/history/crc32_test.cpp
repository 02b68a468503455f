// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/crc32.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace android::fp_utils {
namespace {

// Bit by bit, from the definition.
uint32_t SlowCrc32(const uint8_t* data, size_t length) {
  uint32_t crc = 0xFFFFFFFF;
  for (size_t i = 0; i < length; ++i) {
    crc ^= data[i];
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
    }
  }
  return ~crc;
}

TEST(Crc32, KnownValues) {
  EXPECT_EQ(0xCBF43926, crc32("123456789", 9));
  EXPECT_EQ(0xD202EF8D, crc32("\0", 1));
  EXPECT_EQ(0u, crc32(nullptr, 0)) << "no data is read";
}

// Covers every combination of 16-byte steps and remaining bytes, at every alignment.
TEST(Crc32, EqualsTheDefinitionAtEveryLengthAndAlignment) {
  std::vector<uint8_t> data(2048);
  std::mt19937 random(1);
  for (uint8_t& byte : data) {
    byte = static_cast<uint8_t>(random());
  }
  for (size_t start = 0; start < 8; ++start) {
    for (size_t length = 0; length <= 1030; length += length < 80 ? 1 : 19) {
      ASSERT_EQ(length == 0 ? 0 : SlowCrc32(&data[start], length), crc32(&data[start], length))
          << start << '+' << length;
    }
  }
}

}  // namespace
}  // namespace android::fp_utils
