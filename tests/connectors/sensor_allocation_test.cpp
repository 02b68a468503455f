// SPDX-License-Identifier: Apache-2.0
//
// Events are delivered without allocation. Counts calls of operator new by the program and its
// libraries.
#include <atomic>

#include "fp_host/testing.h"
#include "fp_utils/als_monitor.h"
#include "fp_utils/sensor_listener.h"
#include "support/allocations.h"

namespace android::fp_utils {
namespace {

using fp_test::Allocations;

TEST(SensorAllocation, GetLightDoesNotAllocate) {
  AlsMonitor* const monitor = AlsMonitor::GetInstance();
  EXPECT_EQ(0, monitor->StartSampling());
  EXPECT_LT(0u, Allocations()) << "they are counted";
  fp_host::ReportLux(std::vector<float>(100, 7));
  float lux = 0;
  const uint64_t before = Allocations();
  EXPECT_EQ(0, monitor->GetLight(&lux));
  EXPECT_EQ(before, Allocations());
  EXPECT_EQ(7, lux);
}

TEST(SensorAllocation, DeliveryDoesNotAllocate) {
  std::atomic<int> events = 0;
  std::atomic<uint64_t> at_first = 0, at_last = 1;
  SensorListener listener;
  listener.light_sensor_callback_ = [&](const ASensorEvent&) {
    (events == 0 ? at_first : at_last) = Allocations();
    ++events;
  };
  EXPECT_EQ(0, listener.StartSampling(SensorListener::kLight));
  fp_host::ReportLux(std::vector<float>(16, 1));
  EXPECT_TRUE(fp_host::Eventually([&events] { return events == 16; }));
  fp_host::ReportLux(std::vector<float>(10, 1));
  EXPECT_TRUE(fp_host::Eventually([&events] { return events == 26; }));
  EXPECT_EQ(at_first, at_last);
}

}  // namespace
}  // namespace android::fp_utils
