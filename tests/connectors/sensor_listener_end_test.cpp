// SPDX-License-Identifier: Apache-2.0
//
// A listener's worker ends after the death of the system server, in the destructor or in a
// callback, in every state.
#include <atomic>
#include <cerrno>

#include "support/listener_test.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

constexpr char kTag[] = "SensorListener";
const LogLine kDied = Info(kTag, "system server died.");
constexpr char kWake[] = "ALooper_wake(looper) = 0";

using SensorListenerEndTest = ListenerTest;

// The old service's handles are invalid: a call with one aborts.
TEST_F(SensorListenerEndTest, ConnectsAfreshAfterTheDeathOfTheSystemServer) {
  StartQuietly();
  EXPECT_EQ(0, listener_->StartSampling(kLongPress));
  TakeCalls();
  RestartSystemServer();
  EXPECT_EQ((Texts{kWake}), MyCalls()) << "and nothing of the old service";
  EXPECT_EQ((Texts{"ALooper_pollOnce(-1) = -1"}), Others());
  EXPECT_LOG(kDied);
  EXPECT_FALSE(listener_->IsAnySamplerStarted());
  EXPECT_EQ(0, listener_->StopSampling(kLight));

  EXPECT_EQ(0, listener_->StartSampling(kLight));
  EXPECT_EQ(9u, MyCalls().size()) << "all but the looper's preparation";
  ReportLux(8);
  EXPECT_TRUE(AwaitLights(1)) << "by a new worker";
  EXPECT_EQ(8, last_lux_);

  SetSensors({{"pressure", "android.sensor.pressure", ASENSOR_TYPE_PRESSURE, 0}});
  RestartSystemServer();
  TakeLog();
  EXPECT_EQ(-ENOMEM, listener_->StartSampling(kLight));
  const std::string not_found = "ConnectSensorManagerIfNeeded: Sensor(";
  EXPECT_LOG(Debug(kTag, "The device sensor count:1"),
             Error(kTag, not_found + "android.sensor.light) not found.\n"),
             Error(kTag, not_found + "com.norvan.sensor.long_press) not found.\n"),
             Debug(kTag, "Successfully connected to Sensor Manager."),
             Error(kTag, "sensor[0] is not available."))
      << "nor are the old sensors remembered";
}

TEST_F(SensorListenerEndTest, DestructorEndsTheWorkerAndGivesTheSensorsBack) {
  StartQuietly();
  EXPECT_EQ(0, listener_->StartSampling(kLongPress));
  TakeCalls();
  listener_.reset();
  EXPECT_EQ((Texts{kWake, "ASensorEventQueue_disableSensor(queue 1, light) = 0",
                   "ASensorEventQueue_disableSensor(queue 1, long press) = 0",
                   "ASensorManager_destroyEventQueue(manager 1, queue 1) = 0"}),
            MyCalls());
  EXPECT_EQ(SensorUsage(), GetSensorUsage());
}

TEST_F(SensorListenerEndTest, WorkerWaitingForTheLockGivesUpWhenItHasToEnd) {
  StartQuietly();
  Gate polled;
  OnSensorCall("ALooper_pollOnce", nullptr, [&polled] { polled.Pass(); });
  OnSensorCall("ALooper_wake", nullptr, [&polled] { polled.Open(); });
  ReportLux(1);
  ASSERT_TRUE(polled.AwaitArrival()) << "the worker has seen the event, and needs the lock next";
  TakeCalls();
  RunBounded("death while the worker is on its way to the lock", [this] {
    RestartSensorService();
    listener_->OnSystemServerDeath();  // holds the lock when its wake opens the gate
  });
  EXPECT_EQ(0, lights_);
}

TEST_F(SensorListenerEndTest, WakeThatAnotherPollerTookIsSentAgain) {
  StartQuietly();
  for (const int swallowed : {1, 5}) {
    SetSensorFault({.function = "ALooper_wake", .calls = swallowed});
    RunBounded("death with lost wakes", [this] { listener_->OnSystemServerDeath(); });
    EXPECT_EQ(0, listener_->StartSampling(kLight));
  }
}

// The system server dies while a batch is delivered. The rest of the batch is dropped, since its
// sensors are gone, and the callback can call the listener without deadlock.
TEST_F(SensorListenerEndTest, DeathDuringACallbackEndsTheDelivery) {
  StartQuietly();
  EXPECT_EQ(0, listener_->StartSampling(kLongPress));
  Gate gate;
  int32_t start = 1, stop = 1;
  on_light_ = [&] {
    gate.Pass();
    start = listener_->StartSampling(kLongPress);
    stop = listener_->StopSampling(kLight);
    listener_->OnSystemServerDeath();
  };
  ReportLux({1, 2, 3});
  ASSERT_TRUE(gate.AwaitArrival());
  RestartSensorService();
  OnSensorCall("ALooper_wake", [&gate] { gate.Open(); });
  TakeLog();
  RunBounded("death during a callback", [this] { listener_->OnSystemServerDeath(); });
  EXPECT_EQ(1, lights_);
  EXPECT_EQ(-ENOMEM, start);
  EXPECT_EQ(0, stop);
  EXPECT_LOG(kDied, Error(kTag, "Failed to connect sensor manager."));
}

TEST_F(SensorListenerEndTest, CallbackMayReportTheDeathItself) {
  StartQuietly();
  int32_t again = -1;
  on_light_ = [&] {
    if (lights_ == 1) {
      RestartSensorService();
      listener_->OnSystemServerDeath();
      EXPECT_FALSE(listener_->IsAnySamplerStarted());
      again = listener_->StartSampling(kLight);
    }
  };
  ReportLux({1, 2});
  // The second event is still delivered, and the new registration reports the current value.
  EXPECT_TRUE(AwaitLights(3));
  EXPECT_EQ(0, again);
  RunBounded("destruction after that", [this] { listener_.reset(); });
  EXPECT_EQ(SensorUsage(), GetSensorUsage());
}

// The callback may also construct another listener in its place.
TEST_F(SensorListenerEndTest, CallbackMayDestroyTheListener) {
  static std::atomic<bool> worker_ended = false;
  struct ThreadEnd {
    ~ThreadEnd() { worker_ended = true; }
  };
  for (const bool replaces : {false, true}) {
    Create();
    StartQuietly();
    EXPECT_EQ(0, listener_->StartSampling(kLongPress));
    std::atomic<bool> called = false;
    on_light_ = [&, this] {
      if (!called.exchange(true)) {
        thread_local const ThreadEnd end;
        static_cast<void>(&end);
        listener_.reset();
        if (replaces) {
          Create();
          EXPECT_EQ(0, listener_->StartSampling(kLongPress));
          listener_.reset();
        }
      }
    };
    lights_ = 0;
    worker_ended = false;
    ReportLux(std::vector<float>(40, 1));
    EXPECT_TRUE(Eventually([] { return worker_ended.load(); }));
    EXPECT_EQ(1, lights_);
    EXPECT_EQ(SensorUsage(), GetSensorUsage());
    on_light_ = nullptr;
  }
}

}  // namespace
}  // namespace android::fp_utils
