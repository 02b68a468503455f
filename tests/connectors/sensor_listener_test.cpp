// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/sensor_listener.h"

#include <cerrno>
#include <numeric>

#include <utils/AndroidThreads.h>
#include <utils/Errors.h>

#include "fp_utils/als_monitor.h"
#include "support/listener_test.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

constexpr char kTag[] = "SensorListener";

const LogLine kCount = Debug(kTag, "The device sensor count:2");
const LogLine kFoundLight =
    Info(kTag, "Found Sensor(0). name:'light', string_type:'android.sensor.light'");
const LogLine kFoundLongPress =
    Info(kTag, "Found Sensor(1). name:'long press', string_type:'com.norvan.sensor.long_press'");
const LogLine kConnected = Debug(kTag, "Successfully connected to Sensor Manager.");
const LogLine kNoConnection = Error(kTag, "Failed to connect sensor manager.");
const LogLine kDied = Info(kTag, "system server died.");

using SensorListenerTest = ListenerTest;

TEST_F(SensorListenerTest, ConnectsAtTheFirstStart) {
  EXPECT_FALSE(listener_->IsAnySamplerStarted());
  EXPECT_EQ(0, listener_->StartSampling(kLight));
  EXPECT_EQ((Texts{"ASensorManager_getInstanceForPackage() = manager 1",
                   "ASensorManager_getSensorList(manager 1) = 2", "ASensor_getName(light) = light",
                   "ASensor_getStringType(light) = android.sensor.light",
                   "ASensor_getName(long press) = long press",
                   "ASensor_getStringType(long press) = com.norvan.sensor.long_press",
                   "ALooper_prepare(1) = looper",
                   "ASensorManager_createEventQueue(manager 1, looper, 0, null) = queue 1",
                   "ASensor_getMinDelay(light) = 20000",
                   "ASensorEventQueue_registerSensor(queue 1, light, 20000, 0) = 0"}),
            MyCalls());
  EXPECT_LOG(kCount, kFoundLight, kFoundLongPress, kConnected);
  EXPECT_TRUE(listener_->IsAnySamplerStarted());

  EXPECT_EQ(0, listener_->StartSampling(kLight));
  EXPECT_EQ(Texts{}, MyCalls()) << "sampling already";
  EXPECT_EQ(0, listener_->StartSampling(kLongPress));
  EXPECT_EQ((Texts{"ASensor_getMinDelay(long press) = 0",
                   "ASensorEventQueue_registerSensor(queue 1, long press, 0, 0) = 0"}),
            MyCalls());

  SetSensorFault({.function = "ASensorEventQueue_disableSensor", .calls = SensorFault::kForever});
  EXPECT_EQ(0, listener_->StopSampling(kLight)) << "even if the platform fails";
  EXPECT_TRUE(listener_->IsAnySamplerStarted());
  EXPECT_EQ(0, listener_->StopSampling(kLongPress));
  EXPECT_EQ(0, listener_->StopSampling(kLongPress));
  EXPECT_FALSE(listener_->IsAnySamplerStarted());
  EXPECT_EQ((Texts{"ASensorEventQueue_disableSensor(queue 1, light) = -22",
                   "ASensorEventQueue_disableSensor(queue 1, long press) = -22"}),
            MyCalls());
  EXPECT_LOG();
}

TEST_F(SensorListenerTest, FailedStartIsRetriedFromWhereItStopped) {
  const struct {
    const char* function;
    bool finds_sensors, connects;
    const char* reason;
    size_t calls_of_retry;  // of the ten that a whole connect and registration makes
    const char* kept;
  } kCases[] = {
      {"ASensorManager_getInstanceForPackage", false, false, "Failed to get sensor manager.", 10,
       "nothing"},
      {"ASensorManager_getSensorList", false, false, "Failed to get sensor list (0).\n", 10,
       "an empty list, in the manager"},
      {"ALooper_prepare", true, false, "Failed to prepare an event looper.", 10, "nothing"},
      {"ASensorManager_createEventQueue", true, false, "Failed to create an event queue.", 9,
       "the looper"},
      {"ASensorEventQueue_registerSensor", true, true,
       "StartSampling: Failed to register sensor[1], err=-22.", 2, "the connection"},
  };
  for (const auto& test : kCases) {
    SCOPED_TRACE(test.function);
    listener_.reset();
    RestartSensorService();
    Create();
    SetSensorFault({.function = test.function});
    EXPECT_EQ(test.connects ? -EINVAL : -ENOMEM, listener_->StartSampling(kLongPress));
    std::vector<LogLine> log = {Error(kTag, test.reason)};
    log.insert(test.connects ? log.begin() : log.end(), test.connects ? kConnected : kNoConnection);
    if (test.finds_sensors) {
      log.insert(log.begin(), {kCount, kFoundLight, kFoundLongPress});
    }
    EXPECT_EQ(log, TakeLog());
    EXPECT_FALSE(listener_->IsAnySamplerStarted());
    if (test.function == std::string("ASensorManager_getSensorList")) {
      EXPECT_EQ(-ENOMEM, listener_->StartSampling(kLongPress));
      RestartSensorService();
    }
    MyCalls();
    EXPECT_EQ(0, listener_->StartSampling(kLongPress));
    EXPECT_EQ(test.calls_of_retry, MyCalls().size()) << "kept: " << test.kept;
    TakeLog();
  }
}

TEST_F(SensorListenerTest, WorkerThatCannotBeStartedIsTriedAgain) {
  androidSetCreateThreadFunc([](android_thread_func_t, void*, const char*, int32_t, size_t,
                                android_thread_id_t*) { return 0; });
  EXPECT_EQ(-ENOMEM, listener_->StartSampling(kLight));
  androidSetCreateThreadFunc(androidCreateRawThreadEtc);
  EXPECT_LOG(kCount, kFoundLight, kFoundLongPress,
             Error(kTag, "Failed to start the polling worker."), kNoConnection);
  EXPECT_EQ(SensorUsage(), GetSensorUsage()) << "the queue is destroyed at once";
  EXPECT_EQ(0, listener_->StartSampling(kLight));
  EXPECT_TRUE(Eventually(IsWorkerIdle));
}

TEST_F(SensorListenerTest, TakesTheLastSensorOfExactlyTheStringType) {
  SetSensors({LightSensor("front"),
              LightSensor("rear"),
              {"near", "android.sensor.light ", 1, 0},
              {"nearer", "android.sensor.ligh", 1, 0},
              {"nearest", "Android.sensor.light", 1, 0},
              {"nameless", "", 1, 0}});
  EXPECT_EQ(-ENOMEM, listener_->StartSampling(kLongPress));
  EXPECT_LOG(Debug(kTag, "The device sensor count:6"),
             Info(kTag, "Found Sensor(0). name:'front', string_type:'android.sensor.light'"),
             Info(kTag, "Found Sensor(0). name:'rear', string_type:'android.sensor.light'"),
             Error(kTag,
                   "ConnectSensorManagerIfNeeded: Sensor(com.norvan.sensor.long_press) not "
                   "found.\n"),
             kConnected, Error(kTag, "sensor[1] is not available."));
  EXPECT_TRUE(Eventually(IsWorkerIdle)) << "polls from the connection on";
  EXPECT_EQ(0, listener_->StartSampling(kLight));
  EXPECT_EQ("ASensorEventQueue_registerSensor(queue 1, rear, 20000, 0) = 0", MyCalls().back());
  ReportLux(3);
  EXPECT_TRUE(AwaitLights(1));
}

TEST_F(SensorListenerTest, UnknownTypesAreRefused) {
  for (const int type : {-1, 2, 1000000}) {
    EXPECT_EQ(-ENOMEM, listener_->StartSampling(static_cast<SensorListener::SensorType>(type)));
    EXPECT_EQ(0, listener_->StopSampling(static_cast<SensorListener::SensorType>(type)));
    EXPECT_LOG(Error(kTag, "sensor[" + std::to_string(type) + "] is not available."));
  }
  EXPECT_EQ(Texts{}, MyCalls());
}

// After a full batch the worker polls again and waits for the next event, although events are
// queued: the looper has signalled them already.
TEST_F(SensorListenerTest, FetchesBatchesOfSixteen) {
  StartQuietly();
  const struct {
    size_t events;
    int delivered;
    Texts calls;
    const char* why;
  } kCases[] = {
      {15, 15, {"= -2", "= 15"}, "not full"},
      {16, 31, {"= -2", "= 16"}, "full, and polls again"},
      {40, 47, {"= -2", "= 16"}, "24 stay in the queue"},
      {1, 63, {"= -2", "= 16"}, "until the next event: full again"},
      {1, 73, {"= -2", "= 10"}, "and the rest"},
  };
  float sent = 0;
  for (const auto& test : kCases) {
    std::vector<float> readings(test.events);
    std::iota(readings.begin(), readings.end(), sent + 1);
    sent += static_cast<float>(test.events);
    ReportLux(readings);
    EXPECT_TRUE(AwaitLights(test.delivered)) << test.why;
    EXPECT_TRUE(Eventually(IsWorkerIdle));
    EXPECT_EQ(static_cast<float>(test.delivered), last_lux_) << "in order";
    TakeCalls();
    Texts calls;
    for (const std::string& call : Others()) {
      if (!call.starts_with("ASensor_getType")) {
        calls.push_back(call.substr(call.find("= ")));
      }
    }
    EXPECT_EQ(test.calls, calls) << test.why;
  }
}

TEST_F(SensorListenerTest, DispatchesByTypeAlone) {
  StartQuietly();
  EXPECT_EQ(0, listener_->StartSampling(kLongPress));
  ReportLongPress();
  EXPECT_TRUE(Eventually([this] { return long_presses_ == 1; }));
  EXPECT_TRUE(Eventually(IsWorkerIdle));
  TakeCalls();
  EXPECT_EQ((Texts{"ALooper_pollOnce(-1) = -2", "ASensorEventQueue_getEvents(queue 1, 16) = 1",
                   "ASensor_getType(light) = 5", "ASensor_getType(long press) = 65537"}),
            Others());

  std::vector<ASensorEvent> events(3);
  events[0].type = ASENSOR_TYPE_PRESSURE;
  events[1].type = ASENSOR_TYPE_LIGHT;
  events[2].type = ASENSOR_TYPE_INVALID;
  PushSensorEvents(events);
  EXPECT_TRUE(AwaitLights(1));
  EXPECT_TRUE(Eventually(IsWorkerIdle));
  EXPECT_EQ(1, lights_) << "events of neither type are dropped";
  EXPECT_EQ(1, long_presses_);
  listener_->ProcessSensorEvent(events[1]);
  EXPECT_EQ(2, lights_) << "a direct call dispatches, too";
}

TEST_F(SensorListenerTest, OneTypeForBothSensorsReachesBothCallbacks) {
  SetSensors({LightSensor(), {"tap", "com.norvan.sensor.long_press", ASENSOR_TYPE_LIGHT, 0}});
  StartQuietly();
  ReportLux(1);
  EXPECT_TRUE(Eventually([this] { return lights_ == 1 && long_presses_ == 1; }));
  Create();
  listener_->light_sensor_callback_ = nullptr;
  EXPECT_EQ(0, listener_->StartSampling(kLight));
  EXPECT_TRUE(Eventually([this] { return long_presses_ == 2; })) << "an empty one is skipped";
}

TEST_F(SensorListenerTest, PollErrorIsLoggedAndPolledAgain) {
  StartQuietly();
  SetSensorFault({.function = "ALooper_pollOnce", .result = ALOOPER_POLL_ERROR, .calls = 3});
  const LogLine error = Error(kTag, "Sensor event looper returned a poll error.");
  ReportLux(1);
  EXPECT_TRUE(AwaitLights(1));
  EXPECT_LOG(error, error, error);

  EXPECT_TRUE(Eventually(IsWorkerIdle));
  listener_->OnSystemServerDeath();  // ends the worker, so that only this thread polls
  SetSensorFault({.function = "ALooper_pollOnce", .result = ALOOPER_POLL_ERROR});
  EXPECT_EQ(UNKNOWN_ERROR, listener_->PollSensorEvent());
  ALooper_wake(ALooper_forThread());
  EXPECT_EQ(0, listener_->PollSensorEvent());
}

TEST_F(SensorListenerTest, WithoutConnectionNothingIsTouched) {
  listener_->OnSystemServerDeath();
  EXPECT_LOG(kDied);
  EXPECT_EQ(0, AlsMonitor::GetInstance()->StartSampling());
  ReportLux(1);
  TakeCalls();
  EXPECT_EQ(0, listener_->PollSensorEvent());
  EXPECT_EQ((Texts{"ALooper_pollOnce(-1) = -2"}), MyCalls());
}

}  // namespace
}  // namespace android::fp_utils
