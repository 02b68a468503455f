// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utility>

#include <aidl/android/hardware/thermal/BnThermalChangedCallback.h>
#include <android/hardware/thermal/2.0/IThermalChangedCallback.h>

#include "fp_utils/thermal_hidl_wrapper.h"

namespace aidl::android::hardware::thermal {

// What is registered with the AIDL service in the name of a HIDL callback.
class ThermalHidlWrapper::IThermalChangedCallbackWrapper : public BnThermalChangedCallback {
 public:
  explicit IThermalChangedCallbackWrapper(
      ::android::sp<::android::hardware::thermal::V2_0::IThermalChangedCallback> callback)
      : callback_hidl(std::move(callback)) {}

  // On a binder thread. The service is not told if the client is gone.
  ::ndk::ScopedAStatus notifyThrottling(const Temperature& temperature) override;

  const ::android::sp<::android::hardware::thermal::V2_0::IThermalChangedCallback> callback_hidl;
};

}  // namespace aidl::android::hardware::thermal
