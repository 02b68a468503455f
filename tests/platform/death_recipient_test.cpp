// SPDX-License-Identifier: Apache-2.0
//
// The rules of death notifications that the stand-in for the binder NDK keeps.
#include <gtest/gtest.h>

#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <aidl/com/norvan/hardware/kestra/display/BnDisplay.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "control/display_service.h"
#include "support/log_recorder.h"

namespace {

using aidl::com::norvan::hardware::kestra::display::BnDisplay;
using fp_host::DisplayService;
using fp_host::WaitForPools;
using ndk::ScopedAIBinder_DeathRecipient;
using ndk::ScopedAStatus;
using ndk::SpAIBinder;
using Events = std::vector<std::string>;

class LocalDisplay : public BnDisplay {
 public:
  ScopedAStatus setLhbmState(bool) override { return ScopedAStatus::ok(); }
};

// What a client links with: it writes down what it hears.
class Cookie {
 public:
  explicit Cookie(std::string name) : name_(std::move(name)) {}

  void Died() {
    Write("died");
    heard_on_ = std::this_thread::get_id();
    if (on_died_ != nullptr) {
      on_died_();
    }
  }
  void Unlinked() { Write("unlinked"); }

  void OnDied(std::function<void()> action) { on_died_ = std::move(action); }
  std::thread::id GetThread() const { return heard_on_; }

  static Events Take() {
    const std::lock_guard lock(mutex);
    return std::exchange(events, {});
  }

 private:
  void Write(const char* event) {
    const std::lock_guard lock(mutex);
    events.push_back(name_ + " " + event);
  }

  static std::mutex mutex;
  static Events events;
  const std::string name_;
  std::function<void()> on_died_;
  std::thread::id heard_on_;
};
std::mutex Cookie::mutex;
Events Cookie::events;

ScopedAIBinder_DeathRecipient NewRecipient() {
  AIBinder_DeathRecipient* recipient =
      AIBinder_DeathRecipient_new([](void* cookie) { static_cast<Cookie*>(cookie)->Died(); });
  AIBinder_DeathRecipient_setOnUnlinked(
      recipient, [](void* cookie) { static_cast<Cookie*>(cookie)->Unlinked(); });
  return ScopedAIBinder_DeathRecipient(recipient);
}

class DeathRecipientTest : public ::testing::Test {
 protected:
  DeathRecipientTest() {
    ABinderProcess_startThreadPool();
    service_.Start();
    binder_ = Find();
  }

  SpAIBinder Find() const {
    return SpAIBinder(AServiceManager_checkService(service_.GetInstance().c_str()));
  }
  binder_status_t Link(Cookie& cookie) {
    return AIBinder_linkToDeath(binder_.get(), recipient_.get(), &cookie);
  }
  binder_status_t Unlink(Cookie& cookie) {
    return AIBinder_unlinkToDeath(binder_.get(), recipient_.get(), &cookie);
  }
  void Kill() {
    service_.Kill();
    ASSERT_TRUE(WaitForPools());
  }

  DisplayService service_;
  SpAIBinder binder_;
  ScopedAIBinder_DeathRecipient recipient_ = NewRecipient();
  Cookie a_{"a"};
  Cookie b_{"b"};
};

TEST_F(DeathRecipientTest, IsToldOncePerLinkOnAThreadOfThePool) {
  EXPECT_EQ(STATUS_OK, Link(a_));
  EXPECT_EQ(STATUS_OK, Link(a_));
  EXPECT_EQ(STATUS_OK, Link(b_));
  EXPECT_EQ(STATUS_OK, Unlink(a_)) << "one at a time";
  EXPECT_EQ((Events{"a unlinked"}), Cookie::Take());
  Kill();
  EXPECT_EQ((Events{"a died", "a unlinked", "b died", "b unlinked"}), Cookie::Take());
  EXPECT_NE(std::this_thread::get_id(), a_.GetThread());
  EXPECT_FALSE(AIBinder_isAlive(binder_.get()));
  EXPECT_EQ(STATUS_NAME_NOT_FOUND, Unlink(a_)) << "a delivered link is gone";
  recipient_.set(nullptr);
  EXPECT_EQ(Events{}, Cookie::Take());
}

TEST_F(DeathRecipientTest, UnlinkedRunsForFailedLinksButNotForMissingArguments) {
  EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_linkToDeath(nullptr, recipient_.get(), &a_));
  EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_linkToDeath(binder_.get(), nullptr, &a_));
  EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_unlinkToDeath(nullptr, recipient_.get(), &a_));
  EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_unlinkToDeath(binder_.get(), nullptr, &a_));
  EXPECT_EQ(nullptr, AIBinder_DeathRecipient_new(nullptr));
  AIBinder_DeathRecipient_setOnUnlinked(nullptr, nullptr);
  AIBinder_DeathRecipient_delete(nullptr);
  EXPECT_EQ(STATUS_NAME_NOT_FOUND, Unlink(a_)) << "never linked";
  EXPECT_EQ(Events{}, Cookie::Take());

  const SpAIBinder local = ndk::SharedRefBase::make<LocalDisplay>()->asBinder();
  EXPECT_EQ(STATUS_INVALID_OPERATION, AIBinder_linkToDeath(local.get(), recipient_.get(), &a_));
  EXPECT_EQ((Events{"a unlinked"}), Cookie::Take()) << "before the call returned";

  Link(b_);
  Kill();
  Cookie::Take();
  EXPECT_EQ(STATUS_DEAD_OBJECT, Link(a_)) << "its death was announced";
  EXPECT_EQ((Events{"a unlinked"}), Cookie::Take());
}

TEST_F(DeathRecipientTest, LateLinkToADeathThatNobodyHeardOfIsStillTold) {
  service_.Kill();
  EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_ping(binder_.get()));
  EXPECT_EQ(STATUS_OK, Link(a_));
  ASSERT_TRUE(WaitForPools());
  EXPECT_EQ((Events{"a died", "a unlinked"}), Cookie::Take());
}

TEST_F(DeathRecipientTest, DeletingTheRecipientDropsItsLinks) {
  Link(a_);
  Link(b_);
  recipient_.set(nullptr);
  EXPECT_EQ((Events{"a unlinked", "b unlinked"}), Cookie::Take());
  Kill();
  EXPECT_EQ(Events{}, Cookie::Take());
}

TEST_F(DeathRecipientTest, EachLinkKeepsTheUnlinkedFunctionItWasMadeWith) {
  Link(a_);
  AIBinder_DeathRecipient_setOnUnlinked(recipient_.get(), nullptr);
  Link(b_);
  Kill();
  EXPECT_EQ((Events{"a died", "a unlinked", "b died"}), Cookie::Take());
}

TEST_F(DeathRecipientTest, LastReferenceTakesTheNotificationWithIt) {
  Link(a_);
  binder_.set(nullptr);
  Kill();
  EXPECT_EQ(Events{}, Cookie::Take());
  recipient_.set(nullptr);
  EXPECT_EQ((Events{"a unlinked"}), Cookie::Take());
}

// The reason why a cookie may be freed in onUnlinked only.
TEST_F(DeathRecipientTest, NotificationUnderWayOutlivesTheRecipient) {
  std::promise<void> arrived;
  std::promise<void> go_on;
  a_.OnDied([&] {
    arrived.set_value();
    go_on.get_future().wait_for(std::chrono::seconds(10));
  });
  Link(a_);
  Link(b_);
  service_.Kill();
  ASSERT_EQ(std::future_status::ready, arrived.get_future().wait_for(std::chrono::seconds(10)));
  recipient_.set(nullptr);
  EXPECT_EQ((Events{"a died", "b unlinked"}), Cookie::Take()) << "b was not yet under way";
  go_on.set_value();
  ASSERT_TRUE(WaitForPools());
  EXPECT_EQ((Events{"a unlinked"}), Cookie::Take());
}

TEST_F(DeathRecipientTest, RecipientMayUnlinkAndDeleteItselfWhenTold) {
  binder_status_t unlinked = STATUS_OK;
  a_.OnDied([&] { unlinked = Unlink(a_); });
  Link(a_);
  Kill();
  EXPECT_EQ(STATUS_DEAD_OBJECT, unlinked) << "taken out, and there is nothing left to hear";
  EXPECT_EQ((Events{"a died", "a unlinked"}), Cookie::Take());

  service_.Start();
  binder_ = Find();
  a_.OnDied([&] { recipient_.set(nullptr); });
  Link(a_);
  Kill();
  EXPECT_EQ((Events{"a died", "a unlinked"}), Cookie::Take());
}

TEST(DeathRecipientWithoutPool, NothingIsDeliveredUntilThreadsStart) {
  DisplayService service;
  service.Start();
  const SpAIBinder binder(AServiceManager_checkService(service.GetInstance().c_str()));
  const ScopedAIBinder_DeathRecipient recipient = NewRecipient();
  Cookie a("a");
  EXPECT_FALSE(ABinderProcess_isThreadPoolStarted());
  EXPECT_EQ(STATUS_OK,
            AIBinder_linkToDeath(binder.get(),
                                 const_cast<AIBinder_DeathRecipient*>(recipient.get()), &a));
  const auto log = fp_test::TakeLog();
  ASSERT_EQ(1u, log.size());
  EXPECT_EQ(ANDROID_LOG_WARN, log[0].priority) << log[0];
  service.Kill();
  EXPECT_EQ(Events{}, Cookie::Take());
  ABinderProcess_startThreadPool();
  ASSERT_TRUE(WaitForPools());
  EXPECT_EQ((Events{"a died", "a unlinked"}), Cookie::Take());
}

}  // namespace
