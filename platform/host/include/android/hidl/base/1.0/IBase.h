// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>

#include <android/hidl/base/1.0/types.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <utils/RefBase.h>

namespace android::hidl::base::V1_0 {

// What every HIDL interface can do. An implementation overrides debug() at most.
struct IBase : virtual public ::android::RefBase {
  static const char* descriptor;

  virtual bool isRemote() const { return false; }

  using interfaceChain_cb = std::function<void(
      const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& descriptors)>;
  // The descriptors of the interface and its ancestors, its own first.
  virtual ::android::hardware::Return<void> interfaceChain(interfaceChain_cb _hidl_cb);

  virtual ::android::hardware::Return<void> debug(
      const ::android::hardware::hidl_handle& fd,
      const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options);

  using interfaceDescriptor_cb =
      std::function<void(const ::android::hardware::hidl_string& descriptor)>;
  virtual ::android::hardware::Return<void> interfaceDescriptor(interfaceDescriptor_cb _hidl_cb);

  virtual ::android::hardware::Return<void> setHALInstrumentation();

  // On a local object both only say whether there is a recipient: it will not hear of anything.
  virtual ::android::hardware::Return<bool> linkToDeath(
      const ::android::sp<::android::hardware::hidl_death_recipient>& recipient, uint64_t cookie);
  virtual ::android::hardware::Return<void> ping();

  using getDebugInfo_cb = std::function<void(const ::android::hidl::base::V1_0::DebugInfo& info)>;
  virtual ::android::hardware::Return<void> getDebugInfo(getDebugInfo_cb _hidl_cb);

  virtual ::android::hardware::Return<void> notifySyspropsChanged();

  virtual ::android::hardware::Return<bool> unlinkToDeath(
      const ::android::sp<::android::hardware::hidl_death_recipient>& recipient);
};

}  // namespace android::hidl::base::V1_0
