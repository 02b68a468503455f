// SPDX-License-Identifier: Apache-2.0
//
// Every operation of the wrapper meets every fault of the thermal HAL: it returns a defined result,
// and a new connection works.
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <iterator>
#include <thread>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "fp_host/hidl_thermal_client.h"
#include "fp_host/testing.h"
#include "fp_host/thermal_service.h"
#include "fp_utils/thermal_hidl_wrapper.h"

namespace {

namespace aidl_thermal = aidl::android::hardware::thermal;
namespace V2_0 = android::hardware::thermal::V2_0;
using android::sp;
using android::hardware::thermal::V1_0::ThermalStatus;
using android::hardware::thermal::V1_0::ThermalStatusCode;
using namespace fp_host;

constexpr auto kSkin = V2_0::TemperatureType::SKIN;
constexpr char kNotReady[] = "not ready";
constexpr char kNoMessage[] = "";  // of a dead service, or of a failure without a message
constexpr char kRegisteredBefore[] = "The callback was already registered through wrapper";
constexpr char kNotRegistered[] = "The callback was not registered through wrapper before";

// A wrapper around an AIDL service, and two HIDL clients of the wrapper.
class Bridge {
 public:
  explicit Bridge(ThermalService& thermal_service) : service(thermal_service) {
    service.Start();
    Connect();
  }

  void Connect() {
    const ndk::SpAIBinder binder(AServiceManager_waitForService(service.GetInstance().c_str()));
    const auto wrapper = sp<V2_0::IThermal>(
        new aidl_thermal::ThermalHidlWrapper(aidl_thermal::IThermal::fromBinder(binder)));
    for (HidlThermalClient& client : clients) {
      client.Connect(wrapper);
    }
  }

  // Returns "ok", or the message of the failure.
  using Operation = std::string (Bridge::*)();

  std::string Temperatures() { return TextOf(clients[0].Temperatures(filter, kSkin)); }
  std::string Thresholds() { return TextOf(clients[0].Thresholds(filter, kSkin)); }
  std::string CoolingDevices() {
    return TextOf(clients[0].CoolingDevices(filter, V2_0::CoolingType::FAN));
  }
  std::string Register(size_t client) {
    return TextOf(clients[client].Register(clients[client].NewProxy(), filter, kSkin));
  }
  std::string Unregister(size_t client) {
    return TextOf(clients[client].Unregister(clients[client].NewProxy()));
  }
  std::string RegisterFirst() { return Register(0); }
  std::string UnregisterSecond() { return Unregister(1); }

  ThermalService& service;
  bool filter = false;  // operations ask for one type only
  std::array<HidlThermalClient, 2> clients;

 private:
  static std::string TextOf(const ThermalStatus& status) {
    return status.code == ThermalStatusCode::SUCCESS
               ? "ok"
               : static_cast<std::string>(status.debugMessage);
  }
  template <typename Record>
  static std::string TextOf(const HidlThermalClient::Answer<Record>& answer) {
    const bool ok = answer.status.code == ThermalStatusCode::SUCCESS;
    EXPECT_TRUE(ok || answer.records.empty());
    return TextOf(answer.status);
  }
};

class ThermalFaultsTest : public ::testing::Test {
 protected:
  ThermalFaultsTest() {
    MuteLog(true);
    ABinderProcess_startThreadPool();
  }
};

TEST_F(ThermalFaultsTest, EveryOperationOfTheWrapperMeetsEveryFault) {
  const Bridge::Operation kOperations[] = {&Bridge::Temperatures, &Bridge::Thresholds,
                                           &Bridge::CoolingDevices, &Bridge::RegisterFirst,
                                           &Bridge::UnregisterSecond};
  const auto refuse = [](std::function<ndk::ScopedAStatus()> answer) {
    return
        [answer](RemoteService& service) { static_cast<ThermalService&>(service).Refuse(answer); };
  };
  const auto not_ready = [] {
    return ndk::ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, kNotReady);
  };
  const auto no_status = [] { return ndk::ScopedAStatus(); };
  const auto kFaults = HalFaults({
      {"is dead", &RemoteService::Kill, kDead},
      {"has restarted", &RemoteService::Restart, kDead},
      {kNotReady, refuse(not_ready), 0},
      {"answers without a status", refuse(no_status), 0},
  });
  for (const auto& fault : kFaults) {
    for (size_t form = 0; form < 2 * std::size(kOperations); ++form) {
      SCOPED_TRACE(std::string(fault.name) + ", form " + std::to_string(form));
      ThermalService service;
      service.SetTemperatures({{}});
      service.SetThresholds({{}});
      service.SetCoolingDevices({{}});
      Bridge bridge(service);
      bridge.filter = form % 2 == 1;
      EXPECT_EQ("ok", bridge.Register(1));
      fault.apply(service);
      const char* failure = fault.name == kNotReady ? kNotReady : kNoMessage;
      EXPECT_EQ(fault.Has(kAnswered) ? "ok" : failure, (bridge.*kOperations[form / 2])());
      service.Repair();
      EXPECT_EQ(fault.Has(kDead) ? kNoMessage : "ok", bridge.Temperatures())
          << "no second connection";
      bridge.Connect();
      EXPECT_EQ("ok", bridge.Temperatures());
      EXPECT_EQ("ok", bridge.Register(1)) << "the new wrapper knows of no callback";
    }
  }
}

// Threads that register one client at once wait for the service's answer to the first of them.
TEST_F(ThermalFaultsTest, OneOfManyThreadsRegistersTheirClient) {
  ThermalService service;
  Bridge bridge(service);
  constexpr size_t kThreads = 3;
  const auto run_together = [&](auto operation) {
    std::array<std::string, kThreads> answers;
    std::array<std::thread, kThreads> threads;
    std::atomic<size_t> missing = kThreads;
    for (size_t k = 0; k < kThreads; ++k) {
      threads[k] = std::thread([&, k] {
        for (--missing; missing != 0;) {
          std::this_thread::yield();
        }
        answers[k] = (bridge.*operation)(0);
        EXPECT_EQ("ok", bridge.Temperatures());
      });
    }
    service.Notify({});
    for (std::thread& thread : threads) {
      thread.join();
    }
    EXPECT_TRUE(WaitUntilBinderPoolsIdle());
    std::sort(answers.begin(), answers.end(), std::greater());  // "ok" comes first
    return answers;
  };
  for (int i = 0; i < Share(300); ++i) {
    EXPECT_EQ((std::array<std::string, kThreads>{"ok", kRegisteredBefore, kRegisteredBefore}),
              run_together(&Bridge::Register));
    EXPECT_EQ(1, service.CountCallbacks());
    EXPECT_EQ((std::array<std::string, kThreads>{"ok", kNotRegistered, kNotRegistered}),
              run_together(&Bridge::Unregister));
    EXPECT_EQ(0, service.CountCallbacks());
  }
}

// The HAL crashes in a loop while wrappers are created, used and destroyed. Each call may fail, but
// must return.
TEST_F(ThermalFaultsTest, StormOfDeathsCallsAndDestructions) {
  ThermalService service;
  std::atomic<bool> over = false;
  std::thread crashing([&] {
    while (!over) {
      service.Notify({});
      service.Restart();
    }
  });
  for (int i = 0; i < Share(1000); ++i) {
    Bridge bridge(service);
    bridge.Register(0);
    bridge.Temperatures();
    bridge.Unregister(0);
  }
  over = true;
  crashing.join();
  Bridge bridge(service);
  EXPECT_EQ("ok", bridge.Temperatures());
}

}  // namespace
