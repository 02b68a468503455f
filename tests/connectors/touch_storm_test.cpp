// SPDX-License-Identifier: Apache-2.0
//
// The touch handler against a device that never stops sending.
#include <atomic>
#include <thread>

#include "fp_host/testing.h"
#include "support/touch_test.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

class StartStopStorm : public TouchTest {
 protected:
  void Cycle(int cycles) {
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
      const std::string buffer = EncodeTouchRecords(std::vector<TouchRecord>(8));
      while (flooding) {
        node_.TryPushBytes(buffer);
      }
    });
    for (int i = 0; i < cycles; ++i) {
      stopped = false;
      ASSERT_TRUE(handler_.Start());
      if (i % 4 == 0) {  // stop during a delivery; otherwise mostly before the first
        const int before = delivered;
        ASSERT_TRUE(Eventually([&] { return delivered != before; }));
      }
      ASSERT_TRUE(handler_.Stop());
      stopped = true;
    }
    flooding = false;
    flood.join();
    EXPECT_EQ(descriptors, CountDescriptors());
    EXPECT_TRUE(Eventually([&] { return CountThreads() <= threads; }));
    EXPECT_EQ(0, late) << "callbacks after Stop()";
  }
};

TEST_F(StartStopStorm, NeitherHangsNorLeaks) { Cycle(Share(1000)); }

using LongStartStopStorm = StartStopStorm;
TEST_F(LongStartStopStorm, NeitherHangsNorLeaks) { Cycle(1000000); }

}  // namespace
}  // namespace android::fp_utils
