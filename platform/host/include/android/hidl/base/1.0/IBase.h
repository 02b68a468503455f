// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/RefBase.h>

namespace android::hidl::base::V1_0 {

// The base of all HIDL interfaces.
struct IBase : virtual public ::android::RefBase {
  virtual bool isRemote() const { return false; }

  virtual ::android::hardware::Return<void> debug(
      const ::android::hardware::hidl_handle& /*fd*/,
      const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& /*options*/) {
    return ::android::hardware::Void();
  }

  // Not part of the platform: the object itself, or the one that this is a proxy of.
  virtual const IBase* getSimulatedObject() const { return this; }
};

}  // namespace android::hidl::base::V1_0
