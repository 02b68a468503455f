// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/CoolingDevice.h>
#include <aidl/android/hardware/thermal/Temperature.h>
#include <aidl/android/hardware/thermal/TemperatureThreshold.h>
#include <android/hardware/thermal/2.0/types.h>

namespace aidl::android::hardware::thermal {

// Convert AIDL records to HIDL records.
::android::hardware::thermal::V2_0::Temperature ToHidl(const Temperature& temperature);
::android::hardware::thermal::V2_0::TemperatureThreshold ToHidl(
    const TemperatureThreshold& threshold);
::android::hardware::thermal::V2_0::CoolingDevice ToHidl(const CoolingDevice& device);

}  // namespace aidl::android::hardware::thermal
