// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermalChangedCallback.h>

namespace aidl::android::hardware::thermal {

class BnThermalChangedCallback : public ::ndk::BnCInterface<IThermalChangedCallback> {};

}  // namespace aidl::android::hardware::thermal
