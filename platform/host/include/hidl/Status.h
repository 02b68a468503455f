// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include <hidl/HidlSupport.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

// The result of the transport.
class Status final {
 public:
  static Status ok();
  static Status fromStatusT(status_t status);

  Status() = default;

  bool isOk() const { return mError == OK; }
  status_t transactionError() const { return mError; }
  std::string description() const;

 private:
  explicit Status(status_t error) : mError(error) {}

  status_t mError = OK;
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

 private:
  Status mStatus;
  mutable bool mCheckedStatus = false;
};

}  // namespace details

// What a call across processes returns. Values come back through callbacks.
template <typename T>
class Return;

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
