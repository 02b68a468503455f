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

// An object that can hand out shared pointers to itself. Only make() creates it.
class SharedRefBase {
 public:
  SharedRefBase() = default;
  SharedRefBase(const SharedRefBase&) = delete;
  SharedRefBase& operator=(const SharedRefBase&) = delete;
  virtual ~SharedRefBase() {
    if (!mReferenced) {
      // It was not created by make(), so a pointer from ref() would have destroyed it again.
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

// A pointer from make_shared or make_unique and those from ref() would each destroy the object.
template <typename T, typename... Args>
requires std::is_base_of_v<::ndk::SharedRefBase, T> shared_ptr<T> make_shared(Args&&... args)
= delete;
template <typename T, typename... Args>
requires std::is_base_of_v<::ndk::SharedRefBase, T> unique_ptr<T> make_unique(Args&&... args)
= delete;

}  // namespace std

namespace ndk {

// The base of all interfaces.
class ICInterface : public SharedRefBase {
 public:
  virtual SpAIBinder asBinder() = 0;
  virtual binder_status_t dump(int /*fd*/, const char** /*args*/, uint32_t /*numArgs*/) {
    return STATUS_OK;
  }
};

}  // namespace ndk

namespace fp_host::binder {

// The binder of an implementation: `known` if anyone still holds it, else a new one, which becomes
// the known one. Not part of the platform.
ndk::SpAIBinder LocalBinderOf(ndk::ICInterface& implementation, const char* descriptor,
                              std::weak_ptr<AIBinder>& known);

}  // namespace fp_host::binder

namespace ndk {

// An implementation. Its binder keeps it alive, not the other way round.
template <typename INTERFACE>
class BnCInterface : public INTERFACE {
 public:
  SpAIBinder asBinder() override final {
    const std::lock_guard<std::mutex> lock(mMutex);
    return fp_host::binder::LocalBinderOf(*this, INTERFACE::descriptor, mBinder);
  }

  static std::string makeServiceName(std::string_view instance) {
    return INTERFACE::descriptor + ("/" + std::string(instance));
  }

 private:
  std::mutex mMutex;
  std::weak_ptr<AIBinder> mBinder;
};

// A proxy.
template <typename INTERFACE>
class BpCInterface : public INTERFACE {
 public:
  explicit BpCInterface(const SpAIBinder& binder) : mBinder(binder) {}

  SpAIBinder asBinder() override final { return mBinder; }
  binder_status_t dump(int fd, const char** args, uint32_t numArgs) override {
    return AIBinder_dump(mBinder.get(), fd, args, numArgs);
  }

 private:
  SpAIBinder mBinder;
};

}  // namespace ndk
