// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/finger_state.h"

#include <atomic>
#include <limits>
#include <thread>

#include <utils/SystemClock.h>

#include "control/touch_node.h"
#include "fp_utils/fps_touch_handler.h"
#include "support/device_test.h"
#include "support/recorder.h"

namespace android::fp_utils {
namespace {

using fp_test::Debug;
using fp_test::TakeLog;

using Requests = std::vector<fp_host::TouchNode::Request>;

const Requests kOn = {{102, {}}};
const Requests kOff = {{103, {}}};

Ellipse Contact(float size) { return {Point(size, 2 * size), 3 * size, 4 * size, size / 10}; }

class FingerStateTest : public fp_test::DeviceTest {
 protected:
  FingerStateTest() {
    FpsTouchHandler& handler = FpsTouchHandler::GetInstance();
    handler.Configure({.left = 0, .top = 0, .right = 100, .bottom = 100});
    handler.touch_event_.info = 7;
    node_.TakeRequests();
    TakeLog();
  }
  ~FingerStateTest() override { FpsTouchHandler::GetInstance().Stop(); }

  static bool IsTouchEventCleared() {
    const TouchEvent event = FpsTouchHandler::GetInstance().GetTouchEvent();
    return event.type == -1 && event.info == 0;
  }

  fp_host::TouchNode node_;
  FingerState state_;
};

TEST_F(FingerStateTest, RedundantUpChangesNothing) {
  EXPECT_FALSE(state_.Set(false, 5, Contact(1), true));
  EXPECT_LOG(Debug("FingerState", "Set: ignore redundant finger up"));
  EXPECT_FALSE(state_.IsDown());
  EXPECT_EQ(0, state_.GetUpUptime());
  EXPECT_EQ(0, state_.GetEllipse().major_axis);
  EXPECT_FALSE(state_.IsLptwRequested());
  EXPECT_FALSE(IsTouchEventCleared());
  EXPECT_TRUE(node_.TakeRequests().empty());
}

TEST_F(FingerStateTest, RecordsATouch) {
  const int64_t before = uptimeMillis();
  EXPECT_TRUE(state_.Set(true, before - 20, Contact(1), false));
  const int64_t after = uptimeMillis();
  EXPECT_TRUE(state_.IsDown());
  EXPECT_EQ(before - 20, state_.GetDownTime());
  EXPECT_LE(before, state_.GetDownUptime());
  EXPECT_GE(after, state_.GetDownUptime());
  EXPECT_EQ(state_.GetDownUptime() - state_.GetDownTime(), state_.GetDownLatencyMs());
  EXPECT_EQ(0, state_.GetUpUptime());
  EXPECT_EQ(Contact(1).Print(), state_.GetEllipse().Print());
  EXPECT_FALSE(IsTouchEventCleared());

  EXPECT_TRUE(state_.Set(false, 1, Contact(2), true));
  EXPECT_FALSE(state_.IsDown());
  EXPECT_LE(after, state_.GetUpUptime());
  EXPECT_EQ(before - 20, state_.GetDownTime()) << "of the touch that is over";
  EXPECT_EQ(Ellipse().Print(), state_.GetEllipse().Print());
  EXPECT_TRUE(IsTouchEventCleared()) << "without LPTW too";
  EXPECT_TRUE(node_.TakeRequests().empty());
}

TEST_F(FingerStateTest, OddTimes) {
  for (const long time : {0L, -1L, std::numeric_limits<long>::min()}) {
    EXPECT_TRUE(state_.Set(true, time, Contact(1), false));
    EXPECT_EQ(time, state_.GetDownTime());
    EXPECT_EQ(0u, state_.GetDownLatencyMs()) << "unknown";
    state_.Set(false, 0, Contact(1), false);
  }
  EXPECT_TRUE(state_.Set(true, uptimeMillis() + 1000000, Contact(1), false));
  EXPECT_LT(0xFFF00000u, state_.GetDownLatencyMs()) << "wraps around";
  state_.Set(false, 0, Contact(1), false);
  EXPECT_TRUE(state_.Set(true, std::numeric_limits<long>::max(), Contact(1), false));
}

TEST_F(FingerStateTest, LptwFollowsTheFinger) {
  EXPECT_TRUE(state_.Set(true, 10, Contact(1), true));
  EXPECT_EQ(kOn, node_.TakeRequests());
  EXPECT_TRUE(state_.IsLptwEnabled());

  const int64_t down_uptime = state_.GetDownUptime();
  EXPECT_TRUE(state_.Set(true, 99, Contact(2), false)) << "a repeated down";
  EXPECT_EQ(10, state_.GetDownTime());
  EXPECT_EQ(down_uptime, state_.GetDownUptime());
  EXPECT_TRUE(state_.IsLptwRequested());
  EXPECT_EQ(Contact(2).Print(), state_.GetEllipse().Print());
  EXPECT_TRUE(node_.TakeRequests().empty());

  EXPECT_TRUE(state_.Set(false, 0, Contact(2), false));
  EXPECT_EQ(kOff, node_.TakeRequests());
  EXPECT_FALSE(state_.IsLptwEnabled());
  EXPECT_TRUE(state_.IsLptwRequested()) << "of the last down";

  EXPECT_TRUE(state_.Set(true, 11, Contact(1), false));
  EXPECT_FALSE(state_.IsLptwRequested());
  state_.Set(false, 0, Contact(1), false);
  EXPECT_TRUE(node_.TakeRequests().empty());

  node_.Answer(102, -1);
  EXPECT_TRUE(state_.Set(true, 12, Contact(1), true))
      << "the handler's failure is not the finger's";
  EXPECT_TRUE(state_.IsLptwEnabled());
}

// The service's callback drives the finger state on the touch worker while other threads do the
// same and the handler is stopped: locks are taken in both directions, and nothing hangs.
TEST_F(FingerStateTest, WorksFromCallbacksWhileTheHandlerStops) {
  fp_test::MuteLog(true);
  FpsTouchHandler& handler = FpsTouchHandler::GetInstance();
  std::atomic<int> callbacks = 0;
  handler.touch_event_callback_ = [&](const TouchEvent& event) {
    ++callbacks;
    state_.Set(event.id % 2 == 0, 1, Contact(1), true);
  };
  std::atomic<bool> done = false;
  std::thread service([&] {
    for (int i = 0; !done; ++i) {
      state_.Set(i % 2 == 0, 1, Contact(1), true);
    }
  });
  std::thread controller([&] {
    for (int32_t id = 0; !done; ++id) {
      node_.TryPushBytes(fp_host::EncodeTouchRecords({{.id = id}, {.id = id + 1}}));
      node_.TakeRequests();
    }
  });
  for (int i = 0; i < fp_test::Share(2000); ++i) {
    handler.Start();
    const int before = callbacks;  // Stop() would else end the worker before its first report
    EXPECT_TRUE(fp_test::Eventually([&] { return callbacks != before; }));
    handler.Stop();
  }
  done = true;
  service.join();
  controller.join();
}

}  // namespace
}  // namespace android::fp_utils
