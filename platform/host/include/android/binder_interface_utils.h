// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>

namespace ndk {

// An object that owns the knowledge of the shared pointers to it, so that one can be had from the
// object. Made by make() alone.
class SharedRefBase {
 public:
  SharedRefBase() = default;
  SharedRefBase(const SharedRefBase&) = delete;
  SharedRefBase& operator=(const SharedRefBase&) = delete;
  virtual ~SharedRefBase() {
    if (!mReferenced) {
      // It lives on a stack or in a pointer of another kind, and would be destroyed twice.
      fputs("SharedRefBase: destroyed without ever having had a shared reference\n", stderr);
      abort();
    }
  }

  std::shared_ptr<SharedRefBase> ref() {
    std::shared_ptr<SharedRefBase> self;
    std::call_once(mFirstRef, [&] {
      mReferenced = true;
      self.reset(this);
      mSelf = self;
    });
    return self != nullptr ? self : mSelf.lock();
  }
  template <typename CHILD>
  std::shared_ptr<CHILD> ref() {
    return std::static_pointer_cast<CHILD>(ref());
  }

  template <class T, class... Args>
  static std::shared_ptr<T> make(Args&&... args) {
    return (new T(std::forward<Args>(args)...))->template ref<T>();
  }

  static void operator delete(void* p) { ::operator delete(p); }

 private:
  static void* operator new(size_t size) { return ::operator new(size); }

  std::once_flag mFirstRef;
  std::weak_ptr<SharedRefBase> mSelf;
  bool mReferenced = false;
};

}  // namespace ndk

namespace std {

// An object that make_shared or make_unique had made would not know its own references.
template <typename T, typename... Args>
requires std::is_base_of_v<::ndk::SharedRefBase, T> shared_ptr<T> make_shared(Args&&... args)
= delete;
template <typename T, typename... Args>
requires std::is_base_of_v<::ndk::SharedRefBase, T> unique_ptr<T> make_unique(Args&&... args)
= delete;

}  // namespace std

namespace ndk {

// What every interface is.
class ICInterface : public SharedRefBase {
 public:
  virtual SpAIBinder asBinder() = 0;
  virtual bool isRemote() = 0;
  virtual inline binder_status_t dump(int /*fd*/, const char** /*args*/, uint32_t /*numArgs*/) {
    return STATUS_OK;
  }

  // The implementation behind a local binder; null for a remote one.
  static inline std::shared_ptr<ICInterface> asInterface(AIBinder* binder);

  static inline AIBinder_Class* defineClass(const char* interfaceDescriptor,
                                            AIBinder_Class_onTransact onTransact);

 private:
  // The user data of a local binder: it keeps its implementation alive.
  struct Implementation {
    std::shared_ptr<ICInterface> interface;
  };
};

std::shared_ptr<ICInterface> ICInterface::asInterface(AIBinder* binder) {
  auto* implementation = static_cast<Implementation*>(AIBinder_getUserData(binder));
  return implementation == nullptr ? nullptr : implementation->interface;
}

AIBinder_Class* ICInterface::defineClass(const char* interfaceDescriptor,
                                         AIBinder_Class_onTransact onTransact) {
  AIBinder_Class* clazz = AIBinder_Class_define(
      interfaceDescriptor,
      [](void* args) -> void* {
        return new Implementation{static_cast<ICInterface*>(args)->ref<ICInterface>()};
      },
      [](void* userData) { delete static_cast<Implementation*>(userData); }, onTransact);
  if (clazz != nullptr) {
    AIBinder_Class_setOnDump(
        clazz, [](AIBinder* binder, int fd, const char** args, uint32_t numArgs) {
          const std::shared_ptr<ICInterface> interface = asInterface(binder);
          return interface == nullptr ? STATUS_OK : interface->dump(fd, args, numArgs);
        });
  }
  return clazz;
}

// An implementation. Its binder is made when it is first asked for and stays the same while anyone
// holds it.
template <typename INTERFACE>
class BnCInterface : public INTERFACE {
 public:
  SpAIBinder asBinder() override final {
    const std::lock_guard<std::mutex> lock(mMutex);
    SpAIBinder binder;
    if (mWeakBinder.get() != nullptr) {
      binder.set(AIBinder_Weak_promote(mWeakBinder.get()));
    }
    if (binder.get() == nullptr) {
      binder = createBinder();
      mWeakBinder.set(AIBinder_Weak_new(binder.get()));
    }
    return binder;
  }

  bool isRemote() override final { return false; }

  static std::string makeServiceName(std::string_view instance) {
    return INTERFACE::descriptor + ("/" + std::string(instance));
  }

 protected:
  virtual SpAIBinder createBinder() = 0;

 private:
  std::mutex mMutex;
  ScopedAIBinder_Weak mWeakBinder;
};

// A proxy.
template <typename INTERFACE>
class BpCInterface : public INTERFACE {
 public:
  explicit BpCInterface(const SpAIBinder& binder) : mBinder(binder) {}

  SpAIBinder asBinder() override final { return mBinder; }
  bool isRemote() override final { return AIBinder_isRemote(mBinder.get()); }
  binder_status_t dump(int fd, const char** args, uint32_t numArgs) override {
    return AIBinder_dump(mBinder.get(), fd, args, numArgs);
  }

 private:
  SpAIBinder mBinder;
};

}  // namespace ndk
