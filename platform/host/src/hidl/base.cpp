// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <android/hidl/base/1.0/IBase.h>

namespace android::hidl::base::V1_0 {

using hardware::hidl_handle;
using hardware::hidl_string;
using hardware::hidl_vec;
using hardware::Return;
using hardware::Void;

const char* IBase::descriptor = "android.hidl.base@1.0::IBase";

Return<void> IBase::interfaceChain(interfaceChain_cb _hidl_cb) {
  _hidl_cb({descriptor});
  return Void();
}

Return<void> IBase::debug(const hidl_handle& /*fd*/, const hidl_vec<hidl_string>& /*options*/) {
  return Void();
}

Return<void> IBase::interfaceDescriptor(interfaceDescriptor_cb _hidl_cb) {
  _hidl_cb(descriptor);
  return Void();
}

Return<void> IBase::setHALInstrumentation() { return Void(); }

Return<bool> IBase::linkToDeath(const sp<hardware::hidl_death_recipient>& recipient,
                                uint64_t /*cookie*/) {
  return recipient != nullptr;
}

Return<void> IBase::ping() { return Void(); }

Return<void> IBase::getDebugInfo(getDebugInfo_cb _hidl_cb) {
  // Addresses are for privileged callers.
  _hidl_cb({.pid = getpid(), .ptr = 0, .arch = DebugInfo::Architecture::IS_64BIT});
  return Void();
}

Return<void> IBase::notifySyspropsChanged() { return Void(); }

Return<bool> IBase::unlinkToDeath(const sp<hardware::hidl_death_recipient>& recipient) {
  return recipient != nullptr;
}

}  // namespace android::hidl::base::V1_0
