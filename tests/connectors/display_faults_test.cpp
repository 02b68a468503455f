// SPDX-License-Identifier: Apache-2.0
//
// The display HAL fails in every way at every point of a controller's life: each call has a defined
// answer within the test's bound, and the next one after the HAL is back works.
#include <atomic>
#include <cerrno>
#include <memory>
#include <thread>

#include <android/binder_process.h>
#include <utils/Errors.h>

#include "control/display_service.h"
#include "fp_utils/display_controller.h"
#include "support/device_test.h"
#include "support/hal_faults.h"

namespace android::fp_utils {
namespace {

using fp_host::DisplayService;
using fp_host::RemoteService;
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

ScopedAStatus NotReady() { return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_STATE); }
ScopedAStatus NoStatus() { return ScopedAStatus(); }

// The next switch of a controller, which is connected already or connects for it, meets the fault.
void MeetFault(const fp_test::HalFault& fault, bool connected, bool on) {
  SCOPED_TRACE(std::string(fault.name) + (connected ? ", connected, " : ", fresh, ") +
               (on ? "on" : "off"));
  Phone phone;
  if (connected) {
    EXPECT_EQ(0, phone.Set(true));
    EXPECT_EQ(0, on ? phone.Set(false) : 0);
  }
  fault.strike(phone.service);
  const size_t handled = phone.service.GetRequests().size() + (fault.served ? 1 : 0);
  EXPECT_EQ(fault.answered ? 0 : FAILED_TRANSACTION, phone.Set(on));
  EXPECT_EQ(handled, phone.service.GetRequests().size());

  phone.service.Accept();
  EXPECT_TRUE(WaitForPools());
  fp_test::Repair(phone.service);
  EXPECT_EQ(0, phone.Set(on)) << "recovered";
  EXPECT_EQ(0, phone.Set(!on));
  EXPECT_EQ(!on, phone.service.IsLhbmOn());
}

TEST_F(DisplayFaultsTest, EverySwitchMeetsEveryFaultAndRecovers) {
  const auto refuse = [](ScopedAStatus (*answer)()) {
    return
        [answer](RemoteService& service) { static_cast<DisplayService&>(service).Refuse(answer); };
  };
  const auto kFaults = fp_test::HalFaults({
      {.name = "refuses", .strike = refuse(NotReady), .answered = false, .served = true},
      {.name = "answers without a status",
       .strike = refuse(NoStatus),
       .answered = false,
       .served = true},
      {.name = "came back",
       .strike =
           [](RemoteService& service) {
             service.Kill();
             EXPECT_TRUE(WaitForPools());
             service.Start();
           },
       .answered = true,
       .served = true},
  });
  for (const auto& fault : kFaults) {
    MeetFault(fault, false, true);  // a fresh controller is off already
    MeetFault(fault, true, true);
    MeetFault(fault, true, false);
  }
}

TEST_F(DisplayFaultsTest, ConnectionThatStandsNeedsNoServiceManager) {
  Phone phone;
  EXPECT_EQ(0, phone.Set(true));
  phone.service.Undeclare();
  fp_host::SetServiceManagerFailing(true);
  EXPECT_EQ(0, phone.Set(false));
  phone.Kill();
  EXPECT_EQ(FAILED_TRANSACTION, phone.Set(true)) << "a new one does";
}

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
