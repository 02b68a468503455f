// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include <android/hardware/thermal/2.0/IThermal.h>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace aidl::android::hardware::thermal {

class IThermal;

// Serves an AIDL thermal HAL through the HIDL thermal 2.0 interface, for code that was written
// against HIDL. Records are converted; types that HIDL does not know become UNKNOWN or COMPONENT.
// The HIDL 1.0 queries have no counterpart in AIDL and report that they are unsupported.
//
// Threading:  any thread may call any operation. Queries take no lock; registering and
//             unregistering hold one until their callback has returned, so the callback must not
//             register or unregister.
// Ownership:  shares the AIDL client; a registered callback is kept until it is unregistered.
// Blocking:   every operation but the HIDL 1.0 queries waits for the AIDL service.
// Errors:     all operations return Void(). The callback gets the failure, with the message of the
//             AIDL status if the service failed. A callback whose unregistration failed stays
//             registered. Without an AIDL client the operations of HIDL 2.0 fail and debug() writes
//             nothing.
class FP_UTILS_EXPORT ThermalHidlWrapper : public ::android::hardware::thermal::V2_0::IThermal {
 public:
  explicit ThermalHidlWrapper(
      std::shared_ptr<::aidl::android::hardware::thermal::IThermal> thermal_service);

  ::android::hardware::Return<void> getTemperatures(getTemperatures_cb cb) override;
  ::android::hardware::Return<void> getCpuUsages(getCpuUsages_cb cb) override;
  ::android::hardware::Return<void> getCoolingDevices(getCoolingDevices_cb cb) override;

  ::android::hardware::Return<void> getCurrentTemperatures(
      bool filter_type, ::android::hardware::thermal::V2_0::TemperatureType type,
      getCurrentTemperatures_cb cb) override;
  // A threshold that AIDL does not provide is NaN, as are all VR thresholds.
  ::android::hardware::Return<void> getTemperatureThresholds(
      bool filter_type, ::android::hardware::thermal::V2_0::TemperatureType type,
      getTemperatureThresholds_cb cb) override;
  ::android::hardware::Return<void> getCurrentCoolingDevices(
      bool filter_type, ::android::hardware::thermal::V2_0::CoolingType type,
      getCurrentCoolingDevices_cb cb) override;

  ::android::hardware::Return<void> registerThermalChangedCallback(
      const ::android::sp<::android::hardware::thermal::V2_0::IThermalChangedCallback>& callback,
      bool filter_type, ::android::hardware::thermal::V2_0::TemperatureType type,
      registerThermalChangedCallback_cb cb) override;
  ::android::hardware::Return<void> unregisterThermalChangedCallback(
      const ::android::sp<::android::hardware::thermal::V2_0::IThermalChangedCallback>& callback,
      unregisterThermalChangedCallback_cb cb) override;

  // Dumps the AIDL service, with `options` as arguments, to the handle's first descriptor.
  ::android::hardware::Return<void> debug(
      const ::android::hardware::hidl_handle& handle,
      const ::android::hardware::hidl_vec<::android::hardware::hidl_string>& options) override;

 protected:
  ~ThermalHidlWrapper() override;

 private:
  class IThermalChangedCallbackWrapper;
  using CallbackWrappers = std::vector<std::shared_ptr<IThermalChangedCallbackWrapper>>;

  CallbackWrappers::iterator FindWrapper(
      const ::android::sp<::android::hardware::thermal::V2_0::IThermalChangedCallback>& callback)
      FP_REQUIRES(callback_wrappers_mutex_);

  // Constant after construction.
  const std::shared_ptr<::aidl::android::hardware::thermal::IThermal> thermal_service_;

  std::mutex callback_wrappers_mutex_;

  // Guarded by callback_wrappers_mutex_.
  CallbackWrappers callback_wrappers_
      FP_GUARDED_BY(callback_wrappers_mutex_);  // in order of registration
};

}  // namespace aidl::android::hardware::thermal
