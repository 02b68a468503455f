// SPDX-License-Identifier: Apache-2.0
#include "support/touch_test.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include <android-base/properties.h>

namespace fp_test {

using android::fp_utils::TouchEvent;
using fp_host::TouchRecord;

bool Same(const TouchEvent& a, const TouchEvent& b) {
  const auto bits = [](const auto& floats) {
    std::vector<uint32_t> result;
    std::transform(floats.begin(), floats.end(), std::back_inserter(result),
                   [](float f) { return __builtin_bit_cast(uint32_t, f); });
    return result;
  };
  return a.type == b.type && a.info == b.info && a.id == b.id && a.flags == b.flags &&
         a.stamp == b.stamp && bits(a.coords) == bits(b.coords) &&
         bits(a.signed_coords) == bits(b.signed_coords) &&
         __builtin_bit_cast(uint32_t, a.angle) == __builtin_bit_cast(uint32_t, b.angle);
}

TouchEvent Decoded(const TouchRecord& record, uint32_t factor) {
  const float divisor = record.id == -1 ? 1.0F : static_cast<float>(factor);
  TouchEvent event;
  event.type = record.type <= 2 ? static_cast<int32_t>(record.type) : -1;
  event.info = record.info;
  event.id = record.id;
  for (size_t i = 0; i < 20; ++i) {
    event.coords[i] = record.coords[i] / divisor;
  }
  event.flags = record.flags;
  event.signed_coords = {static_cast<float>(record.signed_coords[0]) / divisor,
                         static_cast<float>(record.signed_coords[1]) / divisor};
  const double turns = static_cast<float>(record.angle) / 4096.0F;
  event.angle = static_cast<float>(turns * M_PI / 2);
  event.stamp = record.stamp;
  return event;
}

void TouchTest::SetFactor(const std::string& factor) {
  android::base::SetProperty("persist.vendor.udfps.fth.touch_resolution_scaling_factor", factor);
}

void TouchTest::Run(std::function<void(const TouchEvent&)> callback) {
  handler_.touch_event_callback_ = std::move(callback);
  ASSERT_TRUE(handler_.Configure(kSensingArea));
  ASSERT_TRUE(handler_.Start());
  ASSERT_TRUE(fp_host::Eventually(
      [] { return fp_host::CountLinesWith(fp_host::TakeLog(), "threadLoop starting") == 1; }));
  node_.TakeRequests();
}

}  // namespace fp_test
