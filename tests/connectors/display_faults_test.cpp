// SPDX-License-Identifier: Apache-2.0
//
// Every call of a display controller meets every fault of the HAL: it returns a defined result, and
// the next call works once the HAL is back.
#include <atomic>
#include <cerrno>
#include <thread>

#include <utils/Errors.h>

#include "support/display_test.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using ndk::ScopedAStatus;

class DisplayFaultsTest : public fp_test::DisplayTest {
 protected:
  DisplayFaultsTest() { MuteLog(true); }

  // The next switch meets the fault. The controller is connected before, or connects for the
  // switch.
  void MeetFault(const HalFault& fault, bool connected, bool on) {
    SCOPED_TRACE(std::string(fault.name) + (connected ? ", connected, " : ", not connected, ") +
                 (on ? "on" : "off"));
    Create();
    if (connected) {
      EXPECT_EQ(0, Set(true));
      EXPECT_EQ(0, on ? Set(false) : 0);
    }
    fault.apply(service_);
    service_.TakeRequests();
    EXPECT_EQ(fault.Has(kAnswered) ? 0 : FAILED_TRANSACTION, Set(on));
    EXPECT_EQ(fault.Has(kServed) ? 1u : 0u, service_.TakeRequests().size());

    EXPECT_TRUE(WaitUntilBinderPoolsIdle());
    service_.Repair();
    EXPECT_EQ(0, Set(on)) << "recovered";
    EXPECT_EQ(0, Set(!on));
    EXPECT_EQ(!on, service_.IsLhbmOn());
  }
};

TEST_F(DisplayFaultsTest, EverySwitchMeetsEveryFaultAndRecovers) {
  const auto kFaults = HalFaults({
      {"refuses",
       [this](auto&) {
         service_.Refuse([] { return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_STATE); });
       },
       kServed},
      {"answers without a status",
       [this](auto&) { service_.Refuse([] { return ScopedAStatus(); }); }, kServed},
      {"has restarted, and the controller knows",
       [this](auto&) {
         Kill();
         service_.Start();
       },
       kAnswered | kServed},
  });
  for (const auto& fault : kFaults) {
    MeetFault(fault, false, true);  // a new controller switches nothing off
    MeetFault(fault, true, true);
    MeetFault(fault, true, false);
  }
}

// The HAL crashes in a loop while controllers are created, used by two threads and destroyed. Each
// switch may succeed or fail, but must return.
TEST_F(DisplayFaultsTest, StormOfDeathsCallsAndDestructions) {
  std::atomic<bool> over = false;
  std::thread crashing([&] {
    while (!over) {
      service_.Restart();
    }
  });
  for (int i = 0; i < Share(2000); ++i) {
    Create();
    const auto switch_often = [this] {
      for (int k = 0; k < 4; ++k) {
        const int answer = controller_->SetLhbm(k % 2 == 0, nullptr);
        EXPECT_TRUE(answer == 0 || answer == -ENODEV || answer == FAILED_TRANSACTION) << answer;
      }
    };
    std::thread other(switch_often);
    switch_often();
    other.join();
  }
  over = true;
  crashing.join();
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  Create();
  EXPECT_EQ(0, Set(true));
  EXPECT_TRUE(service_.IsLhbmOn());
}

}  // namespace
}  // namespace android::fp_utils
