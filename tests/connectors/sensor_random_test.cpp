// SPDX-License-Identifier: Apache-2.0
//
// The clients of the sensor service in random sequences of all that can happen to them.
#include <cerrno>
#include <random>
#include <set>

#include <utils/Errors.h>

#include "support/device_test.h"
#include "support/sensor_clients.h"
#include "support/sensor_test.h"

namespace android::fp_utils {
namespace {

using fp_host::SetLux;
using namespace fp_test;

// A service that does everything in any order, with a fault now and then.
class RandomRun {
 public:
  explicit RandomRun(uint64_t seed) : random_(static_cast<unsigned>(seed)) {}

  void Run() {
    for (int i = 0; i < 15; ++i) {
      Step();
    }
    SettleWorker();
    RepairSensorService();
    clients_.HearOfDeath();
    clients_.ExpectRecovery();
    EXPECT_EQ(0, fp_host::GetDeadHandleUses());
    clients_.DestroyListener();
    AlsMonitor::OnSystemServerDeath();
    fp_host::RestartSensorService();
    TakeLog();
  }

 private:
  int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

  void ExpectOneOf(const std::set<int>& answers, int answer) {
    EXPECT_TRUE(answers.count(answer) == 1) << answer;
  }

  void Step() {
    const auto type = Pick(2) == 0 ? kLight : kLongPress;
    switch (Pick(13)) {
      case 0:
      case 1:
        return ExpectOneOf({0, -ENOMEM, kRefusal}, clients_.Listener().StartSampling(type));
      case 2:
        return ExpectOneOf({0}, clients_.Listener().StopSampling(type));
      case 3:
        return ExpectOneOf({0, -ENOMEM, UNEXPECTED_NULL, kRefusal},
                           clients_.Monitor().StartSampling());
      case 4:
        return ExpectOneOf({0, -ENOMEM}, clients_.Monitor().StopSampling());
      case 5:
        return Read();
      case 6:
        return SetLux(std::vector<float>(static_cast<size_t>(1 + Pick(40)), ++lux_));
      case 7:
        return fp_host::LongPress(1 + Pick(3));
      case 8:
        return SetFault();
      case 9:
        return KillSystemServer();
      case 10:
        return fp_host::StartSensorService();
      case 11:
        SettleWorker();
        clients_.DestroyListener();
        clients_.CreateListener();
        has_worker_ = false;
        return;
      default:
        return Interfere();
    }
  }

  void Read() {
    const int status = clients_.ReadMonitor();
    ExpectOneOf({0, -ENOMEM, UNKNOWN_ERROR, -EINVAL}, status);
    EXPECT_LE(clients_.LastRead(), lux_);
  }

  void SetFault() {
    constexpr const char* kFunctions[] = {"ASensorManager_getInstanceForPackage",
                                          "ASensorManager_getSensorList",
                                          "ASensorManager_getDefaultSensor",
                                          "ASensorManager_createEventQueue",
                                          "ASensorManager_destroyEventQueue",
                                          "ASensorEventQueue_registerSensor",
                                          "ASensorEventQueue_disableSensor",
                                          "ASensorEventQueue_getEvents",
                                          "ASensor_getStringType",
                                          "ASensor_getMinDelay",
                                          "ALooper_prepare",
                                          "ALooper_pollOnce",
                                          "ALooper_wake"};
    const std::string function = kFunctions[Pick(std::size(kFunctions))];
    fp_host::SetSensorFault(
        {.function = function,
         .result = function == "ALooper_pollOnce" ? ALOOPER_POLL_ERROR : kRefusal,
         .calls = 1 + Pick(3)});
  }

  // The worker must not be on its way to the old queue: what it cannot know yet is no fault of it.
  void SettleWorker() {
    for (const LogLine& line : TakeLog()) {
      has_worker_ |= line.tag == "SensorListener" &&
                     line.message == "Successfully connected to Sensor Manager.";
      has_worker_ &= line.tag != "SensorListener" || line.message != "system server died.";
    }
    EXPECT_TRUE(!has_worker_ || Eventually(IsWorkerIdle));
  }

  void KillSystemServer() {
    SettleWorker();
    fp_host::StopSensorService();
    clients_.HearOfDeath();
    if (Pick(2) == 0) {
      AlsMonitor::OnSystemServerDeath();
    }
    if (Pick(2) == 0) {
      fp_host::StartSensorService();
    }
  }

  // What other pollers of the process do.
  void Interfere() {
    ALooper_wake(ALooper_forThread());
    ALooper_pollOnce(0, nullptr, nullptr, nullptr);
  }

  static constexpr int kRefusal = -5;

  std::mt19937 random_;
  SensorClients clients_;
  float lux_ = 7;  // what an earlier run left
  bool has_worker_ = false;
};

void RunRandomSequences(int count) {
  fp_host::RecordSensorCalls(false);
  RunSeeded("sequences", count, std::random_device()(), [](uint64_t seed) {
    RunBounded("FP_TEST_SEED=" + std::to_string(seed), [seed] { RandomRun(seed).Run(); });
  });
}

using SensorRandomTest = SensorTest;
TEST_F(SensorRandomTest, EverySequenceEndsInRecovery) { RunRandomSequences(Share(300)); }

using LongSensorRandomTest = SensorRandomTest;
TEST_F(LongSensorRandomTest, EverySequenceEndsInRecovery) { RunRandomSequences(10000); }

}  // namespace
}  // namespace android::fp_utils
