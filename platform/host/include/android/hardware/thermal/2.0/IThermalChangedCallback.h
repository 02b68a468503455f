// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <android/hardware/thermal/2.0/types.h>
#include <android/hidl/base/1.0/IBase.h>
#include <hidl/Status.h>

namespace android::hardware::thermal::V2_0 {

struct IThermalChangedCallback : public ::android::hidl::base::V1_0::IBase {
  // One-way: the caller does not wait.
  virtual ::android::hardware::Return<void> notifyThrottling(
      const ::android::hardware::thermal::V2_0::Temperature& temperature) = 0;
};

}  // namespace android::hardware::thermal::V2_0
