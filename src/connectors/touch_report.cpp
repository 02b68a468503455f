// SPDX-License-Identifier: Apache-2.0
#include "connectors/touch_report.h"

#include <algorithm>
#include <cstring>

namespace android::fp_utils::touch_device {
namespace {

constexpr int32_t kUnscaledId = -1;
constexpr uint32_t kKnownTypes = 3;

// The quarter turns are computed in single precision and the rest in double, because the roundings
// affect the result.
float ToRadians(int32_t angle) {
  constexpr float kQuarterTurns = 0.000244140625F;  // 2^-12
  constexpr double kPi = 3.141592653589793;
  return static_cast<float>(static_cast<double>(static_cast<float>(angle) * kQuarterTurns) * kPi *
                            0.5);
}

}  // namespace

uint32_t ZeroFillShortRead(Reports& reports, size_t bytes) {
  auto* const buffer = reinterpret_cast<uint8_t*>(&reports);
  const auto zero_up_to = [&](size_t end) {
    if (bytes < end) {
      memset(buffer + bytes, 0, end - bytes);
      bytes = end;
    }
  };
  zero_up_to(sizeof reports.count);
  const uint32_t count = std::min(reports.count, kMaxRecords);
  zero_up_to(offsetof(Reports, records) + count * sizeof(Record));
  return count;
}

TouchEvent Decode(const Record& record, uint32_t scaling_factor) {
  const float divisor = record.id == kUnscaledId ? 1.0F : static_cast<float>(scaling_factor);
  TouchEvent event;
  event.type = record.type < kKnownTypes ? static_cast<int32_t>(record.type) : -1;
  event.info = record.info;
  event.id = record.id;
  for (size_t i = 0; i < event.coords.size(); ++i) {
    event.coords[i] = static_cast<float>(record.coords[i]) / divisor;
  }
  std::copy(std::begin(record.flags), std::end(record.flags), event.flags.begin());
  for (size_t i = 0; i < event.signed_coords.size(); ++i) {
    event.signed_coords[i] = static_cast<float>(record.signed_coords[i]) / divisor;
  }
  event.angle = ToRadians(record.angle);
  event.stamp = record.stamp;
  return event;
}

}  // namespace android::fp_utils::touch_device
