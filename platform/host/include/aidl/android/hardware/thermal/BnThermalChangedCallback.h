// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermalChangedCallback.h>

namespace aidl::android::hardware::thermal {

class BnThermalChangedCallback : public ::ndk::BnCInterface<IThermalChangedCallback> {
 public:
  BnThermalChangedCallback();
  virtual ~BnThermalChangedCallback();
  ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) final;
  ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) final;

 protected:
  ::ndk::SpAIBinder createBinder() override;
};

}  // namespace aidl::android::hardware::thermal
