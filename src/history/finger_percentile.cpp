// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fp_utils/finger_sizes.h"

namespace android::fp_utils {
namespace {

constexpr uint32_t kSignBit = 0x80000000;

// Maps a float to an integer with the same order. Integers compare without branches, and a NaN,
// which a file may contain, sorts beyond the infinity of its sign.
uint32_t ToKey(float value) {
  uint32_t bits = 0;
  memcpy(&bits, &value, sizeof bits);
  return (bits & kSignBit) != 0 ? ~bits : bits | kSignBit;
}

float FromKey(uint32_t key) {
  const uint32_t bits = (key & kSignBit) != 0 ? key & ~kSignBit : ~key;
  float value = 0;
  memcpy(&value, &bits, sizeof value);
  return value;
}

// `position` truncated to an index, and clamped below `count` in case the caller's percentile is
// not within 0 to 100.
size_t IndexOf(float position, size_t count) {
  if (!(position > 0)) {  // also NaN
    return 0;
  }
  return position >= static_cast<float>(count) ? count - 1
                                               : std::min(static_cast<size_t>(position), count - 1);
}

}  // namespace

float FingerSizes::GetPercentileValue(FingerSize::Axis axis, float percentile) {
  const size_t count = fingers.size();
  if (count == 0) {
    return 0;
  }
  if (count == 1) {
    return fingers.front()->GetValue(axis);
  }
  std::vector<uint32_t> keys;
  keys.reserve(count);
  for (const auto& finger : fingers) {
    keys.push_back(ToKey(finger->GetValue(axis)));
  }
  const float position = percentile / 100.0F * static_cast<float>(count - 1);
  const size_t index = IndexOf(position, count);
  // Only two neighbours of the sorted order are needed: nth_element() selects the first, and the
  // second is the smallest key after it.
  const auto lower = keys.begin() + static_cast<ptrdiff_t>(index);
  std::nth_element(keys.begin(), lower, keys.end());
  const float low = FromKey(*lower);
  if (index + 1 == count) {
    return low;
  }
  const float high = FromKey(*std::min_element(lower + 1, keys.end()));
  return low + (position - static_cast<float>(index)) * (high - low);
}

}  // namespace android::fp_utils
