// SPDX-License-Identifier: Apache-2.0
//
// The rules of the vendor sensor bridge that the stand-in has to keep.
#include <atomic>
#include <cerrno>

#include <android/sensor.h>

#include "support/sensor_test.h"

namespace {

using fp_host::SetLux;
using fp_test::Eventually;

int Poll(int timeout_ms = 0) { return ALooper_pollOnce(timeout_ms, nullptr, nullptr, nullptr); }

// What a poll on another thread returns.
int PollElsewhere() {
  int result = 0;
  std::thread([&result] { result = Poll(); }).join();
  return result;
}

class SensorBridgeTest : public fp_test::SensorTest {
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

TEST_F(SensorBridgeTest, LooperIsOneForAllThreads) {
  ALooper* const looper = ALooper_forThread();
  EXPECT_NE(nullptr, looper) << "there before it is prepared";
  ALooper* elsewhere = nullptr;
  std::thread([&elsewhere] { elsewhere = ALooper_prepare(0); }).join();
  EXPECT_EQ(looper, elsewhere);
  EXPECT_EQ(looper, ALooper_prepare(ALOOPER_PREPARE_ALLOW_NON_CALLBACKS));
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, PollElsewhere()) << "a thread need not prepare it";
}

TEST_F(SensorBridgeTest, WakesStickAndDataGoesFirst) {
  ASensorEventQueue* const queue = QueueOf(ASENSOR_TYPE_LIGHT);
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll());
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll(1));
  ALooper_wake(ALooper_forThread());
  ALooper_wake(ALooper_forThread());
  SetLux(1);
  EXPECT_EQ(ALOOPER_POLL_CALLBACK, Poll(-1)) << "no ident";
  EXPECT_EQ(ALOOPER_POLL_WAKE, Poll(-1));
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll()) << "two wakes are one, and data signals once";
  SetLux(2);
  EXPECT_EQ(ALOOPER_POLL_CALLBACK, Poll());
  EXPECT_EQ(2, Take(queue));
}

TEST_F(SensorBridgeTest, AnyPollTakesWhatIsMeantForOthers) {
  ASensorEventQueue* const first = QueueOf(ASENSOR_TYPE_LIGHT);
  ASensorEventQueue* const second = QueueOf(ASENSOR_TYPE_LIGHT);
  SetLux(1);
  ALooper_wake(ALooper_forThread());
  EXPECT_EQ(ALOOPER_POLL_CALLBACK, PollElsewhere()) << "the ready queues, all of them";
  EXPECT_EQ(ALOOPER_POLL_WAKE, PollElsewhere());
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
  EXPECT_TRUE(Eventually([] { return fp_host::ArePollersIdle(2); }));
  ALooper_wake(ALooper_forThread());
  EXPECT_TRUE(Eventually([&returned] { return returned == 1 && fp_host::ArePollersIdle(1); }));
  ALooper_wake(ALooper_forThread());
  first.join();
  second.join();
}

TEST_F(SensorBridgeTest, ManagerIsOneAndKeepsItsListUntilTheServiceRestarts) {
  EXPECT_EQ(manager_, ASensorManager_getInstanceForPackage(nullptr));
  ASensorList list = nullptr;
  EXPECT_EQ(2, ASensorManager_getSensorList(manager_, &list));
  fp_host::SetSensors({fp_host::LightSensor("other")});
  ASensorList again = nullptr;
  EXPECT_EQ(2, ASensorManager_getSensorList(manager_, &again));
  EXPECT_EQ(list, again);
  EXPECT_EQ(2, ASensorManager_getSensorList(manager_, nullptr));
  EXPECT_EQ(list[0], SensorOf(ASENSOR_TYPE_LIGHT));
  EXPECT_EQ(nullptr, SensorOf(ASENSOR_TYPE_PRESSURE));
  QueueOf(ASENSOR_TYPE_LIGHT);
  SetLux(1);
  fp_host::RestartSensorService();
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll()) << "queues and their events are gone, too";
  EXPECT_EQ(fp_host::SensorUsage(), fp_host::GetSensorUsage());
  ASensorManager* const next = ASensorManager_getInstanceForPackage("");
  EXPECT_NE(manager_, next);
  EXPECT_EQ(1, ASensorManager_getSensorList(next, &list));
  EXPECT_STREQ("other", ASensor_getName(list[0]));
}

// A manager keeps its first list, also if the query for it failed.
TEST_F(SensorBridgeTest, FailedListIsKept) {
  fp_host::SetSensorFault({.function = "ASensorManager_getSensorList", .calls = 1});
  EXPECT_EQ(0, ASensorManager_getSensorList(manager_, nullptr));
  EXPECT_EQ(0, ASensorManager_getSensorList(manager_, nullptr));
  EXPECT_EQ(nullptr, SensorOf(ASENSOR_TYPE_LIGHT));
  fp_host::RestartSensorService();
  EXPECT_EQ(2, ASensorManager_getSensorList(ASensorManager_getInstanceForPackage(""), nullptr));
}

using SensorBridgeDeathTest = SensorBridgeTest;
TEST_F(SensorBridgeDeathTest, WhatCrashesOnADeviceAborts) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  ASensorEventQueue* const queue = QueueOf(ASENSOR_TYPE_LIGHT);
  EXPECT_DEATH(ALooper_wake(nullptr), "ALooper_wake\\(\\) was called with null");
  EXPECT_DEATH(ASensorEventQueue_registerSensor(queue, nullptr, 0, 0), "null sensor");
  const ASensor* const light = SensorOf(ASENSOR_TYPE_LIGHT);
  ASensorManager_destroyEventQueue(manager_, queue);
  EXPECT_DEATH(Take(queue), "ASensorEventQueue_getEvents\\(\\) was called with queue 1, which is");
  fp_host::RestartSensorService();
  EXPECT_DEATH(ASensor_getType(light), "called with light, which is gone");
  EXPECT_DEATH(SensorOf(ASENSOR_TYPE_LIGHT), "called with manager 1, which is gone");
  fp_host::CountDeadHandleUses();
  EXPECT_EQ(ASENSOR_TYPE_INVALID, ASensor_getType(light));
  EXPECT_EQ(-EINVAL, Take(queue));
  EXPECT_EQ(2, fp_host::GetDeadHandleUses());
}

TEST_F(SensorBridgeTest, QueuesTakeTheEventsOfTheirEnabledSensors) {
  ASensorEventQueue* const queue =
      ASensorManager_createEventQueue(manager_, ALooper_forThread(), 0, nullptr, nullptr);
  const ASensor* const light = SensorOf(ASENSOR_TYPE_LIGHT);
  SetLux(1);
  EXPECT_EQ(0, Take(queue)) << "not enabled yet";
  EXPECT_EQ(0, ASensorEventQueue_registerSensor(queue, light, 0, 0));
  EXPECT_EQ(0, ASensorEventQueue_registerSensor(queue, light, 0, 0));
  EXPECT_EQ(1, Take(queue)) << "an enabled light sensor reports its value, once";
  SetLux({2, 3});
  EXPECT_EQ(0, ASensorEventQueue_disableSensor(queue, light));
  SetLux(4);
  fp_host::LongPress();
  ASensorEvent events[4];
  ASSERT_EQ(2, ASensorEventQueue_getEvents(queue, events, 4)) << "queued events stay queued";
  EXPECT_EQ(3, events[1].light);
  EXPECT_EQ(ASENSOR_TYPE_LIGHT, events[1].type);
  EXPECT_EQ(0, ASensorEventQueue_registerSensor(queue, light, 1000, 0));
  SetLux(5);
  EXPECT_EQ(2, Take(queue)) << "the value as it was enabled again, and the next";
  SetLux(std::vector<float>(1000, 1));
  EXPECT_EQ(8, Take(queue)) << "no bound but the reader's";
  EXPECT_EQ(0, ASensorManager_destroyEventQueue(manager_, queue));
  EXPECT_EQ(ALOOPER_POLL_TIMEOUT, Poll()) << "undelivered events are dropped";
  EXPECT_EQ(fp_host::SensorUsage(), fp_host::GetSensorUsage());
}

}  // namespace
