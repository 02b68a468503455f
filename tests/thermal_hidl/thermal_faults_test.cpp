// SPDX-License-Identifier: Apache-2.0
//
// The thermal HAL fails in every way under the wrapper and under the monitor: each call has a
// defined answer within the test's bound, and a new connection works.
#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "control/hidl_thermal_client.h"
#include "control/hidl_thermal_service.h"
#include "control/thermal_service.h"
#include "fp_utils/thermal.h"
#include "fp_utils/thermal_hidl_wrapper.h"
#include "support/device_test.h"
#include "support/recorder.h"

namespace {

namespace aidl_thermal = aidl::android::hardware::thermal;
namespace V2_0 = android::hardware::thermal::V2_0;
using android::sp;
using android::fp_utils::Thermal;
using android::hardware::thermal::V1_0::ThermalStatus;
using android::hardware::thermal::V1_0::ThermalStatusCode;
using fp_host::HidlThermalClient;
using fp_host::HidlThermalService;
using fp_host::ThermalService;
using fp_host::WaitForPools;
using Death = fp_host::RemoteService::Death;

constexpr auto kSkin = V2_0::TemperatureType::SKIN;
constexpr char kGone[] = "";  // the message of a service that is dead

ndk::ScopedAStatus NotReady() {
  return ndk::ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, "not ready");
}

// A wrapper on a service, and two callbacks of HIDL clients.
class Bridge {
 public:
  explicit Bridge(ThermalService& thermal_service) : service(thermal_service) {
    service.Start();
    Connect();
  }

  void Connect() {
    const ndk::SpAIBinder binder(AServiceManager_waitForService(service.GetInstance().c_str()));
    wrapper = sp<V2_0::IThermal>(
        new aidl_thermal::ThermalHidlWrapper(aidl_thermal::IThermal::fromBinder(binder)));
  }

  // "ok", or the message of the failure; "?" if the call was not answered exactly once.
  using Operation = std::string (Bridge::*)();

  std::string Temperatures() {
    return Do([&](auto cb) {
      return wrapper->getCurrentTemperatures(
          filter, kSkin, [&](const ThermalStatus& status, const auto&) { cb(status); });
    });
  }
  std::string Thresholds() {
    return Do([&](auto cb) {
      return wrapper->getTemperatureThresholds(
          filter, kSkin, [&](const ThermalStatus& status, const auto&) { cb(status); });
    });
  }
  std::string CoolingDevices() {
    return Do([&](auto cb) {
      return wrapper->getCurrentCoolingDevices(
          filter, V2_0::CoolingType::FAN,
          [&](const ThermalStatus& status, const auto&) { cb(status); });
    });
  }
  std::string Register(size_t client) {
    return Do([&](auto cb) {
      return wrapper->registerThermalChangedCallback(clients[client].NewProxy(), filter, kSkin, cb);
    });
  }
  std::string Unregister(size_t client) {
    return Do([&](auto cb) {
      return wrapper->unregisterThermalChangedCallback(clients[client].NewProxy(), cb);
    });
  }
  std::string RegisterFirst() { return Register(0); }
  std::string UnregisterSecond() { return Unregister(1); }

  ThermalService& service;
  bool filter = false;  // which of the two forms of each operation is meant
  std::array<HidlThermalClient, 2> clients;
  sp<V2_0::IThermal> wrapper;

 private:
  template <typename Call>
  std::string Do(Call call) {
    std::string answer = "?";
    int answers = 0;
    const bool ok = call([&](const ThermalStatus& status) {
                      ++answers;
                      answer = status.code == ThermalStatusCode::SUCCESS
                                   ? "ok"
                                   : static_cast<std::string>(status.debugMessage);
                    }).isOk();
    return ok && answers == 1 ? answer : "?";
  }
};

class ThermalFaultsTest : public ::testing::Test {
 protected:
  ThermalFaultsTest() {
    fp_test::MuteLog(true);
    ABinderProcess_startThreadPool();
  }
};

TEST_F(ThermalFaultsTest, EveryOperationOfTheWrapperMeetsEveryFault) {
  const Bridge::Operation kOperations[] = {&Bridge::Temperatures, &Bridge::Thresholds,
                                           &Bridge::CoolingDevices, &Bridge::RegisterFirst,
                                           &Bridge::UnregisterSecond};
  const struct {
    const char* name;
    std::function<void(ThermalService&)> strike;
    const char* answer;
    bool dead;  // when the call is over
  } kFaults[] = {
      {"none", [](auto&) {}, "ok", false},
      {"is dead", [](auto& service) { service.Kill(); }, kGone, true},
      {"dies before", [](auto& service) { service.DieAtCall(1, Death::kBefore); }, kGone, true},
      {"dies during", [](auto& service) { service.DieAtCall(1, Death::kDuring); }, kGone, true},
      {"dies after", [](auto& service) { service.DieAtCall(1, Death::kAfter); }, "ok", true},
      {"refuses", [](auto& service) { service.Refuse(NotReady); }, "not ready", false},
      {"answers without a status",
       [](auto& service) { service.Refuse([] { return ndk::ScopedAStatus(); }); }, kGone, false},
      {"is slow", [](auto& service) { service.SetDelay(std::chrono::milliseconds(2)); }, "ok",
       false},
      {"came back as another",
       [](auto& service) {
         service.Kill();
         service.Start();
       },
       kGone, true},
  };
  for (const auto& fault : kFaults) {
    for (size_t form = 0; form < 2 * std::size(kOperations); ++form) {
      SCOPED_TRACE(std::string(fault.name) + ", form " + std::to_string(form));
      ThermalService service;
      Bridge bridge(service);
      bridge.filter = form % 2 == 1;
      EXPECT_EQ("ok", bridge.Register(1));
      fault.strike(service);
      EXPECT_EQ(fault.answer, (bridge.*kOperations[form / 2])());
      service.Accept();
      service.SetDelay(std::chrono::milliseconds(0));
      service.Start();
      EXPECT_EQ(fault.dead ? kGone : "ok", bridge.Temperatures()) << "no second connection";
      bridge.Connect();
      EXPECT_EQ("ok", bridge.Temperatures());
      EXPECT_EQ("ok", bridge.Register(1)) << "the new wrapper knows of no callback";
    }
  }
}

// A random life of a bridge next to what is expected of it.
class RandomBridge {
 public:
  explicit RandomBridge(uint64_t seed) : random_(seed) {}

  void Run(int steps) {
    for (int i = 0; i < steps && !::testing::Test::HasFailure(); ++i) {
      Step();
    }
  }

 private:
  void Step() {
    const size_t client = random_() % 2;
    switch (random_() % 12) {
      case 0:
        bridge_.service.Kill();
        connected_ = false;
        return;
      case 1:
        bridge_.service.Start();
        bridge_.Connect();
        if (!connected_) {
          at_service_.clear();
        }
        listed_.clear();
        connected_ = true;
        return;
      case 2:
        refusing_ = !refusing_;
        refusing_ ? bridge_.service.Refuse(NotReady) : bridge_.service.Accept();
        return;
      case 3:
      case 4:
        Notify();
        return;
      case 5:
        EXPECT_EQ(Expected(), bridge_.Temperatures());
        return;
      case 6:
      case 7:
      case 8:
        Register(client);
        return;
      default:
        Unregister(client);
    }
  }

  std::string Expected() const { return !connected_ ? kGone : refusing_ ? "not ready" : "ok"; }

  void Register(size_t client) {
    const std::string expected = listed_.contains(client)
                                     ? "The callback was already registered through wrapper"
                                     : Expected();
    EXPECT_EQ(expected, bridge_.Register(client));
    if (expected == "ok") {
      listed_.insert(client);
      at_service_.insert(client);
    }
  }

  void Unregister(size_t client) {
    const std::string expected = !listed_.contains(client)
                                     ? "The callback was not registered through wrapper before"
                                     : Expected();
    EXPECT_EQ(expected, bridge_.Unregister(client));
    if (expected == "ok") {
      listed_.erase(client);
      at_service_.erase(at_service_.find(client));
    }
  }

  void Notify() {
    bridge_.service.Notify({});
    EXPECT_TRUE(WaitForPools());
    for (size_t client = 0; client < 2; ++client) {
      EXPECT_EQ(connected_ ? at_service_.count(client) : 0,
                bridge_.clients[client].TakeReceived().size());
    }
  }

  std::mt19937_64 random_;
  ThermalService service_;
  Bridge bridge_{service_};
  bool connected_ = true;
  bool refusing_ = false;
  std::set<size_t> listed_;           // with the present wrapper
  std::multiset<size_t> at_service_;  // also those of earlier wrappers
};

// A random boot of a device with either service or none, and a monitor on it.
class RandomMonitor {
 public:
  explicit RandomMonitor(uint64_t seed) : random_(seed) {
    ThermalService::Temperature skin;
    skin.type = aidl_thermal::TemperatureType::SKIN;
    skin.throttlingStatus = aidl_thermal::ThrottlingSeverity::MODERATE;
    aidl_.SetTemperatures({skin});
    hidl_.SetTemperatures({{kSkin, "skin", 30, V2_0::ThrottlingSeverity::SEVERE}});
  }

  void Run() {
    const bool has_aidl = random_() % 2 == 0;
    const bool has_hidl = random_() % 2 == 0;
    const bool late = random_() % 4 == 0;
    fp_host::RemoteService* service = has_aidl   ? static_cast<fp_host::RemoteService*>(&aidl_)
                                      : has_hidl ? &hidl_
                                                 : nullptr;
    has_aidl ? aidl_.Declare() : aidl_.Undeclare();
    has_hidl ? hidl_.Declare() : hidl_.Undeclare();
    if (service == nullptr) {
      EXPECT_EQ(-ENODEV, Thermal().GetCpuSeverity());
      return;
    }
    if (!late) {
      service->Start();
    }
    Thermal thermal;
    if (late) {
      EXPECT_EQ(-ENODEV, thermal.GetCpuSeverity());
      service->Start();
    }
    const int32_t severity = has_aidl ? 2 : 3;
    EXPECT_TRUE(fp_test::Eventually([&] { return thermal.GetCpuSeverity() == severity; }));
    Live(thermal, *service, severity);
  }

 private:
  void Live(Thermal& thermal, fp_host::RemoteService& service, int32_t severity) {
    bool dead = false;
    bool refusing = false;
    for (int i = 0; i < 10; ++i) {
      bool dies = false;
      auto moment = Death::kAfter;
      switch (random_() % 6) {
        case 0:
          service.Kill();
          dead = true;
          break;
        case 1:
          service.Start();
          break;
        case 2:
          refusing = !refusing;
          refusing ? aidl_.Refuse(NotReady) : aidl_.Accept();
          refusing ? hidl_.Refuse("not ready") : hidl_.Accept();
          break;
        case 3:
          dies = true;
          moment = static_cast<Death>(random_() % 3);
          service.DieAtCall(1, moment);
          break;
        default:
          break;
      }
      const bool answered = !dead && !refusing && (!dies || moment == Death::kAfter);
      EXPECT_EQ(answered ? severity : 0, thermal.GetCpuSeverity());
      service.DieAtCall(0, Death::kBefore);
      dead = dead || dies;
    }
  }

  std::mt19937_64 random_;
  ThermalService aidl_;
  HidlThermalService hidl_;
};

template <typename Run>
void RunOften(const char* what, int count, uint64_t seed, Run run) {
  printf("%d %s, seed %lu\n", count, what, seed);
  for (int i = 0; i < count && !::testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed + static_cast<uint64_t>(i)));
    run(seed + static_cast<uint64_t>(i));
  }
}

void RunBridges(int count, uint64_t seed) {
  RunOften("bridges", count, seed, [](uint64_t one) { RandomBridge(one).Run(40); });
}
void RunMonitors(int count, uint64_t seed) {
  RunOften("monitors", count, seed, [](uint64_t one) { RandomMonitor(one).Run(); });
}

TEST_F(ThermalFaultsTest, RandomBridges) { RunBridges(fp_test::Share(300), 1); }
TEST_F(ThermalFaultsTest, RandomMonitors) { RunMonitors(fp_test::Share(100), 1); }

using LongThermalFaultsTest = ThermalFaultsTest;
TEST_F(LongThermalFaultsTest, RandomBridges) { RunBridges(10000, std::random_device()()); }
TEST_F(LongThermalFaultsTest, RandomMonitors) { RunMonitors(10000, std::random_device()()); }

TEST_F(ThermalFaultsTest, OneWrapperServesManyThreads) {
  ThermalService service;
  Bridge bridge(service);
  std::atomic<bool> over = false;
  std::thread notifying([&] {
    while (!over) {
      service.Notify({});
      EXPECT_TRUE(WaitForPools());
    }
  });
  std::array<std::thread, 2> users;
  for (size_t user = 0; user < users.size(); ++user) {
    users[user] = std::thread([&bridge, user] {
      for (int i = 0; i < fp_test::Share(1000); ++i) {
        EXPECT_EQ("ok", bridge.Register(user));
        EXPECT_EQ("ok", bridge.Temperatures());
        EXPECT_EQ("ok", bridge.Unregister(user));
      }
    });
  }
  for (std::thread& user : users) {
    user.join();
  }
  over = true;
  notifying.join();
  EXPECT_EQ(0, service.CountCallbacks());
}

// The HAL crashes in a loop while wrappers and monitors connect to it, are used and go. All comes
// to an end, and a new connection works.
TEST_F(ThermalFaultsTest, StormOfDeathsCallsAndEnds) {
  ThermalService service;
  service.Declare();
  service.Start();
  std::atomic<bool> over = false;
  std::thread crashing([&] {
    while (!over) {
      service.Notify({});
      service.Kill();
      service.Start();
    }
  });
  std::thread using_wrappers([&service] {
    for (int i = 0; i < fp_test::Share(1000); ++i) {
      Bridge bridge(service);
      bridge.Register(0);
      bridge.Temperatures();
      bridge.Unregister(0);
    }
  });
  for (int i = 0; i < fp_test::Share(100); ++i) {
    const int32_t severity = Thermal().GetCpuSeverity();
    EXPECT_TRUE(severity == 0 || severity == -ENODEV) << severity;
  }
  using_wrappers.join();
  over = true;
  crashing.join();
  Bridge bridge(service);
  EXPECT_EQ("ok", bridge.Temperatures());
}

}  // namespace
