// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include <android/binder_ibinder.h>
#include <android/binder_status.h>

namespace ndk {

// One strong reference. Taking a pointer takes over the reference that came with it.
class SpAIBinder {
 public:
  SpAIBinder() = default;
  explicit SpAIBinder(AIBinder* binder) : mBinder(binder) {}
  SpAIBinder(std::nullptr_t) {}  // NOLINT: implicit, as null stands for no binder
  SpAIBinder(const SpAIBinder& other) { *this = other; }
  ~SpAIBinder() { set(nullptr); }

  SpAIBinder& operator=(const SpAIBinder& other) {
    if (this != &other) {
      AIBinder_incStrong(other.mBinder);
      set(other.mBinder);
    }
    return *this;
  }

  void set(AIBinder* binder) {
    AIBinder* old = mBinder;
    mBinder = binder;
    if (old != nullptr) {
      AIBinder_decStrong(old);
    }
  }
  AIBinder* get() const { return mBinder; }
  AIBinder** getR() { return &mBinder; }

 private:
  AIBinder* mBinder = nullptr;
};

inline bool operator==(const SpAIBinder& lhs, const SpAIBinder& rhs) {
  return lhs.get() == rhs.get();
}
inline bool operator==(const SpAIBinder& lhs, const AIBinder* rhs) { return lhs.get() == rhs; }
inline bool operator==(const AIBinder* lhs, const SpAIBinder& rhs) { return lhs == rhs.get(); }
inline bool operator!=(const SpAIBinder& lhs, const SpAIBinder& rhs) { return !(lhs == rhs); }
inline bool operator!=(const SpAIBinder& lhs, const AIBinder* rhs) { return !(lhs == rhs); }
inline bool operator!=(const AIBinder* lhs, const SpAIBinder& rhs) { return !(lhs == rhs); }
inline bool operator<(const SpAIBinder& lhs, const SpAIBinder& rhs) {
  return AIBinder_lt(lhs.get(), rhs.get());
}
inline bool operator>(const SpAIBinder& lhs, const SpAIBinder& rhs) { return rhs < lhs; }
inline bool operator<=(const SpAIBinder& lhs, const SpAIBinder& rhs) { return !(rhs < lhs); }
inline bool operator>=(const SpAIBinder& lhs, const SpAIBinder& rhs) { return !(lhs < rhs); }

namespace impl {

// Owns a T that Destroy releases.
template <typename T, void (*Destroy)(T), T DEFAULT>
class ScopedAResource {
 public:
  explicit ScopedAResource(T t = DEFAULT) : mT(t) {}
  ~ScopedAResource() { set(DEFAULT); }
  ScopedAResource(ScopedAResource&& other) noexcept : mT(other.release()) {}
  ScopedAResource& operator=(ScopedAResource&& other) noexcept {
    set(other.release());
    return *this;
  }
  ScopedAResource(const ScopedAResource&) = delete;
  ScopedAResource& operator=(const ScopedAResource&) = delete;

  void set(T t) {
    Destroy(mT);
    mT = t;
  }
  T get() { return mT; }
  const T get() const { return mT; }
  T* getR() { return &mT; }
  [[nodiscard]] T release() {
    T t = mT;
    mT = DEFAULT;
    return t;
  }

 private:
  T mT;
};

}  // namespace impl

// The result of a call. Without a status, as by default, it is not ok and answers nothing else.
class ScopedAStatus : public impl::ScopedAResource<AStatus*, AStatus_delete, nullptr> {
 public:
  explicit ScopedAStatus(AStatus* a = nullptr) : ScopedAResource(a) {}
  ~ScopedAStatus() {}
  ScopedAStatus(ScopedAStatus&&) = default;
  ScopedAStatus& operator=(ScopedAStatus&&) = default;

  bool isOk() const { return get() != nullptr && AStatus_isOk(get()); }
  binder_exception_t getExceptionCode() const { return AStatus_getExceptionCode(get()); }
  int32_t getServiceSpecificError() const { return AStatus_getServiceSpecificError(get()); }
  binder_status_t getStatus() const { return AStatus_getStatus(get()); }
  const char* getMessage() const { return AStatus_getMessage(get()); }
  std::string getDescription() const {
    const char* description = AStatus_getDescription(get());
    std::string text = description;
    AStatus_deleteDescription(description);
    return text;
  }

  static ScopedAStatus ok() { return ScopedAStatus(AStatus_newOk()); }
  static ScopedAStatus fromExceptionCode(binder_exception_t exception) {
    return ScopedAStatus(AStatus_fromExceptionCode(exception));
  }
  static ScopedAStatus fromExceptionCodeWithMessage(binder_exception_t exception,
                                                    const char* message) {
    return ScopedAStatus(AStatus_fromExceptionCodeWithMessage(exception, message));
  }
  static ScopedAStatus fromServiceSpecificError(int32_t serviceSpecific) {
    return ScopedAStatus(AStatus_fromServiceSpecificError(serviceSpecific));
  }
  static ScopedAStatus fromServiceSpecificErrorWithMessage(int32_t serviceSpecific,
                                                           const char* message) {
    return ScopedAStatus(AStatus_fromServiceSpecificErrorWithMessage(serviceSpecific, message));
  }
  static ScopedAStatus fromStatus(binder_status_t status) {
    return ScopedAStatus(AStatus_fromStatus(status));
  }
};

inline std::ostream& operator<<(std::ostream& os, const ScopedAStatus& status) {
  return os << status.getDescription();
}

class ScopedAIBinder_DeathRecipient
    : public impl::ScopedAResource<AIBinder_DeathRecipient*, AIBinder_DeathRecipient_delete,
                                   nullptr> {
 public:
  explicit ScopedAIBinder_DeathRecipient(AIBinder_DeathRecipient* a = nullptr)
      : ScopedAResource(a) {}
  ~ScopedAIBinder_DeathRecipient() {}
  ScopedAIBinder_DeathRecipient(ScopedAIBinder_DeathRecipient&&) = default;
  ScopedAIBinder_DeathRecipient& operator=(ScopedAIBinder_DeathRecipient&&) = default;
};

class ScopedAIBinder_Weak
    : public impl::ScopedAResource<AIBinder_Weak*, AIBinder_Weak_delete, nullptr> {
 public:
  explicit ScopedAIBinder_Weak(AIBinder_Weak* a = nullptr) : ScopedAResource(a) {}
  ~ScopedAIBinder_Weak() {}
  ScopedAIBinder_Weak(ScopedAIBinder_Weak&&) = default;
  ScopedAIBinder_Weak& operator=(ScopedAIBinder_Weak&&) = default;

  SpAIBinder promote() { return SpAIBinder(AIBinder_Weak_promote(get())); }
};

}  // namespace ndk
