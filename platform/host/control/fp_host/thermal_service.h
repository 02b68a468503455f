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

#include "fp_host/services.h"

namespace fp_host {

// The AIDL thermal HAL. A restart keeps the values it measures and drops the registered callbacks.
class ThermalService : public RemoteService {
 public:
  using Temperature = aidl::android::hardware::thermal::Temperature;
  using TemperatureThreshold = aidl::android::hardware::thermal::TemperatureThreshold;
  using CoolingDevice = aidl::android::hardware::thermal::CoolingDevice;

  ThermalService();
  ~ThermalService() override;

  void SetTemperatures(std::vector<Temperature> temperatures);
  void SetThresholds(std::vector<TemperatureThreshold> thresholds);
  void SetCoolingDevices(std::vector<CoolingDevice> devices);

  // Calls are answered with what `refusal` makes, until Accept().
  void Refuse(std::function<ndk::ScopedAStatus()> refusal);
  void Accept() override;

  // Tells every callback that is registered for this type, or for all.
  void Notify(const Temperature& temperature);
  int CountCallbacks() const;

  // The calls that the service handled, as "operation" or "operation type", oldest first; of more
  // than a thousand the last thousand.
  std::vector<std::string> TakeCalls();

 protected:
  std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) override;
  std::shared_ptr<void> MakeImpostor(const std::shared_ptr<ipc::Process>& process) override;

 private:
  struct State;
  class Implementation;

  const std::shared_ptr<State> state_;
};

}  // namespace fp_host
