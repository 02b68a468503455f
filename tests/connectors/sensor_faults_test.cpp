// SPDX-License-Identifier: Apache-2.0
//
// Every operation of the sensor service's clients meets every fault in each of the platform calls
// that it makes, and the clients recover from it.
#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <thread>

#include <utils/Errors.h>

#include "support/listener_test.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

// The result of an operation in which `function` fails. Most functions do not change it.
int ResultAfterFailure(const std::string& function, int normal) {
  static const std::map<std::string, int> kResults = {
      {"ASensorManager_getInstanceForPackage", -ENOMEM},
      {"ASensorManager_getSensorList", -ENOMEM},
      {"ASensorManager_getDefaultSensor", UNEXPECTED_NULL},
      {"ASensorManager_createEventQueue", -ENOMEM},
      {"ASensor_getStringType", -ENOMEM},
      {"ALooper_prepare", -ENOMEM},
      {"ASensorEventQueue_registerSensor", -EINVAL},
  };
  return kResults.contains(function) ? kResults.at(function) : normal;
}

// Makes the service die, or restart, the first time that the hook runs.
std::function<void()> DieOnce(bool restarts) {
  const auto gone = std::make_shared<std::atomic<bool>>(false);
  return [gone, restarts] {
    if (!gone->exchange(true)) {
      restarts ? RestartSensorService() : KillSensorService();
    }
  };
}

void LetOthersRun() {
  for (int i = 0; i < 1000; ++i) {
    std::this_thread::yield();
  }
}

// What happens to the calls of a platform function.
struct CallFault {
  const char* name;
  std::function<void(const std::string& function)> apply;
};

const CallFault kRefusal = {"is refused", [](auto& f) { SetSensorFault({.function = f}); }};
const CallFault kDelay = {"is slow", [](auto& f) { OnSensorCall(f, LetOthersRun); }};
// Until the client is told of a death, it may still use the old handles.
const CallFault kDeaths[] = {
    {"service dies before", [](auto& f) { OnSensorCall(f, DieOnce(false)); }},
    {"service restarts before", [](auto& f) { OnSensorCall(f, DieOnce(true)); }},
    {"service dies after", [](auto& f) { OnSensorCall(f, nullptr, DieOnce(false)); }},
    {"service restarts after", [](auto& f) { OnSensorCall(f, nullptr, DieOnce(true)); }},
};

class SensorFaultsTest : public ListenerTest {
 protected:
  using Self = SensorFaultsTest;
  struct Operation {
    std::string_view name;
    int (SensorFaultsTest::*prepare)();
    int (SensorFaultsTest::*run)();
    int without_service;  // its result while there is no service, once the clients were told
  };
  static constexpr std::string_view kReading = "monitor reads";
  static const std::vector<Operation> kOperations;

  int DoNothing() { return 0; }
  int SampleLight() { return listener_->StartSampling(kLight); }
  int SampleLongPress() { return listener_->StartSampling(kLongPress); }
  int StopLight() { return listener_->StopSampling(kLight); }
  int Deliver() {
    ReportLux(1);
    return AwaitIdle() ? 0 : -1;
  }
  int HearOfDeath() {
    listener_->OnSystemServerDeath();
    return 0;
  }
  int Replace() {
    Create();
    return 0;
  }
  int StartMonitor() { return Monitor().StartSampling(); }
  int ReadMonitorOnce() {
    StartMonitor();
    ReportLux(1);
    return ReadMonitor();
  }
  int StopMonitor() { return Monitor().StopSampling(); }
  int ConnectMonitor() { return Monitor().ConnectSensorManagerIfNeeded() ? 0 : -ENOMEM; }
  int ReadMonitor() {
    float lux = 0;
    return Monitor().GetLight(&lux);
  }

  bool AwaitIdle() { return !listener_->IsAnySamplerStarted() || Eventually(IsWorkerIdle); }

  // Makes new clients with a new service, as they are before the operation.
  void Prepare(const Operation& operation) {
    Create();
    ClearSensorFaults();
    RestartSensorService();
    AlsMonitor::OnSystemServerDeath();
    (this->*operation.prepare)();
    EXPECT_TRUE(AwaitIdle());
    TakeSensorCalls();
    TakeLog();
  }

  int Run(const Operation& operation) {
    const int answer = (this->*operation.run)();
    EXPECT_TRUE(AwaitIdle());
    return answer;
  }

  // Runs the operation, which has to return in time. Then the listener is told of the service's
  // death, which the monitor notices by itself. They make no more calls with old handles and work
  // with the new service.
  int RunAndRecover(const Operation& operation, const std::string& what) {
    int answer = 0;
    RunBounded(what, [&] {
      answer = (this->*operation.run)();
      ClearSensorFaults();
      HearOfDeath();
      const int uses = GetDeadHandleUses();
      RestartSensorService();
      ExpectRecovery();
      EXPECT_EQ(uses, GetDeadHandleUses());
    });
    return answer;
  }

  // Lets each operation meet the fault in each function that it calls. Calls `check` with the
  // function and the operation's result without and with the fault.
  template <typename Check>
  void MeetFault(const CallFault& fault, Check check) {
    int cases = 0;
    for (const Operation& operation : kOperations) {
      Prepare(operation);
      const int normal = Run(operation);
      std::set<std::string> functions;
      for (const SensorCall& call : TakeSensorCalls()) {
        functions.insert(call.text.substr(0, call.text.find('(')));
      }
      for (const std::string& function : functions) {
        const std::string what = std::string(operation.name) + ", " + function + " " + fault.name;
        SCOPED_TRACE(what);
        Prepare(operation);
        fault.apply(function);
        check(function, normal, RunAndRecover(operation, what));
        ++cases;
      }
    }
    EXPECT_LT(30, cases);
  }
};

const std::vector<SensorFaultsTest::Operation> SensorFaultsTest::kOperations = {
    {"listener starts", &Self::DoNothing, &Self::SampleLight, -ENOMEM},
    {"listener starts another", &Self::SampleLight, &Self::SampleLongPress, -ENOMEM},
    {"listener stops", &Self::SampleLight, &Self::StopLight, 0},
    {"listener delivers", &Self::SampleLight, &Self::Deliver, 0},
    {"listener is told of the death", &Self::SampleLight, &Self::HearOfDeath, 0},
    {"listener is replaced", &Self::SampleLight, &Self::Replace, 0},
    {"monitor starts", &Self::DoNothing, &Self::StartMonitor, -ENOMEM},
    {"monitor starts again", &Self::StartMonitor, &Self::StartMonitor, -ENOMEM},
    {"monitor stops", &Self::StartMonitor, &Self::StopMonitor, -ENOMEM},
    {"monitor connects", &Self::DoNothing, &Self::ConnectMonitor, -ENOMEM},
    {kReading, &Self::ReadMonitorOnce, &Self::ReadMonitor, -ENOMEM},
};

TEST_F(SensorFaultsTest, FailingAndSlowCalls) {
  MeetFault(kRefusal, [](auto& function, int normal, int answer) {
    EXPECT_EQ(ResultAfterFailure(function, normal), answer);
  });
  MeetFault(kDelay, [](auto&, int normal, int answer) { EXPECT_EQ(normal, answer); });
  EXPECT_EQ(0, GetDeadHandleUses());
}

TEST_F(SensorFaultsTest, ServiceDiesDuringACall) {
  AllowDeadHandleUses();
  for (const CallFault& death : kDeaths) {
    MeetFault(death, [](auto&, int normal, int answer) {
      const std::set<int> kDefined = {normal, -ENOMEM, UNEXPECTED_NULL, UNKNOWN_ERROR, -EINVAL};
      EXPECT_TRUE(kDefined.contains(answer)) << answer;
    });
  }
}

TEST_F(SensorFaultsTest, ServiceIsDownOrStarting) {
  for (const Operation& operation : kOperations) {
    const std::string name(operation.name);
    for (const bool runs_before : {false, true}) {
      SCOPED_TRACE(name + (runs_before ? " after and before the death" : " after the death"));
      Prepare(operation);
      if (runs_before) {
        Run(operation);
      }
      KillSensorService();
      HearOfDeath();
      EXPECT_EQ(operation.without_service, RunAndRecover(operation, name));
    }
    SCOPED_TRACE(name + " while the service starts");
    Prepare(operation);
    KillSensorService(WhileDown::kWait);
    HearOfDeath();
    OnSensorCall("ASensorManager_getInstanceForPackage", StartSensorService);
    EXPECT_EQ(name == kReading ? UNKNOWN_ERROR : 0, RunAndRecover(operation, name));
  }
  EXPECT_EQ(0, GetDeadHandleUses());
}

}  // namespace
}  // namespace android::fp_utils
