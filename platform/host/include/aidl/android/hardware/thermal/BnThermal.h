// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermal.h>

namespace aidl::android::hardware::thermal {

class BnThermal : public ::ndk::BnCInterface<IThermal> {};

}  // namespace aidl::android::hardware::thermal
