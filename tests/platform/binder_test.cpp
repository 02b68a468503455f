// SPDX-License-Identifier: Apache-2.0
//
// The rules of the binder NDK that the stand-in enforces: references, dead proxies and death
// notifications.
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <aidl/com/norvan/hardware/kestra/display/BnDisplay.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "fp_host/display_service.h"
#include "fp_host/testing.h"

namespace {

using aidl::com::norvan::hardware::kestra::display::BnDisplay;
using aidl::com::norvan::hardware::kestra::display::IDisplay;
using namespace fp_host;
using ndk::ScopedAStatus;
using ndk::SharedRefBase;
using ndk::SpAIBinder;
using Names = std::vector<std::string>;

class LocalDisplay : public BnDisplay {
 public:
  ScopedAStatus setLhbmState(bool) override { return ScopedAStatus(); }
};

SpAIBinder Find(const RemoteService& service) {
  return SpAIBinder(AServiceManager_waitForService(service.GetInstance().c_str()));
}

TEST(BinderDeathTest, MisuseAborts) {
  EXPECT_DEATH(LocalDisplay(), "without ever having had a shared reference");
  EXPECT_DEATH(ScopedAStatus().getStatus(), "holds no status");
  DisplayService first, second;
  first.Start();
  EXPECT_DEATH(second.Start(), "Two services are up under the name");
}

TEST(Binder, DeadProxyStaysDead) {
  DisplayService service;
  service.Start();
  const std::shared_ptr<IDisplay> proxy = IDisplay::fromBinder(Find(service));
  EXPECT_TRUE(proxy->setLhbmState(true).isOk());
  service.Restart();
  const ScopedAStatus status = proxy->setLhbmState(true);
  EXPECT_EQ(EX_TRANSACTION_FAILED, status.getExceptionCode());
  EXPECT_EQ(STATUS_DEAD_OBJECT, status.getStatus());
  EXPECT_STREQ("", status.getMessage());
  EXPECT_EQ(STATUS_DEAD_OBJECT, proxy->dump(1, nullptr, 0));
  EXPECT_TRUE(IDisplay::fromBinder(Find(service))->setLhbmState(true).isOk());
}

class DeathRecipientTest : public ::testing::Test {
 protected:
  struct Cookie {
    DeathRecipientTest* test;
    std::string name;
    std::function<void()> on_died = [] {};
  };

  DeathRecipientTest() {
    service_.Start();
    binder_ = Find(service_);
    recipient_ = AIBinder_DeathRecipient_new([](void* pointer) {
      auto* cookie = static_cast<Cookie*>(pointer);
      cookie->test->died_.Add(cookie->name);
      cookie->on_died();
    });
  }
  ~DeathRecipientTest() override { Delete(); }

  binder_status_t Link(Cookie& cookie) {
    return AIBinder_linkToDeath(binder_.get(), recipient_, &cookie);
  }
  void Delete() { AIBinder_DeathRecipient_delete(std::exchange(recipient_, nullptr)); }
  // The names of the cookies whose callback has run.
  Names TakeNotified() {
    EXPECT_TRUE(WaitUntilBinderPoolsIdle());
    return died_.Take(0);
  }

  DisplayService service_;
  SpAIBinder binder_;
  AIBinder_DeathRecipient* recipient_;
  Recorder<std::string> died_;
  Cookie a_{this, "a"};
  Cookie b_{this, "b"};
};

TEST_F(DeathRecipientTest, IsNotifiedInOrderOnAPoolThread) {
  std::thread::id thread;
  a_.on_died = [&thread] { thread = std::this_thread::get_id(); };
  EXPECT_EQ(STATUS_OK, Link(a_));
  EXPECT_EQ(STATUS_OK, Link(b_));
  EXPECT_EQ(STATUS_OK, Link(a_));
  EXPECT_EQ(3u, CountLinesWith(TakeLog(), "A death notification will not arrive"));
  service_.Kill();
  EXPECT_EQ(0u, died_.Count());
  ABinderProcess_startThreadPool();
  EXPECT_EQ((Names{"a", "b", "a"}), TakeNotified());
  EXPECT_NE(std::this_thread::get_id(), thread);
  EXPECT_EQ(STATUS_DEAD_OBJECT, Link(a_)) << "its death was announced";

  service_.Start();
  binder_ = Find(service_);
  Link(a_);
  binder_.set(nullptr);
  service_.Kill();
  EXPECT_EQ(Names{}, TakeNotified()) << "without a reference";

  const SpAIBinder local = SharedRefBase::make<LocalDisplay>()->asBinder();
  EXPECT_EQ(STATUS_INVALID_OPERATION, AIBinder_linkToDeath(local.get(), recipient_, &a_));
}

// This is why a client may not free its cookie right after it has deleted the recipient.
TEST_F(DeathRecipientTest, RunningCallbackOutlivesTheRecipient) {
  ABinderProcess_startThreadPool();
  Gate gate;
  a_.on_died = [&gate] { gate.Pass(); };
  Link(a_);
  Link(b_);
  service_.Kill();
  EXPECT_TRUE(gate.AwaitArrival());
  Delete();
  gate.Open();
  EXPECT_EQ((Names{"a"}), TakeNotified()) << "the call with b had not begun";
}

}  // namespace
