// SPDX-License-Identifier: Apache-2.0
#include <android/hardware/thermal/1.0/IThermal.h>

namespace android::hardware::thermal::V1_0 {

const char* IThermal::descriptor = "android.hardware.thermal@1.0::IThermal";

Return<void> IThermal::interfaceChain(interfaceChain_cb _hidl_cb) {
  _hidl_cb({descriptor, IBase::descriptor});
  return Void();
}

Return<void> IThermal::interfaceDescriptor(interfaceDescriptor_cb _hidl_cb) {
  _hidl_cb(descriptor);
  return Void();
}

}  // namespace android::hardware::thermal::V1_0
