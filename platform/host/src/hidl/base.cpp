// SPDX-License-Identifier: Apache-2.0
#include <android/hidl/base/1.0/IBase.h>

namespace android::hidl::base::V1_0 {

using hardware::hidl_handle;
using hardware::hidl_string;
using hardware::hidl_vec;

const char* IBase::descriptor = "android.hidl.base@1.0::IBase";

hardware::Return<void> IBase::debug(const hidl_handle& /*fd*/,
                                    const hidl_vec<hidl_string>& /*options*/) {
  return hardware::Void();
}

}  // namespace android::hidl::base::V1_0
