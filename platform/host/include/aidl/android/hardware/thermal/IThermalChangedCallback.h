// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <aidl/android/hardware/thermal/Temperature.h>
#include <android/binder_auto_utils.h>
#include <android/binder_interface_utils.h>

namespace aidl::android::hardware::thermal {

class IThermalChangedCallback : public ::ndk::ICInterface {
 public:
  static const char* descriptor;

  static std::shared_ptr<IThermalChangedCallback> fromBinder(const ::ndk::SpAIBinder& binder);

  // One-way: the caller does not wait.
  virtual ::ndk::ScopedAStatus notifyThrottling(
      const ::aidl::android::hardware::thermal::Temperature& in_temperature) = 0;
};

}  // namespace aidl::android::hardware::thermal
