// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <hidl/HidlSupport.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

// The result of the transport.
class Status final {
 public:
  enum Exception : int32_t {
    EX_NONE = 0,
    EX_SECURITY = -1,
    EX_BAD_PARCELABLE = -2,
    EX_ILLEGAL_ARGUMENT = -3,
    EX_NULL_POINTER = -4,
    EX_ILLEGAL_STATE = -5,
    EX_NETWORK_MAIN_THREAD = -6,
    EX_UNSUPPORTED_OPERATION = -7,
    EX_TRANSACTION_FAILED = -129,
  };

  static Status ok();
  static Status fromExceptionCode(int32_t exceptionCode);
  static Status fromExceptionCode(int32_t exceptionCode, const char* message);
  static Status fromStatusT(status_t status);

  Status() = default;

  bool isOk() const { return mException == EX_NONE; }
  int32_t exceptionCode() const { return mException; }
  const char* exceptionMessage() const { return mMessage.c_str(); }
  status_t transactionError() const { return mException == EX_TRANSACTION_FAILED ? mError : OK; }
  std::string description() const;

 private:
  Status(int32_t exception, status_t error, std::string message)
      : mException(exception), mError(error), mMessage(std::move(message)) {}

  int32_t mException = EX_NONE;
  status_t mError = OK;
  std::string mMessage;
};

namespace details {

// A failed result that nobody has asked for ends the process when it goes.
class return_status {
 public:
  return_status() = default;
  return_status(const Status& status) : mStatus(status) {}  // NOLINT: implicit
  return_status(const return_status&) = delete;
  return_status& operator=(const return_status&) = delete;
  return_status(return_status&& other) noexcept { *this = std::move(other); }
  return_status& operator=(return_status&& other) noexcept;
  ~return_status();

  bool isOk() const {
    mCheckedStatus = true;
    return mStatus.isOk();
  }
  bool isDeadObject() const {
    mCheckedStatus = true;
    return mStatus.transactionError() == DEAD_OBJECT;
  }
  std::string description() const { return mStatus.description(); }

 protected:
  void assertOk() const;

 private:
  Status mStatus;
  mutable bool mCheckedStatus = false;
};

}  // namespace details

// What a call across processes returns: a value, or the transport's failure.
template <typename T>
class Return : public details::return_status {
 public:
  Return(T value) : mValue(std::move(value)) {}                      // NOLINT: implicit
  Return(const Status& status) : return_status(status), mValue{} {}  // NOLINT: implicit
  Return(Return&&) = default;
  Return& operator=(Return&&) = default;

  operator T() const {  // NOLINT: implicit
    assertOk();
    return mValue;
  }
  T withDefault(T fallback) { return isOk() ? mValue : fallback; }

 private:
  T mValue;
};

template <>
class Return<void> : public details::return_status {
 public:
  Return() = default;
  Return(const Status& status) : return_status(status) {}  // NOLINT: implicit
  Return(Return&&) = default;
  Return& operator=(Return&&) = default;
};

inline Return<void> Void() { return Return<void>(); }

}  // namespace android::hardware
