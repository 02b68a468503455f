// SPDX-License-Identifier: Apache-2.0
//
// The rules of references, identity and services that the stand-in for the binder NDK keeps.
#include <memory>
#include <thread>

#include <aidl/com/norvan/hardware/kestra/display/BnDisplay.h>
#include <aidl/com/norvan/hardware/kestra/display/BpDisplay.h>
#include <android/binder_manager.h>

#include "control/display_service.h"
#include "support/device_test.h"

namespace {

using aidl::com::norvan::hardware::kestra::display::BnDisplay;
using aidl::com::norvan::hardware::kestra::display::BpDisplay;
using aidl::com::norvan::hardware::kestra::display::IDisplay;
using fp_host::DisplayService;
using ndk::ScopedAStatus;
using ndk::SharedRefBase;
using ndk::SpAIBinder;

class LocalDisplay : public BnDisplay {
 public:
  explicit LocalDisplay(bool* destroyed = nullptr) : destroyed_(destroyed) {}
  ~LocalDisplay() override {
    if (destroyed_ != nullptr) {
      *destroyed_ = true;
    }
  }
  ScopedAStatus setLhbmState(bool) override { return ScopedAStatus(); }
  binder_status_t dump(int fd, const char** args, uint32_t count) override {
    for (uint32_t i = 0; i < count; ++i) {
      dprintf(fd, "%s.", args[i]);
    }
    return STATUS_BAD_VALUE;
  }

 private:
  bool* const destroyed_;
};

SpAIBinder Find(const fp_host::RemoteService& service) {
  return SpAIBinder(AServiceManager_checkService(service.GetInstance().c_str()));
}

int CountRefs(const SpAIBinder& binder) { return AIBinder_debugGetRefCount(binder.get()); }

// Only make() knows how to give an object the knowledge of its own references.
template <typename T>
concept CanNew = requires {
  new T;
};
template <typename T>
concept CanMakeShared = requires {
  std::make_shared<T>();
};
template <typename T>
concept CanMakeUnique = requires {
  std::make_unique<T>();
};
static_assert(!CanNew<LocalDisplay> && CanNew<std::string>);
static_assert(!CanMakeShared<LocalDisplay> && CanMakeShared<std::string>);
static_assert(!CanMakeUnique<LocalDisplay> && CanMakeUnique<std::string>);

TEST(BinderDeathTest, ObjectThatNobodyEverSharedAborts) {
  EXPECT_DEATH(LocalDisplay(), "without ever having had a shared reference");
}

TEST(Binder, NullIsTakenEverywhere) {
  AIBinder_incStrong(nullptr);
  EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_ping(nullptr));
  EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_dump(nullptr, 1, nullptr, 0));
  EXPECT_FALSE(AIBinder_isRemote(nullptr));
  EXPECT_FALSE(AIBinder_isAlive(nullptr));
  EXPECT_FALSE(AIBinder_associateClass(nullptr, nullptr));
  EXPECT_EQ(-1, AIBinder_debugGetRefCount(nullptr));
  EXPECT_EQ(nullptr, AIBinder_Weak_new(nullptr));
  EXPECT_EQ(nullptr, AIBinder_Weak_promote(nullptr));
  AIBinder_Weak_delete(nullptr);
  EXPECT_EQ(nullptr, IDisplay::fromBinder(nullptr));
  EXPECT_EQ(nullptr, AServiceManager_checkService(nullptr));
  EXPECT_EQ(nullptr, AServiceManager_waitForService(nullptr));
  EXPECT_FALSE(AServiceManager_isDeclared(nullptr));
  EXPECT_LOG();
  AIBinder_decStrong(nullptr);
  EXPECT_EQ(1u, fp_test::TakeLog().size()) << "an error, but no crash";
}

TEST(Binder, SmartPointerTakesOverReferences) {
  const auto display = SharedRefBase::make<LocalDisplay>();
  SpAIBinder binder = display->asBinder();
  EXPECT_EQ(1, CountRefs(binder));
  {
    const SpAIBinder copy = binder;
    EXPECT_EQ(2, CountRefs(binder));
    EXPECT_TRUE(copy == binder && copy == binder.get() && !(copy < binder) && copy <= binder);
    EXPECT_TRUE(SpAIBinder(nullptr) < binder && copy != nullptr);
  }
  AIBinder_incStrong(binder.get());
  SpAIBinder other(binder.get());
  EXPECT_EQ(2, CountRefs(binder));
  other.set(nullptr);
  EXPECT_EQ(1, CountRefs(binder));
  const SpAIBinder& self = binder;
  binder = self;
  EXPECT_EQ(1, CountRefs(binder));
}

TEST(Binder, LocalBinderKeepsItsImplementationAliveAndNotTheOtherWayRound) {
  bool destroyed = false;
  auto display = SharedRefBase::make<LocalDisplay>(&destroyed);
  SpAIBinder binder = display->asBinder();
  EXPECT_EQ(binder, display->asBinder()) << "one binder while it is held";
  EXPECT_EQ(display, IDisplay::fromBinder(binder)) << "the object itself";
  EXPECT_FALSE(display->isRemote());
  EXPECT_FALSE(AIBinder_isRemote(binder.get()));
  EXPECT_TRUE(AIBinder_isAlive(binder.get()));
  EXPECT_EQ(STATUS_OK, AIBinder_ping(binder.get()));

  AIBinder_Weak* weak = AIBinder_Weak_new(binder.get());
  display = nullptr;
  EXPECT_FALSE(destroyed);
  binder.set(AIBinder_Weak_promote(weak));
  ASSERT_NE(nullptr, binder.get());
  display = std::static_pointer_cast<LocalDisplay>(IDisplay::fromBinder(binder));
  binder.set(nullptr);
  EXPECT_EQ(nullptr, AIBinder_Weak_promote(weak));
  AIBinder_Weak_delete(weak);
  EXPECT_FALSE(destroyed);
  EXPECT_NE(nullptr, display->asBinder().get()) << "a new one";
  display = nullptr;
  EXPECT_TRUE(destroyed);
}

TEST(Binder, ServiceManagerKeepsReferencesOfItsOwn) {
  bool destroyed = false;
  AIBinder* known = nullptr;
  {
    const auto display = SharedRefBase::make<LocalDisplay>(&destroyed);
    const SpAIBinder binder = display->asBinder();
    known = binder.get();
    EXPECT_EQ(EX_ILLEGAL_ARGUMENT, AServiceManager_addService(nullptr, "a/b"));
    EXPECT_EQ(EX_ILLEGAL_ARGUMENT, AServiceManager_addService(known, nullptr));
    EXPECT_EQ(EX_NONE, AServiceManager_addService(known, "a/b"));
  }
  EXPECT_FALSE(destroyed);
  EXPECT_FALSE(AServiceManager_isDeclared("a/b")) << "up, and not in the manifest";
  const SpAIBinder found(AServiceManager_waitForService("a/b"));
  EXPECT_EQ(known, found.get());
  EXPECT_EQ(2, CountRefs(found)) << "the service manager's and this";
  EXPECT_EQ(nullptr, AServiceManager_checkService("a/c"));

  const auto later = SharedRefBase::make<LocalDisplay>();
  EXPECT_EQ(EX_NONE, AServiceManager_addService(later->asBinder().get(), "a/b"));
  EXPECT_EQ(1, CountRefs(found));
}

TEST(Binder, WaitingEndsWhenTheServiceComesOrTheServiceManagerFails) {
  DisplayService service;
  const char* instance = service.GetInstance().c_str();
  EXPECT_STREQ("com.norvan.hardware.kestra.display.IDisplay/default", instance);
  service.Declare();
  EXPECT_TRUE(AServiceManager_isDeclared(instance));
  EXPECT_EQ(nullptr, AServiceManager_checkService(instance)) << "declared is not up";
  SpAIBinder found;
  std::thread waiting([&] { found.set(AServiceManager_waitForService(instance)); });
  EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
  service.Start();
  waiting.join();
  EXPECT_TRUE(AIBinder_isRemote(found.get()));

  service.Kill();
  EXPECT_EQ(nullptr, AServiceManager_checkService(instance));
  waiting = std::thread([&] { found.set(AServiceManager_waitForService(instance)); });
  EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
  fp_host::SetServiceManagerFailing(true);
  waiting.join();
  EXPECT_EQ(nullptr, found.get());
  EXPECT_FALSE(AServiceManager_isDeclared(instance));
  fp_host::SetServiceManagerFailing(false);
  service.Undeclare();
  EXPECT_FALSE(AServiceManager_isDeclared(instance));
}

TEST(Binder, OnePointerPerRemoteObjectAndOneProxyPerConversion) {
  DisplayService service;
  service.Start();
  const SpAIBinder first = Find(service);
  EXPECT_EQ(first, Find(service));
  const std::shared_ptr<IDisplay> proxy = IDisplay::fromBinder(first);
  EXPECT_NE(proxy, IDisplay::fromBinder(first));
  EXPECT_TRUE(proxy->isRemote());
  EXPECT_EQ(first, proxy->asBinder());
  EXPECT_TRUE(proxy->setLhbmState(true).isOk());
  EXPECT_TRUE(service.IsLhbmOn());

  service.Kill();
  service.Start();
  EXPECT_NE(first, Find(service)) << "another object";
  EXPECT_FALSE(service.IsLhbmOn()) << "in its initial state";
}

TEST(Binder, DeadProxyStaysDead) {
  DisplayService service;
  service.Start();
  const SpAIBinder binder = Find(service);
  const std::shared_ptr<IDisplay> proxy = IDisplay::fromBinder(binder);
  service.Kill();
  service.Start();
  EXPECT_TRUE(AIBinder_isAlive(binder.get())) << "nobody has told, nobody has asked";
  const ScopedAStatus status = proxy->setLhbmState(true);
  EXPECT_EQ(EX_TRANSACTION_FAILED, status.getExceptionCode());
  EXPECT_EQ(STATUS_DEAD_OBJECT, status.getStatus());
  EXPECT_STREQ("", status.getMessage());
  EXPECT_FALSE(AIBinder_isAlive(binder.get()));
  EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_ping(binder.get()));
  EXPECT_EQ(STATUS_DEAD_OBJECT, proxy->dump(1, nullptr, 0));
  EXPECT_EQ(0, service.CountCalls());
  EXPECT_TRUE(IDisplay::fromBinder(Find(service))->setLhbmState(true).isOk());
}

TEST(Binder, ConversionNeedsALiveObjectOfTheInterface) {
  DisplayService service;
  service.StartImpostor();
  EXPECT_EQ(nullptr, IDisplay::fromBinder(Find(service)));
  service.Kill();
  service.Start();
  const SpAIBinder binder = Find(service);
  service.Kill();
  EXPECT_EQ(nullptr, IDisplay::fromBinder(binder)) << "died before it could say what it is";
}

TEST(Binder, DumpReachesTheImplementation) {
  const auto local = SharedRefBase::make<LocalDisplay>();
  EXPECT_EQ("a.b.", fp_test::DumpText([&](int fd) {
              const char* args[] = {"a", "b"};
              EXPECT_EQ(STATUS_BAD_VALUE, AIBinder_dump(local->asBinder().get(), fd, args, 2));
            }));
  DisplayService service;
  service.Start();
  EXPECT_EQ(STATUS_OK, AIBinder_dump(Find(service).get(), 1, nullptr, 0)) << "nothing to say";
  EXPECT_EQ(1, service.CountCalls());
}

}  // namespace
