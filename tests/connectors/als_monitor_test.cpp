// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/als_monitor.h"

#include <cerrno>
#include <numeric>

#include <utils/Errors.h>

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;

constexpr char kTag[] = "AlsMonitor";
constexpr char kGetManager[] = "ASensorManager_getInstanceForPackage() = manager 1";
constexpr float kUntouched = -1;

const LogLine kConnected = Debug(kTag, "Successfully connected to Sensor Manager.");
const LogLine kStarted = Debug(kTag, "Sampling is started.");
const LogLine kStopped = Debug(kTag, "Sampling is stopped.");
const LogLine kNotStarted = Error(kTag, "Sensor sampler is not started.");
const LogLine kNoConnection = Error(kTag, "Failed to connect sensor manager.");
const LogLine kNoManager = Error(kTag, "Failed to get sensor manager.");
const LogLine kPollError = Error(kTag, "Sensor event looper returned a poll error.");
const LogLine kNoSample = Error(kTag, "Sample is not available.");

class AlsMonitorTest : public SensorTest {
 protected:
  static AlsMonitor& Monitor() { return *AlsMonitor::GetInstance(); }

  void StartQuietly() {
    EXPECT_EQ(0, Monitor().StartSampling());
    TakeCalls();
    TakeLog();
  }

  // The value that GetLight() writes, or kUntouched. Expects it to return `status`.
  static float Light(int status = 0) {
    float lux = kUntouched;
    EXPECT_EQ(status, Monitor().GetLight(&lux));
    return lux;
  }
};

TEST_F(AlsMonitorTest, CallsThePlatformInThisOrder) {
  EXPECT_EQ(0, Monitor().StartSampling());
  EXPECT_EQ((Texts{kGetManager, "ASensorManager_getDefaultSensor(manager 1, 5) = light",
                   "ALooper_prepare(1) = looper",
                   "ASensorManager_createEventQueue(manager 1, looper, 0, null) = queue 1",
                   "ASensor_getMinDelay(light) = 20000",
                   "ASensorEventQueue_registerSensor(queue 1, light, 20000, 0) = 0"}),
            MyCalls());
  EXPECT_LOG(kConnected, kStarted);

  ReportLux(350);
  EXPECT_EQ(350, Light());
  EXPECT_EQ((Texts{kGetManager, "ALooper_pollOnce(1) = -2",
                   "ASensorEventQueue_getEvents(queue 1, 16) = 1"}),
            MyCalls());

  EXPECT_EQ(0, Monitor().StartSampling()) << "registers again";
  EXPECT_EQ((Texts{kGetManager, "ASensor_getMinDelay(light) = 20000",
                   "ASensorEventQueue_registerSensor(queue 1, light, 20000, 0) = 0"}),
            MyCalls());
  EXPECT_LOG(kStarted);

  EXPECT_EQ(0, Monitor().StopSampling());
  EXPECT_EQ((Texts{kGetManager, "ASensorEventQueue_disableSensor(queue 1, light) = 0",
                   "ASensorManager_destroyEventQueue(manager 1, queue 1) = 0"}),
            MyCalls());
  EXPECT_EQ(kUntouched, Light(UNKNOWN_ERROR));
  EXPECT_EQ(0, Monitor().StopSampling());
  EXPECT_EQ((Texts{kGetManager, kGetManager}), MyCalls());
  EXPECT_LOG(kStopped, kNotStarted, kStopped);

  EXPECT_EQ(0, Monitor().StartSampling());
  EXPECT_EQ(
      (Texts{kGetManager, "ASensorManager_createEventQueue(manager 1, looper, 0, null) = queue 2",
             "ASensor_getMinDelay(light) = 20000",
             "ASensorEventQueue_registerSensor(queue 2, light, 20000, 0) = 0"}),
      MyCalls())
      << "sensor and looper are used again";
  EXPECT_EQ(350, Light());
}

TEST_F(AlsMonitorTest, FailedStartIsRetriedFromTheStepThatFailed) {
  const struct {
    const char* function;
    int status;
    LogLine connection, reason;
    size_t calls_of_retry;  // of the six that a first start makes
    const char* kept;
  } kCases[] = {
      {"ASensorManager_getInstanceForPackage", -ENOMEM, kNoManager, kNoConnection, 6, "nothing"},
      {"ASensorManager_getDefaultSensor", UNEXPECTED_NULL, kConnected,
       Error(kTag, "Failed to get sensor."), 6, "the manager, but it is asked for again"},
      {"ALooper_prepare", -ENOMEM, kConnected, Error(kTag, "Failed to prepare an event looper."), 5,
       "the sensor"},
      {"ASensorManager_createEventQueue", -ENOMEM, kConnected,
       Error(kTag, "Failed to create an event queue."), 4, "the looper, too"},
      {"ASensorEventQueue_registerSensor", -EINVAL, kConnected,
       Error(kTag, "StartSampling: Failed to register sensor, err=-22."), 3, "the queue, too"},
  };
  for (const auto& test : kCases) {
    SCOPED_TRACE(test.function);
    SetSensorFault({.function = test.function});
    EXPECT_EQ(test.status, Monitor().StartSampling());
    EXPECT_LOG(test.connection, test.reason);
    TakeCalls();
    EXPECT_EQ(0, Monitor().StartSampling());
    EXPECT_EQ(test.calls_of_retry, MyCalls().size()) << "kept: " << test.kept;
    RestartSensorService();
    AlsMonitor::OnSystemServerDeath();
    TakeLog();
  }
}

// Every operation fails while there is no manager. Sampling continues once the same manager is
// back.
TEST_F(AlsMonitorTest, MissingManagerLosesNothing) {
  StartQuietly();
  ReportLux(10);
  SetSensorFault(
      {.function = "ASensorManager_getInstanceForPackage", .calls = SensorFault::kForever});
  EXPECT_EQ(-ENOMEM, Monitor().StartSampling());
  EXPECT_EQ(-ENOMEM, Monitor().StopSampling());
  EXPECT_EQ(kUntouched, Light(-ENOMEM));
  EXPECT_FALSE(Monitor().ConnectSensorManagerIfNeeded());
  EXPECT_LOG(kNoManager, kNoConnection, kNoManager, kNoConnection, kNoManager, kNoConnection,
             kNoManager);
  ClearSensorFaults();
  EXPECT_TRUE(Monitor().ConnectSensorManagerIfNeeded());
  EXPECT_EQ(10, Light());
  EXPECT_LOG();
}

TEST_F(AlsMonitorTest, DrainsInBatchesAndKeepsTheNewest) {
  EXPECT_EQ(kUntouched, Light(UNKNOWN_ERROR));
  StartQuietly();
  EXPECT_EQ(kUntouched, Light(-EINVAL));
  EXPECT_EQ(-EINVAL, Monitor().GetLight(nullptr));
  EXPECT_LOG(kNoSample, Error(kTag, "GetLight: lux is null."));

  const struct {
    size_t events;
    Texts fetches;
    const char* why;
  } kCases[] = {
      {1, {"1"}, "one"},
      {15, {"15"}, "not quite a batch"},
      {16, {"16", "0"}, "after a full batch there may be more"},
      {17, {"16", "1"}, "one more than a batch"},
      {40, {"16", "16", "8"}, "several"},
      {0, {"0"}, "a steady light sends no event"},
  };
  float lux = 0;
  for (const auto& test : kCases) {
    std::vector<float> readings(test.events);
    std::iota(readings.begin(), readings.end(), lux + 1);
    lux += static_cast<float>(test.events);
    ReportLux(readings);
    MyCalls();
    EXPECT_EQ(lux, Light()) << test.why;
    Texts fetches;
    for (const std::string& call : MyCalls()) {
      if (call.starts_with("ASensorEventQueue_getEvents")) {
        fetches.push_back(call.substr(call.find(" = ") + 3));
      }
    }
    EXPECT_EQ(test.fetches, fetches) << test.why;
  }

  std::vector<ASensorEvent> events(2);
  events[0].type = ASENSOR_TYPE_LIGHT;
  events[1].type = ASENSOR_TYPE_PROXIMITY;
  events[1].light = 2;
  PushSensorEvents(events);
  EXPECT_EQ(2, Light()) << "the last event of a batch, whatever its type";
}

TEST_F(AlsMonitorTest, PollErrorEndsTheDrainButKeepsTheSample) {
  StartQuietly();
  ReportLux(std::vector<float>(20, 5));
  int polls = 0;
  OnSensorCall("ALooper_pollOnce", [&polls] {
    if (++polls == 2) {
      SetSensorFault({.function = "ALooper_pollOnce", .result = ALOOPER_POLL_ERROR});
    }
  });
  EXPECT_EQ(kUntouched, Light(UNKNOWN_ERROR));
  EXPECT_LOG(kPollError);
  SetSensorFault({.function = "ASensorEventQueue_getEvents"});
  EXPECT_EQ(5, Light()) << "read before the error; a negative count means an empty queue";

  ReportLux(6);
  ALooper_wake(ALooper_forThread());
  std::thread([] { ALooper_pollOnce(0, nullptr, nullptr, nullptr); }).join();
  EXPECT_EQ(6, Light()) << "the queue is read whatever the poll returns";
}

TEST_F(AlsMonitorTest, FailedCallsLeaveSamplingAsItWas) {
  StartQuietly();
  ReportLux(1);
  for (const char* function :
       {"ASensorEventQueue_registerSensor", "ASensorEventQueue_disableSensor",
        "ASensorManager_destroyEventQueue"}) {
    SetSensorFault({.function = function, .calls = SensorFault::kForever});
  }
  EXPECT_EQ(-EINVAL, Monitor().StartSampling());
  EXPECT_EQ(1, Light());
  EXPECT_EQ(0, Monitor().StopSampling());
  EXPECT_EQ(-EINVAL, Monitor().StartSampling());
  Light(UNKNOWN_ERROR);
}

// The old service's handles are invalid: a call with one aborts.
TEST_F(AlsMonitorTest, NewManagerHandleMeansStopped) {
  StartQuietly();
  ReportLux(20);
  EXPECT_EQ(20, Light());
  RestartSensorService();
  EXPECT_EQ(kUntouched, Light(UNKNOWN_ERROR));
  EXPECT_EQ(0, Monitor().StopSampling());
  EXPECT_LOG(kConnected, kNotStarted, kStopped);
  MyCalls();
  EXPECT_EQ(0, Monitor().StartSampling());
  EXPECT_EQ(5u, MyCalls().size()) << "all but the looper's preparation";
  EXPECT_EQ(20, Light()) << "the sample is kept";
}

TEST_F(AlsMonitorTest, DeathOfTheSystemServerDropsTheInstance) {
  AlsMonitor::OnSystemServerDeath();
  EXPECT_LOG(Info(kTag, "system server died.")) << "without an instance";
  // A thread may hold the pointer while another reports the death.
  AlsMonitor* const old = AlsMonitor::GetInstance();
  StartQuietly();
  ReportLux(20);
  EXPECT_EQ(20, Light());
  MyCalls();
  RestartSensorService();
  AlsMonitor::OnSystemServerDeath();
  float lux = kUntouched;
  EXPECT_EQ(-ENOMEM, old->StartSampling());
  EXPECT_EQ(-ENOMEM, old->StopSampling());
  EXPECT_EQ(-ENOMEM, old->GetLight(&lux));
  EXPECT_FALSE(old->ConnectSensorManagerIfNeeded());
  EXPECT_TRUE(MyCalls().empty());
  EXPECT_EQ(0, Monitor().StartSampling());
  EXPECT_LOG(Info(kTag, "system server died."), kNoConnection, kNoConnection, kNoConnection,
             kConnected, kStarted);
}

}  // namespace
}  // namespace android::fp_utils
