// SPDX-License-Identifier: Apache-2.0
//
// The touch handler against a device that sends anything, and against one that never stops.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <thread>

#include "support/holdings.h"
#include "support/touch_test.h"

namespace android::fp_utils {
namespace {

using fp_host::TouchRecord;
using namespace fp_test;

// Buffers of any content: every delivered event is what the driver's interface says.
class HostileReports : public TouchTest {
 protected:
  void Deliver(int buffers) {
    MuteLog(true);
    SetFactor("7");
    FpsTouchHandler handler;
    std::vector<TouchEvent> delivered;
    handler.touch_event_callback_ = [&](const TouchEvent& event) { delivered.push_back(event); };
    ASSERT_TRUE(handler.Configure(kSensingArea));
    std::mt19937_64 random(9);
    for (int i = 0; i < buffers; ++i) {
      std::vector<TouchRecord> records(random() % (random() % 8 == 0 ? 129 : 6));
      for (TouchRecord& record : records) {
        Randomise(record, random);
      }
      std::string buffer = fp_host::EncodeTouchRecords(records);
      const uint32_t claimed = random() % 4 == 0 ? static_cast<uint32_t>(random())
                                                 : static_cast<uint32_t>(records.size());
      memcpy(buffer.data(), &claimed, sizeof claimed);
      delivered.clear();
      ASSERT_TRUE(node_.PushBytes(buffer));
      ASSERT_TRUE(handler.ReadTouchEvent());
      size_t expected = 0;
      for (size_t k = 0; k < std::min<size_t>(records.size(), claimed); ++k) {
        if ((records[k].valid & 1) != 0) {
          ASSERT_LT(expected, delivered.size());
          ASSERT_TRUE(Same(Decoded(records[k], 7), delivered[expected])) << "buffer " << i;
          ++expected;
        }
      }
      ASSERT_EQ(expected, delivered.size()) << "buffer " << i;
    }
  }

 private:
  static void Randomise(TouchRecord& record, std::mt19937_64& random) {
    auto* bytes = reinterpret_cast<uint8_t*>(&record);
    for (size_t at = 0; at < sizeof record; at += 8) {
      const uint64_t value = random();
      memcpy(bytes + at, &value, std::min<size_t>(8, sizeof record - at));
    }
    if (random() % 2 == 0) {
      record.id = static_cast<int32_t>(random() % 4) - 2;
      record.type = static_cast<uint32_t>(random() % 5);
    }
  }
};

TEST_F(HostileReports, AreDecodedOrDropped) { Deliver(Share(100000)); }

using LongHostileReports = HostileReports;
TEST_F(LongHostileReports, AreDecodedOrDropped) { Deliver(10000000); }

// Start and stop against a device that never stops sending.
class StartStopStorm : public TouchTest {
 protected:
  void Cycle(int cycles) {
    using Clock = std::chrono::steady_clock;
    std::atomic<bool> flooding = true;
    std::atomic<bool> stopped = true;
    std::atomic<int> late = 0;
    std::atomic<int> delivered = 0;
    Run([&](const TouchEvent& /*event*/) {
      ++delivered;
      late += stopped ? 1 : 0;
    });
    handler_.Stop();
    MuteLog(true);
    const long descriptors = CountDescriptors();
    const long threads = CountThreads();
    std::thread flood([&] {
      const std::string buffer = fp_host::EncodeTouchRecords(std::vector<TouchRecord>(8));
      while (flooding) {
        node_.TryPushBytes(buffer);
      }
    });
    std::vector<Clock::duration> durations;
    for (int i = 0; i < cycles; ++i) {
      stopped = false;
      ASSERT_TRUE(handler_.Start());
      if (i % 4 == 0) {  // in the middle of a delivery; the others mostly before the first
        const int before = delivered;
        ASSERT_TRUE(Eventually([&] { return delivered != before; }));
      }
      const auto begin = Clock::now();
      ASSERT_TRUE(handler_.Stop());
      durations.push_back(Clock::now() - begin);
      stopped = true;
    }
    flooding = false;
    flood.join();
    EXPECT_EQ(descriptors, CountDescriptors());
    EXPECT_TRUE(Eventually([&] { return CountThreads() <= threads; }));
    EXPECT_EQ(0, late) << "callbacks after Stop()";
    std::sort(durations.begin(), durations.end());
    const auto microseconds = [&](double share) {
      const auto index = static_cast<size_t>(share * static_cast<double>(durations.size() - 1));
      return std::chrono::duration<double, std::micro>(durations[index]).count();
    };
    printf("%d cycles: stop takes %.0f us (median), %.0f us (99 %%), %.0f us (longest)\n", cycles,
           microseconds(0.5), microseconds(0.99), microseconds(1));
  }
};

TEST_F(StartStopStorm, NeitherHangsNorLeaks) { Cycle(Share(10000)); }

using LongStartStopStorm = StartStopStorm;
TEST_F(LongStartStopStorm, NeitherHangsNorLeaks) { Cycle(1000000); }

}  // namespace
}  // namespace android::fp_utils
