// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/thermal.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <android/binder_process.h>

#include "fp_host/hidl_thermal_service.h"
#include "fp_host/testing.h"
#include "fp_host/thermal_service.h"
#include "support/platform_calls.h"

namespace android::fp_utils {
namespace {

using aidl::android::hardware::thermal::TemperatureType;
using aidl::android::hardware::thermal::ThrottlingSeverity;
using namespace fp_host;
using namespace fp_test;
using Log = std::vector<LogLine>;

constexpr char kTag[] = "FpThermal";
constexpr char kAidlInstance[] = "android.hardware.thermal.IThermal/default";

const LogLine kWaiting = Debug(kTag, "Thermal: Waiting for thermal hal connected.");
const LogLine kIsConnected = Debug(kTag, "Thermal: The thermal hal is connected.");
const LogLine kIsNotConnected = Error(kTag, "Thermal: The thermal hal is not connected.");
const LogLine kStarting = Debug(kTag, "threadLoop starting");
const LogLine kNotDeclared = Warn(kTag, "Thermal AIDL service is not declared");
const LogLine kSuccess = Debug(kTag, "[threadLoop] Successfully connected to Thermal service.");
const LogLine kExiting = Debug(kTag, "threadLoop exiting");
const LogLine kFailed = Error(kTag, "[threadLoop] Failed to connect to Thermal HAL service");

ThermalService::Temperature Reading(const char* name, TemperatureType type, float value,
                                    int32_t severity) {
  ThermalService::Temperature reading;
  reading.name = name;
  reading.type = type;
  reading.value = value;
  reading.throttlingStatus = static_cast<ThrottlingSeverity>(severity);
  return reading;
}

HidlThermalService::Temperature HidlSkinReading(uint32_t severity) {
  return {hardware::thermal::V2_0::TemperatureType::SKIN, "hidl skin", 35.5F,
          static_cast<hardware::thermal::V2_0::ThrottlingSeverity>(severity)};
}

class ThermalTest : public ::testing::Test {
 protected:
  ThermalTest() {
    ABinderProcess_startThreadPool();
    SetTemperatures();
  }

  void SetTemperatures() {
    aidl_.SetTemperatures({Reading("cpu", TemperatureType::CPU, 80, 6),
                           Reading("front", TemperatureType::SKIN, 41.25F, 2),
                           Reading("back", TemperatureType::SKIN, 50, 5)});
    hidl_.SetTemperatures({HidlSkinReading(3), HidlSkinReading(4)});
  }

  static void DeclareAndStart(RemoteService& service) {
    service.Declare();
    service.Start();
  }

  void CreateMonitor() {
    TakeLog();
    thermal_.emplace();
  }

  // The log lines of the two threads, kept apart because the worker's may come anywhere between
  // the constructor's.
  struct Logs {
    Log constructor, worker;
  };
  // Collects lines until the worker has logged `last_line`.
  static Logs TakeLogsUntil(const LogLine& last_line) {
    Logs logs;
    EXPECT_TRUE(Eventually([&] {
      for (const LogLine& line : TakeLog()) {
        const bool is_of_constructor = line.message.rfind("Thermal:", 0) == 0;
        (is_of_constructor ? logs.constructor : logs.worker).push_back(line);
      }
      return !logs.worker.empty() && logs.worker.back() == last_line;
    }));
    return logs;
  }

  int32_t Severity() { return thermal_->GetCpuSeverity(); }

  ThermalService aidl_;
  HidlThermalService hidl_;
  RemoteService* const services_[2] = {&aidl_, &hidl_};
  std::optional<Thermal> thermal_;
};

TEST_F(ThermalTest, AsksTheAidlServiceElseTheHidlServiceForTheSkin) {
  const LogLine asks = Call(std::string("isDeclared ") + kAidlInstance);
  const LogLine waits = Call(std::string("waitForService ") + kAidlInstance);
  const LogLine unusable = Error(kTag, "Unable to get Thermal AIDL service");
  const Log aidl_answer = {Debug(kTag, "Name: front"), Debug(kTag, "value: 41.250000"),
                           Debug(kTag, "ThrottlingSeverity: 2")};
  const Log hidl_answer = {Debug(kTag, "Name: hidl skin"), Debug(kTag, "value: 35.500000"),
                           Debug(kTag, "ThrottlingSeverity: 3")};
  const struct {
    const char* aidl_service;
    void (RemoteService::*prepare)();
    Log search;
    int32_t severity;
  } kCases[] = {
      {"is not declared", &RemoteService::Kill, {asks, kNotDeclared}, 3},
      {"has another interface", &RemoteService::StartImpostor, {asks, waits, unusable}, 3},
      {"is up", &RemoteService::Restart, {asks, waits}, 2},
  };
  DeclareAndStart(hidl_);
  RecordCalls(true);
  for (const auto& test : kCases) {
    SCOPED_TRACE(test.aidl_service);
    (aidl_.*test.prepare)();
    CreateMonitor();
    Log worker = test.search;
    worker.insert(worker.begin(), kStarting);
    worker.insert(worker.end(), {kSuccess, kExiting});
    EXPECT_EQ(worker, TakeLogsUntil(kExiting).worker);
    TakeLog();
    EXPECT_EQ(test.severity, Severity());
    EXPECT_EQ(test.severity == 2 ? aidl_answer : hidl_answer, TakeLog());
    aidl_.Declare();
  }
  EXPECT_EQ((std::vector<std::string>{"getTemperaturesWithType 3"}), aidl_.TakeCalls());
}

TEST_F(ThermalTest, DeviceWithoutThermalHalNeverConnects) {
  const auto start = std::chrono::steady_clock::now();
  CreateMonitor();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(9));
  const Logs logs = TakeLogsUntil(kFailed);
  EXPECT_EQ((Log{kWaiting, kIsNotConnected}), logs.constructor);
  EXPECT_EQ((Log{kStarting, kNotDeclared, kFailed}), logs.worker);
  DeclareAndStart(aidl_);
  DeclareAndStart(hidl_);
  EXPECT_EQ(-ENODEV, Severity()) << "it tries to connect once only";
  EXPECT_LOG(Error(kTag, "[GetCpuSeverity] Failed to connect to Thermal HAL"));
}

// The worker waits for the service and connects when it starts. It blocks no other thread.
TEST_F(ThermalTest, LateServiceIsConnectedInTheBackground) {
  for (RemoteService* service : services_) {
    aidl_.Undeclare();
    service->Declare();
    CreateMonitor();
    EXPECT_TRUE(WaitForServiceWaiters(1));
    EXPECT_EQ(-ENODEV, Severity());
    service->Start();
    EXPECT_TRUE(Eventually([this] { return Severity() >= 0; }));
    EXPECT_EQ(service == &aidl_ ? 2 : 3, Severity());
  }
}

TEST_F(ThermalTest, ConstructorSeesAConnectionInTime) {
  DeclareAndStart(aidl_);
  // The constructor waits 10 ms, which may not be enough on a busy machine.
  ASSERT_TRUE(Eventually([this] {
    CreateMonitor();
    const Log log = TakeLogsUntil(kExiting).constructor;
    return log == Log{kWaiting, kIsConnected};
  }));
}

// After a failure the severity is 0 (no throttling), and the monitor does not reconnect.
TEST_F(ThermalTest, EveryCallMeetsEveryFault) {
  const auto refuse = [this](auto&) {
    aidl_.Refuse([] { return ndk::ScopedAStatus::fromExceptionCode(EX_ILLEGAL_STATE); });
    hidl_.Refuse("not ready");
  };
  const auto measure_no_skin = [this](auto&) {
    aidl_.SetTemperatures({Reading("cpu", TemperatureType::CPU, 80, 6)});
    hidl_.SetTemperatures({});
  };
  const auto kFaults = HalFaults({
      {"is dead", &RemoteService::Kill, kDead},
      {"has restarted", &RemoteService::Restart, kDead},
      {"refuses", refuse, 0},
      {"has no skin sensor", measure_no_skin, 0},
  });
  for (RemoteService* service : services_) {
    for (const auto& fault : kFaults) {
      SCOPED_TRACE(service->GetInstance() + " " + fault.name);
      DeclareAndStart(*service);
      CreateMonitor();
      const int32_t severity = service == &aidl_ ? 2 : 3;
      ASSERT_TRUE(Eventually([&] { return Severity() == severity; }));
      fault.apply(*service);
      EXPECT_EQ(fault.Has(kAnswered) ? severity : 0, Severity());
      aidl_.Repair();
      hidl_.Repair();
      SetTemperatures();
      EXPECT_EQ(fault.Has(kDead) ? 0 : severity, Severity());
    }
    service->Undeclare();
  }
}

TEST(ThermalLifetime, WorkerMayOutliveTheMonitor) {
  MuteLog(true);
  std::thread([] {}).join();  // a sanitizer may start its own thread along with the first
  const long threads = CountThreads();
  for (int i = 0; i < Share(30); ++i) {
    ThermalService service;
    service.Declare();
    { const Thermal thermal; }
    // The worker still waits for the service when its monitor is destroyed.
    EXPECT_TRUE(WaitForServiceWaiters(1));
    service.Start();
    EXPECT_TRUE(WaitForServiceWaiters(0));
    std::thread coming([&service] { service.Restart(); });
    { const Thermal thermal; }
    coming.join();
    // The next round counts waiting threads, so the workers of this one have to end first.
    EXPECT_TRUE(Eventually([&] { return CountThreads() <= threads; }));
  }
}

// The exit handler is registered first, so it runs after the destruction of all static objects that
// are constructed later.
TEST(ThermalLifetimeDeathTest, ThreadsMayAskWhileTheProcessExits) {
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  static std::atomic<int> answers = 0;
  EXPECT_EXIT(
      {
        MuteLog(true);
        atexit([] {
          const int before = answers;
          EXPECT_TRUE(Eventually([before] { return answers > before + 100; }));
        });
        static auto* const service = new ThermalService;
        service->Declare();
        service->Start();
        Thermal& thermal = Thermal::GetInstance();
        EXPECT_TRUE(Eventually([&thermal] { return thermal.GetCpuSeverity() == 0; }));
        std::thread([&thermal] {
          while (true) {
            thermal.GetCpuSeverity();
            ++answers;
          }
        }).detach();
        exit(0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(ThermalLifetimeDeathTest, ProcessExitsWhileTheWorkerWaits) {
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        MuteLog(true);  // the worker may log after the recorder is destroyed
        static auto* const service = new ThermalService;
        service->Declare();
        const bool not_connected = Thermal::GetInstance().GetCpuSeverity() == -ENODEV;
        const bool waiting = WaitForServiceWaiters(1);
        exit(not_connected && waiting && &Thermal::GetInstance() == &Thermal::GetInstance() ? 0
                                                                                            : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace android::fp_utils
