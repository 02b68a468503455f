// SPDX-License-Identifier: Apache-2.0
//
// What the stand-in for the binder NDK is strict about: references, dead proxies, notifications of
// death, and the errors of the thermal service.
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <aidl/android/hardware/thermal/BnThermalChangedCallback.h>
#include <aidl/android/hardware/thermal/IThermal.h>
#include <aidl/com/norvan/hardware/kestra/display/BnDisplay.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "control/display_service.h"
#include "control/thermal_service.h"
#include "support/device_test.h"
#include "support/recorder.h"

namespace {

using aidl::android::hardware::thermal::BnThermalChangedCallback;
using aidl::android::hardware::thermal::IThermal;
using aidl::com::norvan::hardware::kestra::display::BnDisplay;
using aidl::com::norvan::hardware::kestra::display::IDisplay;
using fp_host::DisplayService;
using fp_host::WaitForPools;
using ndk::ScopedAStatus;
using ndk::SharedRefBase;
using ndk::SpAIBinder;
using Names = std::vector<std::string>;

class LocalDisplay : public BnDisplay {
 public:
  explicit LocalDisplay(bool* destroyed = nullptr) : destroyed_(destroyed) {}
  ~LocalDisplay() override {
    if (destroyed_ != nullptr) {
      *destroyed_ = true;
    }
  }
  ScopedAStatus setLhbmState(bool) override { return ScopedAStatus(); }

 private:
  bool* const destroyed_;
};

SpAIBinder Find(const fp_host::RemoteService& service) {
  return SpAIBinder(AServiceManager_waitForService(service.GetInstance().c_str()));
}

// Only make() creates an object that can hand out pointers to itself.
template <typename T>
concept CanNew = requires {
  new T;
};
template <typename T>
concept CanMakeShared = requires {
  std::make_shared<T>();
};
static_assert(!CanNew<LocalDisplay> && CanNew<std::string>);
static_assert(!CanMakeShared<LocalDisplay> && CanMakeShared<std::string>);

TEST(BinderDeathTest, ObjectThatNobodyEverSharedAborts) {
  EXPECT_DEATH(LocalDisplay(), "without ever having had a shared reference");
}

TEST(Binder, LocalBinderKeepsItsImplementationAliveAndNotTheOtherWayRound) {
  bool destroyed = false;
  auto display = SharedRefBase::make<LocalDisplay>(&destroyed);
  SpAIBinder binder = display->asBinder();
  EXPECT_EQ(binder, display->asBinder()) << "one binder while it is held";
  EXPECT_EQ(display, IDisplay::fromBinder(binder)) << "the object itself";
  display = nullptr;
  EXPECT_FALSE(destroyed);
  display = std::static_pointer_cast<LocalDisplay>(IDisplay::fromBinder(binder));
  binder.set(nullptr);
  EXPECT_NE(nullptr, display->asBinder().get()) << "a new one";
  EXPECT_FALSE(destroyed);
  display = nullptr;
  EXPECT_TRUE(destroyed);
}

TEST(Binder, WaitingEndsWhenTheServiceComesOrTheServiceManagerFails) {
  DisplayService service;
  service.Declare();
  EXPECT_TRUE(AServiceManager_isDeclared(service.GetInstance().c_str())) << "declared is not up";
  SpAIBinder found;
  std::thread waiting([&] { found = Find(service); });
  EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
  service.Start();
  waiting.join();
  EXPECT_EQ(found, Find(service)) << "one pointer per object";

  service.Kill();
  waiting = std::thread([&] { found = Find(service); });
  EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
  fp_host::SetServiceManagerFailing(true);
  waiting.join();
  EXPECT_EQ(nullptr, found.get());
  EXPECT_FALSE(AServiceManager_isDeclared(service.GetInstance().c_str()));
}

TEST(Binder, DeadProxyStaysDead) {
  DisplayService service;
  service.Start();
  const std::shared_ptr<IDisplay> proxy = IDisplay::fromBinder(Find(service));
  EXPECT_TRUE(proxy->setLhbmState(true).isOk());
  service.Kill();
  service.Start();
  const ScopedAStatus status = proxy->setLhbmState(true);
  EXPECT_EQ(EX_TRANSACTION_FAILED, status.getExceptionCode());
  EXPECT_EQ(STATUS_DEAD_OBJECT, status.getStatus());
  EXPECT_STREQ("", status.getMessage());
  EXPECT_EQ(STATUS_DEAD_OBJECT, proxy->dump(1, nullptr, 0));
  EXPECT_FALSE(service.IsLhbmOn()) << "another object, in its initial state";
  EXPECT_TRUE(IDisplay::fromBinder(Find(service))->setLhbmState(true).isOk());
}

TEST(Binder, ConversionNeedsALiveObjectOfTheInterface) {
  DisplayService service;
  EXPECT_EQ(nullptr, IDisplay::fromBinder(nullptr));
  service.StartImpostor();
  EXPECT_EQ(nullptr, IDisplay::fromBinder(Find(service)));
  service.Kill();
  service.Start();
  const SpAIBinder binder = Find(service);
  service.Kill();
  EXPECT_EQ(nullptr, IDisplay::fromBinder(binder)) << "died before it could say what it is";
}

class DeathRecipientTest : public ::testing::Test {
 protected:
  // What a client links with.
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
  // The names of those that have been told.
  Names TakeTold() {
    EXPECT_TRUE(WaitForPools());
    return died_.Take(0);
  }

  DisplayService service_;
  SpAIBinder binder_;
  AIBinder_DeathRecipient* recipient_;
  fp_test::Recorder<std::string> died_;
  Cookie a_{this, "a"};
  Cookie b_{this, "b"};
};

TEST_F(DeathRecipientTest, IsToldInOrderOnAThreadOfThePoolOnceThereIsOne) {
  std::thread::id thread;
  a_.on_died = [&thread] { thread = std::this_thread::get_id(); };
  EXPECT_EQ(STATUS_OK, Link(a_));
  EXPECT_EQ(STATUS_OK, Link(b_));
  EXPECT_EQ(STATUS_OK, Link(a_));
  service_.Kill();
  EXPECT_EQ(0u, died_.Count());
  ABinderProcess_startThreadPool();
  EXPECT_EQ((Names{"a", "b", "a"}), TakeTold());
  EXPECT_NE(std::this_thread::get_id(), thread);
  EXPECT_EQ(STATUS_DEAD_OBJECT, Link(a_)) << "its death was announced";

  const SpAIBinder local = SharedRefBase::make<LocalDisplay>()->asBinder();
  EXPECT_EQ(STATUS_INVALID_OPERATION, AIBinder_linkToDeath(local.get(), recipient_, &a_));
}

TEST_F(DeathRecipientTest, IsNotToldAfterItOrTheLastReferenceWasDropped) {
  ABinderProcess_startThreadPool();
  Link(a_);
  Delete();
  service_.Kill();
  EXPECT_EQ(Names{}, TakeTold());

  service_.Start();
  binder_ = Find(service_);
  recipient_ = AIBinder_DeathRecipient_new([](void* /*cookie*/) { ADD_FAILURE(); });
  Link(a_);
  binder_.set(nullptr);
  service_.Kill();
  EXPECT_EQ(Names{}, TakeTold());
}

// Why a client may not free its cookie right after it has deleted the recipient.
TEST_F(DeathRecipientTest, NotificationUnderWayOutlivesTheRecipient) {
  ABinderProcess_startThreadPool();
  std::promise<void> arrived, go_on;
  a_.on_died = [&] {
    arrived.set_value();
    go_on.get_future().wait();
  };
  Link(a_);
  Link(b_);
  service_.Kill();
  arrived.get_future().wait();
  Delete();
  go_on.set_value();
  EXPECT_EQ((Names{"a"}), TakeTold()) << "b was not yet under way";
}

class ThermalCallback : public BnThermalChangedCallback {
 public:
  ScopedAStatus notifyThrottling(const fp_host::ThermalService::Temperature&) override {
    ++notified;
    return ScopedAStatus::ok();
  }
  std::atomic<int> notified = 0;
};

TEST(ThermalService, RefusesCallbacksThatItDoesNotExpect) {
  ABinderProcess_startThreadPool();
  fp_host::ThermalService service;
  service.Start();
  const std::shared_ptr<IThermal> thermal = IThermal::fromBinder(Find(service));
  const auto callback = SharedRefBase::make<ThermalCallback>();
  const auto is_refused = [](const ScopedAStatus& status) {
    return status.getExceptionCode() == EX_ILLEGAL_ARGUMENT;
  };
  EXPECT_TRUE(is_refused(thermal->registerThermalChangedCallback(nullptr)));
  EXPECT_TRUE(is_refused(thermal->unregisterThermalChangedCallback(nullptr)));
  EXPECT_TRUE(is_refused(thermal->unregisterThermalChangedCallback(callback)));
  EXPECT_TRUE(thermal->registerThermalChangedCallback(callback).isOk());
  EXPECT_TRUE(is_refused(thermal->registerThermalChangedCallback(callback)));
  service.Notify({});
  EXPECT_TRUE(WaitForPools());
  EXPECT_EQ(1, callback->notified);
  EXPECT_TRUE(thermal->unregisterThermalChangedCallback(callback).isOk());

  std::vector<fp_host::ThermalService::Temperature> temperatures;
  service.SetTemperatures({{}});
  service.Refuse([] { return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_STATE); });
  EXPECT_FALSE(thermal->getTemperatures(&temperatures).isOk());
  EXPECT_TRUE(temperatures.empty()) << "a failure writes no result";
}

}  // namespace
