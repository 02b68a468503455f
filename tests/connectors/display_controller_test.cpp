// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/display_controller.h"

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include <android/binder_manager.h>
#include <utils/Errors.h>

#include "fp_utils/critical_errors.h"
#include "support/display_test.h"
#include "support/platform_calls.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;
using ndk::ScopedAStatus;
using std::chrono::milliseconds;

constexpr char kTag[] = "DisplayController";
constexpr char kInstance[] = "com.norvan.hardware.kestra.display.IDisplay/default";

const LogLine kConnected =
    Debug(kTag, "[ConnectDisplayHal] Successfully connected to IDisplay service.");
const LogLine kNoConnection = Error(kTag, "[SetLhbm] Failed to connect to displayHAL");
const LogLine kTurningOn = Debug(kTag, "[SetLhbm]: Turning on lhbm");
const LogLine kDied = Debug(kTag, "[BinderDied] Display HAL has died.");

LogLine Turned(const char* state, unsigned elapsed) {
  return Debug(kTag, std::string("[SetLhbm]: Successfully turned ") + state + " lhbm, elapsed " +
                         std::to_string(elapsed) + " ms");
}

std::string CriticalErrorDump() {
  return DumpText([](int fd) { CriticalErrors::GetInstance().Dump(fd, nullptr, 0); });
}

class DisplayControllerTest : public DisplayTest {
 protected:
  // The references to the service's proxy, without this function's and the service manager's.
  static int CountRefs() {
    const ndk::SpAIBinder binder(AServiceManager_waitForService(kInstance));
    return AIBinder_debugGetRefCount(binder.get()) - 2;
  }
};

TEST_F(DisplayControllerTest, ConnectsAndSwitchesInThisOrder) {
  service_.Refuse([] {
    RecordCall("setLhbmState");
    return ScopedAStatus::ok();
  });
  RecordCalls(true);
  EXPECT_EQ(0, Set(true));
  const unsigned turning_on = elapsed_;
  EXPECT_EQ(0, Set(false));
  EXPECT_LOG(Call(std::string("isDeclared ") + kInstance),
             Call(std::string("waitForService ") + kInstance), Call("DeathRecipient_new"),
             Call("linkToDeath"), kConnected, kTurningOn, Call("setLhbmState"),
             Turned("on", turning_on), Debug(kTag, "[SetLhbm]: Turning off lhbm"),
             Call("setLhbmState"), Turned("off", elapsed_));
  EXPECT_EQ((std::vector{true, false}), service_.TakeRequests());
  EXPECT_EQ(1, CountRefs()) << "the connection's; the one that came with the binder is released";
  TakeLog();

  Kill();
  EXPECT_LOG(kDied, Call("DeathRecipient_delete"));
  service_.Start();
  EXPECT_EQ(0, Set(true));
  EXPECT_EQ(8u, TakeLog().size()) << "as on the first connection";
  controller_ = nullptr;
  EXPECT_LOG(Call("DeathRecipient_delete"));
  EXPECT_EQ(0, CountRefs());
}

TEST_F(DisplayControllerTest, StateReachedIsNotAskedForAgain) {
  EXPECT_EQ(0, Set(false));
  EXPECT_EQ(0u, elapsed_);
  EXPECT_LOG(Debug(kTag, "[SetLhbm] Lhbm is already 0"))
      << "off from the start, without a connection";
  EXPECT_EQ(0, controller_->SetLhbm(true, nullptr));
  TakeLog();
  EXPECT_EQ(0, Set(true));
  EXPECT_EQ(0u, elapsed_);
  EXPECT_LOG(Debug(kTag, "[SetLhbm] Lhbm is already 1"));
  EXPECT_EQ((std::vector{true}), service_.TakeRequests());

  Kill();
  service_.Start();
  TakeLog();
  EXPECT_EQ(0, Set(true));
  EXPECT_LOG(Debug(kTag, "[SetLhbm] Lhbm is already 1"));
  EXPECT_FALSE(service_.IsLhbmOn()) << "the state survives the death of the service";
  EXPECT_EQ(0, Set(false));
  EXPECT_EQ(0, Set(true));
  EXPECT_TRUE(service_.IsLhbmOn());
}

TEST_F(DisplayControllerTest, FailedSwitches) {
  EXPECT_EQ("Critical Errors:\n", CriticalErrorDump());
  service_.Refuse([] { return ScopedAStatus::fromExceptionCode(EX_SERVICE_SPECIFIC); });
  EXPECT_EQ(FAILED_TRANSACTION, Set(true));
  EXPECT_EQ(0u, elapsed_);
  EXPECT_LOG(kConnected, kTurningOn, Error(kTag, "[SetLhbm] Failed to setLhbmState 1"));
  const std::string dump = CriticalErrorDump();
  EXPECT_EQ(0u, dump.find("Critical Errors:\n  #000 ")) << dump;
  EXPECT_NE(std::string::npos, dump.find(" failed to enable lhbm\n")) << dump;

  service_.Accept();
  EXPECT_EQ(0, Set(true)) << "the failure changed no state";
  service_.Refuse([] { return ScopedAStatus::fromStatus(STATUS_TIMED_OUT); });
  TakeLog();
  EXPECT_EQ(FAILED_TRANSACTION, Set(false));
  EXPECT_LOG(Debug(kTag, "[SetLhbm]: Turning off lhbm"),
             Error(kTag, "[SetLhbm] Failed to setLhbmState 0"));
  EXPECT_EQ(dump, CriticalErrorDump()) << "only a failed switch-on is critical";
  EXPECT_EQ(0, Set(true)) << "still on";
}

TEST_F(DisplayControllerTest, DeviceWithoutTheService) {
  Kill();
  service_.Undeclare();
  EXPECT_EQ(FAILED_TRANSACTION, Set(true));
  EXPECT_EQ(0u, elapsed_);
  EXPECT_LOG(Error(kTag, std::string("IDisplay service ") + kInstance + " is not declared."),
             kTurningOn, Error(kTag, "[SetLhbm] Failed to setLhbmState 1"));
  EXPECT_NE("Critical Errors:\n", CriticalErrorDump());
  EXPECT_EQ(0, controller_->ConnectDisplayHal()) << "a missing service is not a connection error";
}

TEST_F(DisplayControllerTest, ConnectionThatFailsKeepsNothing) {
  Kill();
  service_.StartImpostor();
  EXPECT_EQ(-ENODEV, Set(true));
  EXPECT_EQ(0u, elapsed_);
  EXPECT_LOG(Error(kTag, std::string("Failed to get IDisplay service for ") + kInstance + "!"),
             kNoConnection);
  EXPECT_EQ(-ENODEV, controller_->ConnectDisplayHal());
  EXPECT_EQ(0, CountRefs());
  TakeLog();

  Kill();
  std::thread failing([] {
    EXPECT_TRUE(WaitForServiceWaiters(1));
    SetServiceManagerFailing(true);
  });
  EXPECT_EQ(-ENODEV, controller_->ConnectDisplayHal());
  failing.join();
  EXPECT_LOG(Error(kTag, std::string("Failed to get IDisplay binder for ") + kInstance + "!"));
  SetServiceManagerFailing(false);
  EXPECT_EQ("Critical Errors:\n", CriticalErrorDump()) << "no switch was tried";

  service_.Start();
  EXPECT_EQ(0, Set(true));
  EXPECT_TRUE(service_.IsLhbmOn());
  service_.Undeclare();
  const ScopedServiceManagerFailure no_manager;
  EXPECT_EQ(0, Set(false)) << "an existing connection needs no service manager";
}

TEST_F(DisplayControllerTest, ElapsedTimeIncludesConnecting) {
  SetServiceWaitDelay(milliseconds(40));
  service_.SetDelay(milliseconds(20));
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(0, Set(true));
  EXPECT_LE(milliseconds(elapsed_), std::chrono::steady_clock::now() - begin);
  EXPECT_GE(elapsed_, 60u);
  EXPECT_LOG(kConnected, kTurningOn, Turned("on", elapsed_));
  EXPECT_EQ(0, Set(false));
  EXPECT_GE(elapsed_, 20u);
  EXPECT_EQ(0, controller_->SetLhbm(true, nullptr));
}

TEST_F(DisplayControllerTest, IsTracedWithInputAndHal) {
  RecordCalls(true);
  const std::vector<LogLine> kSection = {Call("begin of trace section SetLhbm"),
                                         Debug(kTag, "[SetLhbm] Lhbm is already 0"),
                                         Call("end of trace section")};
  for (const uint64_t tags : {0x4u, 0x800u, 0x804u}) {
    SetTraceTags(tags);
    Set(false);
    EXPECT_EQ(kSection, TakeLog()) << tags;
  }
  SetTraceTags(~uint64_t{0x804});
  Set(false);
  EXPECT_EQ(1u, TakeLog().size());

  // The section also covers a switch, here one that fails.
  SetTraceTags(0x800);
  service_.Refuse([] { return ScopedAStatus::fromStatus(STATUS_BAD_VALUE); });
  Set(true);
  const std::vector<LogLine> log = TakeLog();
  EXPECT_EQ(kSection.front(), log.front());
  EXPECT_EQ(kSection.back(), log.back());
}

TEST_F(DisplayControllerTest, EndsWhileConnected) {
  Set(true);
  controller_ = nullptr;
  TakeLog();
  Kill();
  EXPECT_LOG() << "no controller is left to notify";
  DisplayController::BinderOnDeath(this);
  DisplayController::BinderOnDeath(nullptr);
  EXPECT_LOG() << "not controllers";
  DisplayController other;
  DisplayController::BinderOnDeath(&other);
  EXPECT_LOG(kDied);
}

}  // namespace
}  // namespace android::fp_utils
