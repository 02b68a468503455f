// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/android/hardware/thermal/IThermal.h>

namespace aidl::android::hardware::thermal {

class BnThermal : public ::ndk::BnCInterface<IThermal> {
 public:
  BnThermal();
  virtual ~BnThermal();
  ::ndk::ScopedAStatus getInterfaceVersion(int32_t* _aidl_return) final;
  ::ndk::ScopedAStatus getInterfaceHash(std::string* _aidl_return) final;

 protected:
  ::ndk::SpAIBinder createBinder() override;
};

}  // namespace aidl::android::hardware::thermal
