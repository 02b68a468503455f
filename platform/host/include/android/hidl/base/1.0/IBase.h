// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/RefBase.h>

namespace android::hidl::base::V1_0 {

// What every HIDL interface can do. An implementation overrides debug() at most.
struct IBase : virtual public ::android::RefBase {
  static const char* descriptor;

  virtual bool isRemote() const { return false; }

  virtual ::android::hardware::Return<void> debug(
      const ::android::hardware::hidl_handle& fd,
      const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options);
};

}  // namespace android::hidl::base::V1_0
