// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/finger_state.h"

#include <atomic>
#include <limits>
#include <thread>

#include <utils/SystemClock.h>

#include "fp_host/testing.h"
#include "fp_host/touch_node.h"
#include "fp_utils/fps_touch_handler.h"

namespace android::fp_utils {
namespace {

using fp_host::Debug;
using fp_host::TakeLog;

using Requests = std::vector<fp_host::TouchNode::Request>;

const Requests kOn = {{102, {}}};
const Requests kOff = {{103, {}}};

Ellipse Contact(float size) { return {Point(size, 2 * size), 3 * size, 4 * size, size / 10}; }

class FingerStateTest : public fp_host::DeviceTest {
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

  void StopWhileCallbacksRun(int rounds);

  fp_host::TouchNode node_;
  FingerState state_;
};

TEST_F(FingerStateTest, RedundantUpChangesNothing) {
  EXPECT_FALSE(state_.Set(false, 5, Contact(1), true));
  EXPECT_LOG(Debug("FingerState", "Set: ignore redundant finger up"));
  EXPECT_FALSE(state_.IsDown());
  EXPECT_EQ(0, state_.GetDownTime());
  EXPECT_EQ(0, state_.GetDownUptime());
  EXPECT_EQ(0u, state_.GetDownLatencyMs());
  EXPECT_EQ(0, state_.GetUpUptime());
  EXPECT_EQ(Ellipse().Print(), state_.GetEllipse().Print());
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
  EXPECT_EQ(before - 20, state_.GetDownTime()) << "of the touch that has ended";
  EXPECT_EQ(Ellipse().Print(), state_.GetEllipse().Print());
  EXPECT_TRUE(IsTouchEventCleared()) << "also without LPTW";
  EXPECT_TRUE(node_.TakeRequests().empty());

  state_.Set(true, 1, Contact(1), false);
  EXPECT_EQ(0, state_.GetUpUptime()) << "the next touch is not over";
}

TEST_F(FingerStateTest, UnusualTimes) {
  const int64_t future = uptimeMillis() + 1000000;
  for (const int64_t time : {int64_t{0}, int64_t{-1}, std::numeric_limits<int64_t>::min(),
                             int64_t{1}, future, std::numeric_limits<int64_t>::max()}) {
    EXPECT_TRUE(state_.Set(true, time, Contact(1), false));
    EXPECT_EQ(time, state_.GetDownTime());
    EXPECT_EQ(time > 0 ? static_cast<uint32_t>(state_.GetDownUptime() - time) : 0,
              state_.GetDownLatencyMs())
        << time;
    state_.Set(false, 0, Contact(1), false);
  }
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
  EXPECT_TRUE(state_.IsLptwRequested()) << "by the last down";

  EXPECT_TRUE(state_.Set(true, 11, Contact(1), false));
  EXPECT_FALSE(state_.IsLptwRequested());
  state_.Set(false, 0, Contact(1), false);
  EXPECT_TRUE(node_.TakeRequests().empty());

  node_.SetRequestResult(102, -1);
  EXPECT_TRUE(state_.Set(true, 12, Contact(1), true))
      << "a failure of the touch handler is ignored";
  EXPECT_TRUE(state_.IsLptwEnabled());
}

// The callback on the touch worker and another thread change the finger state while the handler is
// stopped, so the locks of finger state and handler are taken in both orders.
void FingerStateTest::StopWhileCallbacksRun(int rounds) {
  fp_host::MuteLog(true);
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
  for (int i = 0; i < rounds; ++i) {
    handler.Start();
    const int before = callbacks;  // without a callback, Stop() would end the worker at once
    EXPECT_TRUE(fp_host::Eventually([&] { return callbacks != before; }));
    handler.Stop();
  }
  done = true;
  service.join();
  controller.join();
}

TEST_F(FingerStateTest, WorksFromCallbacksWhileTheHandlerStops) { StopWhileCallbacksRun(200); }

class LongFingerStateTest : public FingerStateTest {};
TEST_F(LongFingerStateTest, WorksFromCallbacksWhileTheHandlerStops) { StopWhileCallbacksRun(2000); }

}  // namespace
}  // namespace android::fp_utils
