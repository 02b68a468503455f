// SPDX-License-Identifier: Apache-2.0
//
// The rules of the vendor sensor bridge that its stand-in must follow.
#include <atomic>
#include <cerrno>

#include <android/sensor.h>

#include "fp_host/testing.h"

namespace {

using namespace fp_host;

int Poll(int timeout_ms = 0) { return ALooper_pollOnce(timeout_ms, nullptr, nullptr, nullptr); }

int PollOnAnotherThread() {
  int result = 0;
  std::thread([&result] { result = Poll(); }).join();
  return result;
}

class SensorBridgeTest : public SensorTest {
 protected:
  ASensorEventQueue* QueueOf(int type) {
    ASensorEventQueue* queue =
        ASensorManager_createEventQueue(manager_, ALooper_forThread(), 7, nullptr, nullptr);
    EXPECT_EQ(0, ASensorEventQueue_registerSensor(queue, SensorOf(type), 20000, 0));
    return queue;
  }
  const ASensor* SensorOf(int type) { return ASensorManager_getDefaultSensor(manager_, type); }
  static int Take(ASensorEventQueue* queue) {
    ASensorEvent events[8];
    return static_cast<int>(ASensorEventQueue_getEvents(queue, events, 8));
  }

  ASensorManager* const manager_ = ASensorManager_getInstanceForPackage("any");
};

TEST_F(SensorBridgeTest, WakesStickAndDataGoesFirst) {
  ASensorEventQueue* const queue = QueueOf(ASENSOR_TYPE_LIGHT);
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll());
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll(1));
  ALooper_wake(ALooper_forThread());
  ALooper_wake(ALooper_forThread());
  ReportLux(1);
  EXPECT_EQ(ALOOPER_POLL_CALLBACK, Poll(-1)) << "no ident";
  EXPECT_EQ(ALOOPER_POLL_WAKE, Poll(-1));
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll()) << "two wakes are one, and data signals once";
  ReportLux(2);
  EXPECT_EQ(ALOOPER_POLL_CALLBACK, Poll());
  EXPECT_EQ(2, Take(queue));
}

TEST_F(SensorBridgeTest, LooperIsOneForAllThreads) {
  EXPECT_NE(nullptr, ALooper_forThread()) << "there before it is prepared";
  EXPECT_EQ(ALooper_forThread(), ALooper_prepare(ALOOPER_PREPARE_ALLOW_NON_CALLBACKS));
  ASensorEventQueue* const first = QueueOf(ASENSOR_TYPE_LIGHT);
  ASensorEventQueue* const second = QueueOf(ASENSOR_TYPE_LIGHT);
  ReportLux(1);
  ALooper_wake(ALooper_forThread());
  EXPECT_EQ(ALOOPER_POLL_CALLBACK, PollOnAnotherThread()) << "one poll serves all ready queues";
  EXPECT_EQ(ALOOPER_POLL_WAKE, PollOnAnotherThread());
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll());
  EXPECT_EQ(1, Take(first));
  EXPECT_EQ(1, Take(second));
  EXPECT_EQ(0, Take(second)) << "0 and no error where nothing is queued";
}

TEST_F(SensorBridgeTest, WakesOneWaitingThread) {
  std::atomic<int> returned = 0;
  const auto poll = [&returned] {
    EXPECT_EQ(ALOOPER_POLL_WAKE, Poll(-1));
    ++returned;
  };
  std::thread first(poll), second(poll);
  EXPECT_TRUE(Eventually([] { return ArePollersWaiting(2); }));
  ALooper_wake(ALooper_forThread());
  EXPECT_TRUE(Eventually([&returned] { return returned == 1 && ArePollersWaiting(1); }));
  ALooper_wake(ALooper_forThread());
  first.join();
  second.join();
}

using SensorBridgeDeathTest = SensorBridgeTest;
TEST_F(SensorBridgeDeathTest, UseOfADeadHandleAborts) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  ASensorEventQueue* const queue = QueueOf(ASENSOR_TYPE_LIGHT);
  EXPECT_DEATH(ALooper_wake(nullptr), "ALooper_wake\\(\\) was called with null");
  EXPECT_DEATH(ASensorEventQueue_registerSensor(queue, nullptr, 0, 0), "null sensor");
  const ASensor* const light = SensorOf(ASENSOR_TYPE_LIGHT);
  ASensorManager_destroyEventQueue(manager_, queue);
  EXPECT_DEATH(Take(queue), "ASensorEventQueue_getEvents\\(\\) was called with queue 1, which is");
  RestartSensorService();
  EXPECT_DEATH(ASensor_getType(light), "called with light, which is gone");
  EXPECT_DEATH(SensorOf(ASENSOR_TYPE_LIGHT), "called with manager 1, which is gone");
  AllowDeadHandleUses();
  EXPECT_EQ(ASENSOR_TYPE_INVALID, ASensor_getType(light));
  EXPECT_EQ(-EINVAL, Take(queue));
  EXPECT_EQ(2, GetDeadHandleUses());
}

TEST_F(SensorBridgeTest, QueuesTakeTheEventsOfTheirEnabledSensors) {
  ReportLux(1);
  ASensorEventQueue* const queue = QueueOf(ASENSOR_TYPE_LIGHT);
  const ASensor* const light = SensorOf(ASENSOR_TYPE_LIGHT);
  EXPECT_EQ(0, ASensorEventQueue_registerSensor(queue, light, 0, 0));
  EXPECT_EQ(1, Take(queue)) << "an enabled light sensor reports its value, once";
  ReportLux({2, 3});
  EXPECT_EQ(0, ASensorEventQueue_disableSensor(queue, light));
  ReportLux(4);
  ReportLongPress();
  EXPECT_EQ(2, Take(queue)) << "queued events stay queued, no new ones come";
  EXPECT_EQ(0, ASensorEventQueue_registerSensor(queue, light, 1000, 0));
  ReportLux(std::vector<float>(1000, 1));
  EXPECT_EQ(8, Take(queue)) << "only the reader's buffer limits the number";
  EXPECT_EQ(0, ASensorManager_destroyEventQueue(manager_, queue));
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll()) << "undelivered events are dropped";
  EXPECT_EQ(SensorUsage(), GetSensorUsage());
}

}  // namespace
