// SPDX-License-Identifier: Apache-2.0
#include <android/hardware/thermal/1.0/IThermal.h>

namespace android::hardware::thermal::V1_0 {

const char* IThermal::descriptor = "android.hardware.thermal@1.0::IThermal";

}  // namespace android::hardware::thermal::V1_0
