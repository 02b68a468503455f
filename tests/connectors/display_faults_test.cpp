// SPDX-License-Identifier: Apache-2.0
//
// Every call of a display controller meets every fault of the HAL: it returns a defined result, and
// the next call works once the HAL is back.
#include <atomic>
#include <cerrno>
#include <memory>
#include <thread>

#include <android/binder_process.h>
#include <utils/Errors.h>

#include "fp_host/display_service.h"
#include "fp_host/testing.h"
#include "fp_utils/display_controller.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using ndk::ScopedAStatus;

// A phone with a working display HAL, and a controller that is not connected yet.
class Phone {
 public:
  Phone() {
    service.Declare();
    service.Start();
  }

  int Set(bool on) { return controller->SetLhbm(on, &elapsed); }

  // Returns once the controller has been notified of the death.
  void Kill() {
    service.Kill();
    EXPECT_TRUE(WaitUntilBinderPoolsIdle());
  }

  DisplayService service;
  std::unique_ptr<DisplayController> controller = std::make_unique<DisplayController>();
  unsigned elapsed = 0;
};

class DisplayFaultsTest : public ::testing::Test {
 protected:
  DisplayFaultsTest() {
    MuteLog(true);
    ABinderProcess_startThreadPool();
  }
};

ScopedAStatus NotReady() { return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_STATE); }
ScopedAStatus NoStatus() { return ScopedAStatus(); }

// The next switch meets the fault. The controller is connected before, or connects for the switch.
void MeetFault(const HalFault& fault, bool connected, bool on) {
  SCOPED_TRACE(std::string(fault.name) + (connected ? ", connected, " : ", not connected, ") +
               (on ? "on" : "off"));
  Phone phone;
  if (connected) {
    EXPECT_EQ(0, phone.Set(true));
    EXPECT_EQ(0, on ? phone.Set(false) : 0);
  }
  fault.apply(phone.service);
  phone.service.TakeRequests();
  EXPECT_EQ(fault.Has(kAnswered) ? 0 : FAILED_TRANSACTION, phone.Set(on));
  EXPECT_EQ(fault.Has(kServed) ? 1u : 0u, phone.service.TakeRequests().size());

  EXPECT_TRUE(WaitUntilBinderPoolsIdle());
  phone.service.Repair();
  EXPECT_EQ(0, phone.Set(on)) << "recovered";
  EXPECT_EQ(0, phone.Set(!on));
  EXPECT_EQ(!on, phone.service.IsLhbmOn());
}

TEST_F(DisplayFaultsTest, EverySwitchMeetsEveryFaultAndRecovers) {
  const auto refuse = [](ScopedAStatus (*answer)()) {
    return
        [answer](RemoteService& service) { static_cast<DisplayService&>(service).Refuse(answer); };
  };
  const auto restart = [](RemoteService& service) {
    service.Kill();
    EXPECT_TRUE(WaitUntilBinderPoolsIdle());
    service.Start();
  };
  const auto kFaults = HalFaults({
      {"refuses", refuse(NotReady), kServed},
      {"answers without a status", refuse(NoStatus), kServed},
      {"has restarted, and the controller knows", restart, kAnswered | kServed},
  });
  for (const auto& fault : kFaults) {
    MeetFault(fault, false, true);  // a new controller switches nothing off
    MeetFault(fault, true, true);
    MeetFault(fault, true, false);
  }
}

TEST_F(DisplayFaultsTest, ExistingConnectionNeedsNoServiceManager) {
  Phone phone;
  EXPECT_EQ(0, phone.Set(true));
  phone.service.Undeclare();
  const ScopedServiceManagerFailure failing;
  EXPECT_EQ(0, phone.Set(false));
  phone.Kill();
  EXPECT_EQ(FAILED_TRANSACTION, phone.Set(true)) << "a new one does";
}

// The HAL crashes in a loop while controllers are created, used by two threads and destroyed. Each
// switch may succeed or fail, but must return.
TEST_F(DisplayFaultsTest, StormOfDeathsCallsAndDestructions) {
  DisplayService service;
  service.Declare();
  service.Start();
  std::atomic<bool> over = false;
  std::thread crashing([&] {
    while (!over) {
      service.Restart();
    }
  });
  const int rounds = Share(2000);
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
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  DisplayController controller;
  EXPECT_EQ(0, controller.SetLhbm(true, nullptr));
  EXPECT_TRUE(service.IsLhbmOn());
}

}  // namespace
}  // namespace android::fp_utils
