// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <android/hardware/thermal/2.0/types.h>

#include "fp_host/services.h"

namespace fp_host {

// The HIDL thermal HAL 2.0 with temperatures only: no thresholds, cooling devices, CPU usages or
// callbacks.
//
// Threading:  any thread may call any operation.
// Units:      degrees Celsius.
class HidlThermalService : public RemoteService {
 public:
  using Temperature = android::hardware::thermal::V2_0::Temperature;

  HidlThermalService();
  ~HidlThermalService() override;

  void SetTemperatures(std::vector<Temperature> temperatures);

  // Later calls are answered with FAILURE and `message`, until Accept().
  void Refuse(std::string message);
  void Accept() override;

 protected:
  std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) override;
  // Returns null: HIDL's service manager accepts no object of another interface.
  std::shared_ptr<void> MakeImpostor(const std::shared_ptr<ipc::Process>& process) override;

 private:
  struct State;
  class Implementation;

  const std::shared_ptr<State> state_;
};

}  // namespace fp_host
