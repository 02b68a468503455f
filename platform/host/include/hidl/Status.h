// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <hidl/HidlSupport.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

// The result of the transport.
class Status final {
 public:
  static Status ok() { return Status(OK); }
  static Status fromStatusT(status_t status) { return Status(status); }

  bool isOk() const { return mError == OK; }
  status_t transactionError() const { return mError; }

 private:
  explicit Status(status_t error) : mError(error) {}

  status_t mError;
};

namespace details {

// Aborts the process if it is a failure and is destroyed unchecked.
class return_status {
 public:
  return_status(const Status& status) : mStatus(status) {}  // NOLINT: implicit
  return_status(return_status&& other) noexcept
      : mStatus(other.mStatus), mCheckedStatus(other.mCheckedStatus) {
    other.mCheckedStatus = true;
  }
  return_status& operator=(return_status&&) = delete;
  ~return_status();

  bool isOk() const {
    mCheckedStatus = true;
    return mStatus.isOk();
  }
  // Counts as a check only if the object is dead.
  bool isDeadObject() const {
    const bool is_dead = mStatus.transactionError() == DEAD_OBJECT;
    mCheckedStatus = mCheckedStatus || is_dead;
    return is_dead;
  }

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
  using return_status::return_status;
};

inline Return<void> Void() { return Status::ok(); }

}  // namespace android::hardware
