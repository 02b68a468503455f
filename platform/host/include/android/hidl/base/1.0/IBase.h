// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/RefBase.h>

namespace android::hidl::base::V1_0 {
struct IBase;
}  // namespace android::hidl::base::V1_0

namespace android::hardware {
bool interfacesEqual(const sp<hidl::base::V1_0::IBase>& left,
                     const sp<hidl::base::V1_0::IBase>& right);
}  // namespace android::hardware

namespace android::hidl::base::V1_0 {

// What every HIDL interface can do. An implementation overrides debug() at most.
struct IBase : virtual public ::android::RefBase {
  static const char* descriptor;

  virtual bool isRemote() const { return false; }

  virtual ::android::hardware::Return<void> debug(
      const ::android::hardware::hidl_handle& fd,
      const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options);

 private:
  // Of the stand-in alone: the object in another process that a proxy stands for, or null.
  friend bool hardware::interfacesEqual(const sp<IBase>& left, const sp<IBase>& right);
  virtual const IBase* GetRemoteObject() const { return nullptr; }
};

}  // namespace android::hidl::base::V1_0
