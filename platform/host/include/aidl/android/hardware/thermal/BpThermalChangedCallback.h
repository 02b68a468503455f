// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermalChangedCallback.h>

namespace aidl::android::hardware::thermal {

class BpThermalChangedCallback : public ::ndk::BpCInterface<IThermalChangedCallback> {
 public:
  explicit BpThermalChangedCallback(const ::ndk::SpAIBinder& binder);
  virtual ~BpThermalChangedCallback();

  ::ndk::ScopedAStatus notifyThrottling(
      const ::aidl::android::hardware::thermal::Temperature& in_temperature) override;
  ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) override;
  ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) override;
};

}  // namespace aidl::android::hardware::thermal
