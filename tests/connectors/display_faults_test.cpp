// SPDX-License-Identifier: Apache-2.0
//
// The display HAL fails in every way at every point of a controller's life: each call has a defined
// answer within the test's bound, and the next one after the HAL is back works.
#include <atomic>
#include <cerrno>
#include <memory>
#include <random>
#include <thread>

#include <android/binder_process.h>
#include <utils/Errors.h>

#include "control/display_service.h"
#include "fp_utils/display_controller.h"
#include "support/device_test.h"

namespace android::fp_utils {
namespace {

using Death = fp_host::RemoteService::Death;
using fp_host::DisplayService;
using fp_host::WaitForPools;
using ndk::ScopedAStatus;

// A phone with a display HAL that works, and a controller that has not needed it yet.
class Phone {
 public:
  Phone() {
    service.Declare();
    service.Start();
  }
  ~Phone() { fp_host::SetServiceManagerFailing(false); }

  int Set(bool on) { return controller->SetLhbm(on, &elapsed); }

  // The controller has heard of the deaths so far when this returns.
  void Kill() {
    service.Kill();
    EXPECT_TRUE(WaitForPools());
  }

  DisplayService service;
  std::unique_ptr<DisplayController> controller = std::make_unique<DisplayController>();
  unsigned elapsed = 0;
};

class DisplayFaultsTest : public ::testing::Test {
 protected:
  DisplayFaultsTest() {
    fp_test::MuteLog(true);
    ABinderProcess_startThreadPool();
  }
};

struct Outcome {
  int answer;
  bool handled;  // whether the request got as far as the service's code
};

struct FaultCase {
  const char* name;
  void (*strike)(Phone& phone);
  Outcome fresh;      // of a controller that was not connected
  Outcome connected;  // of one that was
};

ScopedAStatus NotReady() { return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_STATE); }
ScopedAStatus NoStatus() { return ScopedAStatus(); }

constexpr Outcome kDone = {0, true};
constexpr Outcome kRefused = {FAILED_TRANSACTION, true};
constexpr Outcome kNotReached = {FAILED_TRANSACTION, false};
constexpr Outcome kNoConnection = {-ENODEV, false};

const FaultCase kFaults[] = {
    {"none", [](Phone&) {}, kDone, kDone},
    {"dies before the call", [](Phone& phone) { phone.service.DieAtCall(1, Death::kBefore); },
     kNotReached, kNotReached},
    {"dies during the call", [](Phone& phone) { phone.service.DieAtCall(1, Death::kDuring); },
     kRefused, kRefused},
    {"dies after the call", [](Phone& phone) { phone.service.DieAtCall(1, Death::kAfter); }, kDone,
     kDone},
    {"refuses", [](Phone& phone) { phone.service.Refuse(NotReady); }, kRefused, kRefused},
    {"answers without a status", [](Phone& phone) { phone.service.Refuse(NoStatus); }, kRefused,
     kRefused},
    {"is slow", [](Phone& phone) { phone.service.SetDelay(std::chrono::milliseconds(2)); }, kDone,
     kDone},
    {"died and came back",
     [](Phone& phone) {
       phone.Kill();
       phone.service.Start();
     },
     kDone, kDone},
    {"died and another took its name",
     [](Phone& phone) {
       phone.Kill();
       phone.service.StartImpostor();
     },
     kNoConnection, kNoConnection},
    {"died and was withdrawn",
     [](Phone& phone) {
       phone.Kill();
       phone.service.Undeclare();
     },
     kNotReached, kNotReached},
    // A connection that stands asks nobody.
    {"was withdrawn", [](Phone& phone) { phone.service.Undeclare(); }, kNotReached, kDone},
    {"service manager fails", [](Phone&) { fp_host::SetServiceManagerFailing(true); }, kNotReached,
     kDone},
};

void Repair(Phone& phone, const Outcome& outcome) {
  phone.service.Accept();
  phone.service.SetDelay(std::chrono::milliseconds(0));
  phone.service.Declare();
  fp_host::SetServiceManagerFailing(false);
  if (outcome.answer == -ENODEV) {
    phone.Kill();  // the impostor
  }
  EXPECT_TRUE(WaitForPools());
  phone.service.Start();
}

void MeetFault(const FaultCase& fault, bool connected, bool on) {
  SCOPED_TRACE(std::string(fault.name) + (connected ? ", connected, " : ", fresh, ") +
               (on ? "on" : "off"));
  Phone phone;
  if (connected) {
    EXPECT_EQ(0, phone.Set(true));
    EXPECT_EQ(0, on ? phone.Set(false) : 0);
  }
  fault.strike(phone);
  const Outcome& expected = connected ? fault.connected : fault.fresh;
  const size_t handled = phone.service.GetRequests().size() + (expected.handled ? 1 : 0);
  EXPECT_EQ(expected.answer, phone.Set(on));
  EXPECT_EQ(handled, phone.service.GetRequests().size());

  Repair(phone, expected);
  EXPECT_EQ(0, phone.Set(on)) << "recovered";
  EXPECT_EQ(0, phone.Set(!on));
  EXPECT_EQ(!on, phone.service.IsLhbmOn());
}

TEST_F(DisplayFaultsTest, EverySwitchMeetsEveryFaultAndRecovers) {
  for (const FaultCase& fault : kFaults) {
    MeetFault(fault, false, true);  // off is where a fresh controller starts
    MeetFault(fault, true, true);
    MeetFault(fault, true, false);
  }
}

// A random life of a phone next to what is expected of it.
class RandomLife {
 public:
  explicit RandomLife(uint64_t seed) : random_(seed) {}

  void Run(int steps) {
    for (int i = 0; i < steps && !::testing::Test::HasFailure(); ++i) {
      Step();
    }
  }

 private:
  void Step() {
    switch (random_() % 10) {
      case 0:
        phone_.Kill();
        connected_ = false;
        return;
      case 1:
        phone_.service.Start();
        return;
      case 2:
        declared_ = !declared_;
        declared_ ? phone_.service.Declare() : phone_.service.Undeclare();
        return;
      case 3:
        refusing_ = !refusing_;
        refusing_ ? phone_.service.Refuse(NotReady) : phone_.service.Accept();
        return;
      case 4:
        phone_.controller = std::make_unique<DisplayController>();
        connected_ = on_ = false;
        return;
      default:
        Switch(random_() % 2 == 0);
    }
  }

  void Switch(bool on) {
    const bool needed = on != on_;
    const bool has_service = connected_ || declared_;
    // Where it would wait for a service that is down, one comes.
    std::thread starting;
    if (needed && has_service && !phone_.service.IsUp()) {
      starting = std::thread([this] {
        EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
        phone_.service.Start();
      });
    }
    const auto death = static_cast<Death>(random_() % 3);
    const bool dies = random_() % 4 == 0;
    phone_.service.DieAtCall(dies ? 1 : 0, death);
    const bool answered = has_service && (!dies || death == Death::kAfter) && !refusing_;
    EXPECT_EQ(needed && !answered ? FAILED_TRANSACTION : 0, phone_.Set(on));
    if (starting.joinable()) {
      starting.join();
    }
    if (needed && has_service) {
      EXPECT_TRUE(WaitForPools());
      connected_ = !dies;
      on_ = answered ? on : on_;
    }
  }

  std::mt19937_64 random_;
  Phone phone_;
  bool declared_ = true;
  bool refusing_ = false;
  bool connected_ = false;
  bool on_ = false;
};

void LiveOften(int lives, uint64_t seed) {
  fp_test::RunSeeded("lives", lives, seed, [](uint64_t own) { RandomLife(own).Run(30); });
}

TEST_F(DisplayFaultsTest, RandomLives) { LiveOften(fp_test::Share(300), 1); }

using LongDisplayFaultsTest = DisplayFaultsTest;
TEST_F(LongDisplayFaultsTest, RandomLives) { LiveOften(10000, std::random_device()()); }

// The HAL crashes in a loop while controllers come, switch from two threads, and go. Nothing to
// expect of the answers but that they are among the defined ones, and that all comes to an end.
TEST_F(DisplayFaultsTest, StormOfDeathsCallsAndEnds) {
  DisplayService service;
  service.Declare();
  service.Start();
  std::atomic<bool> over = false;
  std::thread crashing([&] {
    while (!over) {
      service.Kill();
      service.Start();
    }
  });
  const int rounds = fp_test::Share(2000);
  for (int i = 0; i < rounds; ++i) {
    DisplayController controller;
    const auto switch_often = [&controller] {
      for (int k = 0; k < 4; ++k) {
        const int answer = controller.SetLhbm(k % 2 == 0, nullptr);
        EXPECT_TRUE(answer == 0 || answer == -ENODEV || answer == FAILED_TRANSACTION) << answer;
      }
    };
    std::thread other(switch_often);
    switch_often();
    other.join();
  }
  over = true;
  crashing.join();
  service.Start();
  ASSERT_TRUE(WaitForPools());
  DisplayController controller;
  EXPECT_EQ(0, controller.SetLhbm(true, nullptr));
  EXPECT_TRUE(service.IsLhbmOn());
}

}  // namespace
}  // namespace android::fp_utils
