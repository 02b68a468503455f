// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>

#include <android/log.h>
#include <hidl/Status.h>

namespace android::hardware {

Status Status::ok() { return {}; }

Status Status::fromExceptionCode(int32_t exception_code) { return {exception_code, OK, ""}; }

Status Status::fromExceptionCode(int32_t exception_code, const char* message) {
  return {exception_code, OK, message};
}

Status Status::fromStatusT(status_t status) {
  return {status == OK ? EX_NONE : EX_TRANSACTION_FAILED, status, ""};
}

std::string Status::description() const {
  if (isOk()) {
    return "No error";
  }
  const std::string error =
      mException == EX_TRANSACTION_FAILED ? " (" + std::to_string(mError) + ")" : "";
  return "Status(" + std::to_string(mException) + ")" + error + ": '" + mMessage + "'";
}

namespace details {

return_status& return_status::operator=(return_status&& other) noexcept {
  if (this != &other) {
    mStatus = std::move(other.mStatus);
    mCheckedStatus = other.mCheckedStatus;
    other.mStatus = Status::ok();
  }
  return *this;
}

return_status::~return_status() {
  if (!mCheckedStatus && !mStatus.isOk()) {
    __android_log_print(ANDROID_LOG_FATAL, "HidlStatus",
                        "Failed HIDL return status not checked. %s", description().c_str());
    abort();
  }
}

void return_status::assertOk() const {
  if (!isOk()) {
    __android_log_print(ANDROID_LOG_FATAL, "HidlStatus",
                        "Attempted to retrieve value from failed "
                        "HIDL call: %s",
                        description().c_str());
    abort();
  }
}

}  // namespace details
}  // namespace android::hardware
