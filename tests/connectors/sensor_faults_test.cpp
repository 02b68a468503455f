// SPDX-License-Identifier: Apache-2.0
//
// Every operation of the sensor service's clients meets every fault in each of the platform calls
// that it makes, and the clients recover from it.
#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <set>

#include <utils/Errors.h>

#include "fp_host/testing.h"
#include "support/sensor_clients.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

struct Operation {
  const char* name;
  void (*prepare)(SensorClients&);
  int (*run)(SensorClients&);
  int without_service;  // its result while there is no service, once the clients were told
};

void Nothing(SensorClients& /*clients*/) {}
void SampleLight(SensorClients& clients) { clients.Listener().StartSampling(kLight); }
void StartMonitor(SensorClients& clients) { clients.Monitor().StartSampling(); }
void StartMonitorInLight(SensorClients& clients) {
  StartMonitor(clients);
  ReportLux(1);
}

const Operation kOperations[] = {
    {"listener starts", Nothing,
     [](auto& clients) { return clients.Listener().StartSampling(kLight); }, -ENOMEM},
    {"listener starts another", SampleLight,
     [](auto& clients) { return clients.Listener().StartSampling(kLongPress); }, -ENOMEM},
    {"listener stops", SampleLight,
     [](auto& clients) { return clients.Listener().StopSampling(kLight); }, 0},
    {"listener delivers", SampleLight,
     [](auto& clients) {
       ReportLux(1);
       return !clients.Listener().IsAnySamplerStarted() || Eventually(IsWorkerIdle) ? 0 : -1;
     },
     0},
    {"listener is told of the death", SampleLight,
     [](auto& clients) {
       clients.Listener().OnSystemServerDeath();
       return 0;
     },
     0},
    {"listener is destroyed", SampleLight,
     [](auto& clients) {
       clients.DestroyListener();
       return 0;
     },
     0},
    {"monitor starts", Nothing, [](auto& clients) { return clients.Monitor().StartSampling(); },
     -ENOMEM},
    {"monitor starts again", StartMonitor,
     [](auto& clients) { return clients.Monitor().StartSampling(); }, -ENOMEM},
    {"monitor stops", StartMonitor, [](auto& clients) { return clients.Monitor().StopSampling(); },
     -ENOMEM},
    {"monitor connects", Nothing,
     [](auto& clients) { return clients.Monitor().ConnectSensorManagerIfNeeded() ? 0 : -ENOMEM; },
     -ENOMEM},
    {"monitor reads", StartMonitorInLight, [](auto& clients) { return clients.ReadMonitor(); },
     -ENOMEM},
};

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
  const auto found = kResults.find(function);
  return found == kResults.end() ? normal : found->second;
}

class SensorFaultsTest : public SensorTest {
 protected:
  // Makes new clients with a new service, as they are before the operation.
  void Prepare(const Operation& operation) {
    clients_.reset();
    ClearSensorFaults();
    RestartSensorService();
    AlsMonitor::OnSystemServerDeath();
    clients_ = std::make_unique<SensorClients>();
    operation.prepare(*clients_);
    EXPECT_TRUE(operation.prepare != SampleLight || Eventually(IsWorkerIdle));
    TakeSensorCalls();
    TakeLog();
  }

  // Runs the operation, which has to return in time. Then the clients are told of the service's
  // death: they make no more calls with old handles and work with the new service.
  int RunAndRecover(const Operation& operation) {
    int answer = 0;
    RunBounded(case_, [&] { answer = operation.run(*clients_); });
    ClearSensorFaults();
    RunBounded("recovery from " + case_, [&] {
      clients_->HearOfDeath();
      const int uses = GetDeadHandleUses();
      RestartSensorService();
      clients_->ExpectRecovery();
      EXPECT_EQ(uses, GetDeadHandleUses());
    });
    return answer;
  }

  // The platform functions that the operation calls when nothing fails.
  std::set<std::string> FunctionsOf(const Operation& operation, int& answer) {
    Prepare(operation);
    answer = Run(operation);
    std::set<std::string> functions;
    for (const SensorCall& call : TakeSensorCalls()) {
      functions.insert(call.text.substr(0, call.text.find('(')));
    }
    return functions;
  }

  // Calls `check` with each operation, each function that it calls and its normal result.
  template <typename Check>
  void ForEachCall(Check check) {
    int cases = 0;
    for (const Operation& operation : kOperations) {
      int normal = 0;
      for (const std::string& function : FunctionsOf(operation, normal)) {
        case_ = std::string(operation.name) + ", " + function;
        SCOPED_TRACE(case_);
        check(operation, function, normal);
        ++cases;
      }
    }
    EXPECT_LT(30, cases);
  }

  int Run(const Operation& operation) {
    const int answer = operation.run(*clients_);
    EXPECT_TRUE(!clients_->IsListening() || Eventually(IsWorkerIdle));
    return answer;
  }

  // Tells the listener; the monitor notices by itself.
  void KillService(WhileDown while_down) {
    KillSensorService(while_down);
    clients_->HearOfDeath();
  }

  std::string case_;

 private:
  std::unique_ptr<SensorClients> clients_;
};

TEST_F(SensorFaultsTest, RefusedCalls) {
  ForEachCall([this](const Operation& operation, const std::string& function, int normal) {
    Prepare(operation);
    SetSensorFault({.function = function});
    const bool reads_nothing =
        function == "ASensorEventQueue_getEvents" && operation.name == std::string("monitor reads");
    EXPECT_EQ(reads_nothing ? -EINVAL : ResultAfterFailure(function, normal),
              RunAndRecover(operation));
  });
  EXPECT_EQ(0, GetDeadHandleUses());
}

TEST_F(SensorFaultsTest, SlowCallsAreWaitedFor) {
  ForEachCall([this](const Operation& operation, const std::string& function, int normal) {
    Prepare(operation);
    const auto gate = std::make_shared<Gate>();
    OnSensorCall(function, [gate] { gate->Pass(); });
    std::atomic<bool> over = false;
    std::thread opener([&] {
      EXPECT_TRUE(Eventually([&] { return gate->HasArrived() || over; }));
      gate->Open();
    });
    EXPECT_EQ(normal, RunAndRecover(operation));
    over = true;
    opener.join();
  });
}

// The service dies before or after a call has done its work, and restarts at once or does not.
// Until the client is told, it may still use the old handles.
TEST_F(SensorFaultsTest, ServiceDiesDuringACall) {
  AllowDeadHandleUses();
  for (const int kind : {0, 1, 2, 3}) {
    ForEachCall([&](const Operation& operation, const std::string& function, int normal) {
      Prepare(operation);
      const auto gone = std::make_shared<std::atomic<bool>>(false);
      const auto die_once = [gone, restarts = kind % 2 == 1] {
        if (!gone->exchange(true)) {
          restarts ? RestartSensorService() : KillSensorService();
        }
      };
      kind < 2 ? OnSensorCall(function, die_once) : OnSensorCall(function, nullptr, die_once);
      const int answer = RunAndRecover(operation);
      const std::set<int> kDefined = {normal, -ENOMEM, UNEXPECTED_NULL, UNKNOWN_ERROR, -EINVAL};
      EXPECT_TRUE(kDefined.count(answer) == 1) << answer;
    });
  }
}

TEST_F(SensorFaultsTest, ServiceIsDownOrStarting) {
  for (const Operation& operation : kOperations) {
    case_ = operation.name;
    SCOPED_TRACE(case_);
    Prepare(operation);
    KillService(WhileDown::kAnswerNull);
    EXPECT_EQ(operation.without_service, RunAndRecover(operation)) << "gone before";

    Prepare(operation);
    Run(operation);
    KillService(WhileDown::kAnswerNull);
    EXPECT_EQ(operation.without_service, RunAndRecover(operation)) << "gone after";

    Prepare(operation);
    KillService(WhileDown::kWait);
    OnSensorCall("ASensorManager_getInstanceForPackage", StartSensorService);
    const bool reads = operation.name == std::string("monitor reads");
    EXPECT_EQ(reads ? static_cast<int>(UNKNOWN_ERROR) : 0, RunAndRecover(operation))
        << "started as the operation asks for it";
  }
  EXPECT_EQ(0, GetDeadHandleUses());
}

}  // namespace
}  // namespace android::fp_utils
