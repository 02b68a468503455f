// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <utility>

#include <android/binder_ibinder.h>
#include <android/binder_status.h>

namespace ndk {

// One strong reference. The constructor and set() take over a reference of the caller.
class SpAIBinder {
 public:
  SpAIBinder() = default;
  explicit SpAIBinder(AIBinder* binder) : mBinder(binder) {}
  SpAIBinder(std::nullptr_t) {}  // NOLINT: implicit, as on the platform
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
    AIBinder* old = std::exchange(mBinder, binder);
    if (old != nullptr) {
      AIBinder_decStrong(old);
    }
  }
  AIBinder* get() const { return mBinder; }

  bool operator==(const SpAIBinder& other) const { return mBinder == other.mBinder; }

 private:
  AIBinder* mBinder = nullptr;
};

// The result of a call, owned. A default one holds no status: it is not ok, and its other getters
// abort.
class ScopedAStatus {
 public:
  explicit ScopedAStatus(AStatus* status = nullptr) : mStatus(status) {}
  ScopedAStatus(ScopedAStatus&& other) noexcept : mStatus(std::exchange(other.mStatus, nullptr)) {}
  ScopedAStatus& operator=(ScopedAStatus&& other) noexcept {
    std::swap(mStatus, other.mStatus);
    return *this;
  }
  ~ScopedAStatus() { AStatus_delete(mStatus); }

  AStatus* get() const { return mStatus; }
  bool isOk() const { return mStatus != nullptr && AStatus_isOk(mStatus); }
  binder_exception_t getExceptionCode() const { return AStatus_getExceptionCode(mStatus); }
  binder_status_t getStatus() const { return AStatus_getStatus(mStatus); }
  const char* getMessage() const { return AStatus_getMessage(mStatus); }

  static ScopedAStatus ok() { return ScopedAStatus(AStatus_newOk()); }
  static ScopedAStatus fromExceptionCode(binder_exception_t exception) {
    return fromExceptionCodeWithMessage(exception, "");
  }
  static ScopedAStatus fromExceptionCodeWithMessage(binder_exception_t exception,
                                                    const char* message) {
    return ScopedAStatus(AStatus_fromExceptionCodeWithMessage(exception, message));
  }
  static ScopedAStatus fromStatus(binder_status_t status) {
    return ScopedAStatus(AStatus_fromStatus(status));
  }

 private:
  AStatus* mStatus;
};

}  // namespace ndk
