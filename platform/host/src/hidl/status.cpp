// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>

#include <android/log.h>
#include <hidl/Status.h>

namespace android::hardware {

Status Status::ok() { return {}; }

Status Status::fromStatusT(status_t status) { return Status(status); }

std::string Status::description() const {
  return isOk() ? "No error" : "Status(" + std::to_string(mError) + ")";
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

}  // namespace details
}  // namespace android::hardware
