// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermalChangedCallback.h>

namespace aidl::android::hardware::thermal {

class BpThermalChangedCallback : public ::ndk::BpCInterface<IThermalChangedCallback> {
 public:
  using BpCInterface::BpCInterface;

  ::ndk::ScopedAStatus notifyThrottling(
      const ::aidl::android::hardware::thermal::Temperature& in_temperature) override;
};

}  // namespace aidl::android::hardware::thermal
