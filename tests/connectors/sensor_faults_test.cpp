// SPDX-License-Identifier: Apache-2.0
//
// The clients of the sensor service while it fails: every operation with every fault at every call
// that it makes, and recovery from each.
#include <atomic>
#include <cerrno>
#include <map>
#include <memory>
#include <set>

#include <utils/Errors.h>

#include "support/sensor_clients.h"
#include "support/sensor_test.h"

namespace android::fp_utils {
namespace {

using fp_host::SetLux;
using namespace fp_test;

struct Operation {
  const char* name;
  void (*prepare)(SensorClients&);
  int (*run)(SensorClients&);
  // The answer while there is no service and the clients have heard of it.
  int without_service;
};

void Nothing(SensorClients& /*clients*/) {}
void SampleLight(SensorClients& clients) { clients.Listener().StartSampling(kLight); }
void StartMonitor(SensorClients& clients) { clients.Monitor().StartSampling(); }

const Operation kOperations[] = {
    {"listener starts", Nothing,
     [](SensorClients& clients) { return clients.Listener().StartSampling(kLight); }, -ENOMEM},
    {"listener starts another", SampleLight,
     [](SensorClients& clients) { return clients.Listener().StartSampling(kLongPress); }, -ENOMEM},
    {"listener stops", SampleLight,
     [](SensorClients& clients) { return clients.Listener().StopSampling(kLight); }, 0},
    {"listener delivers", SampleLight,
     [](SensorClients& clients) {
       SetLux(1);
       return !clients.Listener().IsAnySamplerStarted() || Eventually(IsWorkerIdle) ? 0 : -1;
     },
     0},
    {"listener hears of the death", SampleLight,
     [](SensorClients& clients) {
       clients.Listener().OnSystemServerDeath();
       return 0;
     },
     0},
    {"listener is destroyed", SampleLight,
     [](SensorClients& clients) {
       clients.DestroyListener();
       return 0;
     },
     0},
    {"monitor starts", Nothing,
     [](SensorClients& clients) { return clients.Monitor().StartSampling(); }, -ENOMEM},
    {"monitor starts again", StartMonitor,
     [](SensorClients& clients) { return clients.Monitor().StartSampling(); }, -ENOMEM},
    {"monitor stops", StartMonitor,
     [](SensorClients& clients) { return clients.Monitor().StopSampling(); }, -ENOMEM},
    {"monitor connects", Nothing,
     [](SensorClients& clients) {
       return clients.Monitor().ConnectSensorManagerIfNeeded() ? 0 : -ENOMEM;
     },
     -ENOMEM},
    {"monitor reads",
     [](SensorClients& clients) {
       clients.Monitor().StartSampling();
       SetLux(1);
     },
     [](SensorClients& clients) { return clients.ReadMonitor(); }, -ENOMEM},
    {"monitor hears of the death", StartMonitor,
     [](SensorClients& /*clients*/) {
       AlsMonitor::OnSystemServerDeath();
       return 0;
     },
     0},
};

// What an operation answers if that call of it fails; others do not change the answer.
int AnswerAfterFailure(const std::string& function, int normal) {
  static const std::map<std::string, int> kAnswers = {
      {"ASensorManager_getInstanceForPackage", -ENOMEM},
      {"ASensorManager_getSensorList", -ENOMEM},
      {"ASensorManager_getDefaultSensor", UNEXPECTED_NULL},
      {"ASensorManager_createEventQueue", -ENOMEM},
      {"ASensor_getStringType", -ENOMEM},
      {"ALooper_prepare", -ENOMEM},
      {"ASensorEventQueue_registerSensor", -EINVAL},
  };
  const auto found = kAnswers.find(function);
  return found == kAnswers.end() ? normal : found->second;
}

class SensorFaultsTest : public SensorTest {
 protected:
  // Fresh clients before the operation, with a fresh service.
  void Prepare(const Operation& operation) {
    clients_.reset();
    RepairSensorService();
    AlsMonitor::OnSystemServerDeath();
    clients_ = std::make_unique<SensorClients>();
    operation.prepare(*clients_);
    EXPECT_TRUE(operation.prepare != SampleLight || Eventually(IsWorkerIdle));
    fp_host::TakeSensorCalls();
    TakeLog();
  }

  // The operation on time, the service whole again, the clients told: everything works, and no
  // handle of the old service is touched any more.
  int RunAndRecover(const Operation& operation) {
    int answer = 0;
    RunBounded(case_, [&] { answer = operation.run(*clients_); });
    fp_host::ClearSensorFaults();
    RunBounded("recovery from " + case_, [&] {
      clients_->HearOfDeath();
      const int uses = fp_host::GetDeadHandleUses();
      RepairSensorService();
      clients_->ExpectRecovery();
      EXPECT_EQ(uses, fp_host::GetDeadHandleUses());
    });
    return answer;
  }

  // The functions that the operation calls when nothing is wrong.
  std::set<std::string> FunctionsOf(const Operation& operation, int& answer) {
    Prepare(operation);
    answer = Run(operation);
    std::set<std::string> functions;
    for (const fp_host::SensorCall& call : fp_host::TakeSensorCalls()) {
      functions.insert(call.text.substr(0, call.text.find('(')));
    }
    return functions;
  }

  // Calls `check` with the operation, each function that it calls and its answer.
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

  // The listener is told of it, the monitor finds out.
  void StopService(fp_host::WhileDown while_down) {
    fp_host::StopSensorService(while_down);
    clients_->HearOfDeath();
  }

  std::string case_;

 private:
  std::unique_ptr<SensorClients> clients_;
};

TEST_F(SensorFaultsTest, RefusedCalls) {
  ForEachCall([this](const Operation& operation, const std::string& function, int normal) {
    Prepare(operation);
    fp_host::SetSensorFault({.function = function, .calls = 1});
    const bool reads_nothing =
        function == "ASensorEventQueue_getEvents" && operation.name == std::string("monitor reads");
    EXPECT_EQ(reads_nothing ? -EINVAL : AnswerAfterFailure(function, normal),
              RunAndRecover(operation));
  });
  EXPECT_EQ(0, fp_host::GetDeadHandleUses());
}

TEST_F(SensorFaultsTest, SlowAnswersAreWaitedFor) {
  ForEachCall([this](const Operation& operation, const std::string& function, int normal) {
    Prepare(operation);
    const auto gate = std::make_shared<Gate>();
    fp_host::OnSensorCall(function, [gate] { gate->Pass(); });
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

// As a call comes in or as its result is on its way, for good or with another in its place at once.
// The client cannot know yet; nothing after it was told may touch what is gone.
TEST_F(SensorFaultsTest, ServiceGoesDuringACall) {
  fp_host::CountDeadHandleUses();
  for (const int kind : {0, 1, 2, 3}) {
    ForEachCall([&](const Operation& operation, const std::string& function, int normal) {
      Prepare(operation);
      const auto gone = std::make_shared<std::atomic<bool>>(false);
      const auto strike_once = [gone, comes_back = kind % 2 == 1] {
        if (!gone->exchange(true)) {
          comes_back ? fp_host::RestartSensorService() : fp_host::StopSensorService();
        }
      };
      kind < 2 ? fp_host::OnSensorCall(function, strike_once)
               : fp_host::OnSensorCall(function, nullptr, strike_once);
      const int answer = RunAndRecover(operation);
      const std::set<int> kDefined = {normal, -ENOMEM, UNEXPECTED_NULL, UNKNOWN_ERROR, -EINVAL};
      EXPECT_TRUE(kDefined.count(answer) == 1) << answer;
    });
  }
}

TEST_F(SensorFaultsTest, ServiceIsGoneOrComingUp) {
  for (const Operation& operation : kOperations) {
    case_ = operation.name;
    SCOPED_TRACE(case_);
    Prepare(operation);
    StopService(fp_host::WhileDown::kAnswerNull);
    EXPECT_EQ(operation.without_service, RunAndRecover(operation)) << "gone before";

    Prepare(operation);
    Run(operation);
    StopService(fp_host::WhileDown::kAnswerNull);
    EXPECT_EQ(operation.without_service, RunAndRecover(operation)) << "gone after";

    Prepare(operation);
    StopService(fp_host::WhileDown::kWait);
    fp_host::OnSensorCall("ASensorManager_getInstanceForPackage", fp_host::StartSensorService);
    const bool reads = operation.name == std::string("monitor reads");
    EXPECT_EQ(reads ? static_cast<int>(UNKNOWN_ERROR) : 0, RunAndRecover(operation))
        << "started as the operation asks for it";
  }
  EXPECT_EQ(0, fp_host::GetDeadHandleUses());
}

}  // namespace
}  // namespace android::fp_utils
