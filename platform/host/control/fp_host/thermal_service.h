// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/CoolingDevice.h>
#include <aidl/android/hardware/thermal/Temperature.h>
#include <aidl/android/hardware/thermal/TemperatureThreshold.h>
#include <android/binder_auto_utils.h>

#include "fp_host/aidl_service.h"

namespace fp_host {

// The AIDL thermal HAL. A restart keeps the values that were set and drops the registered
// callbacks.
//
// Threading:  any thread may call any operation.
// Units:      degrees Celsius.
class ThermalService : public AidlService {
 public:
  using Temperature = aidl::android::hardware::thermal::Temperature;
  using TemperatureThreshold = aidl::android::hardware::thermal::TemperatureThreshold;
  using CoolingDevice = aidl::android::hardware::thermal::CoolingDevice;

  ThermalService();
  ~ThermalService() override;

  void SetTemperatures(std::vector<Temperature> temperatures);
  void SetThresholds(std::vector<TemperatureThreshold> thresholds);
  void SetCoolingDevices(std::vector<CoolingDevice> devices);

  // Until Accept(), calls return what `refusal` returns. `refusal` runs on the client's thread and
  // must not use this object.
  void Refuse(std::function<ndk::ScopedAStatus()> refusal);
  void Accept() override;

  // Tells every callback that is registered for this type, or for all, without waiting for them: a
  // callback runs on the binder pool.
  void Notify(const Temperature& temperature);
  int CountCallbacks() const;

  // The calls that the service handled, as "operation" or "operation type", oldest first; at
  // most the newest 1,000.
  std::vector<std::string> TakeCalls();

 protected:
  ndk::SpAIBinder MakeBinder() override;
  std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) override;

 private:
  struct State;
  class Implementation;

  const std::shared_ptr<State> state_;
};

}  // namespace fp_host
