// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include <android/hardware/thermal/2.0/IThermalChangedCallback.h>

namespace fp_host {

namespace ipc {
class Process;
}  // namespace ipc

// A client of the HIDL thermal HAL in another process, with one callback.
class HidlThermalClient {
 public:
  using Temperature = android::hardware::thermal::V2_0::Temperature;

  HidlThermalClient();
  ~HidlThermalClient();
  HidlThermalClient(const HidlThermalClient&) = delete;
  HidlThermalClient& operator=(const HidlThermalClient&) = delete;

  // The callback as a service sees it: each call over the transport brings another proxy of it.
  android::sp<android::hardware::thermal::V2_0::IThermalChangedCallback> NewProxy() const;

  void Kill();

  // What the callback was told since the last call, oldest first.
  std::vector<Temperature> TakeReceived();

 private:
  class Callback;

  const android::sp<Callback> callback_;
  const std::shared_ptr<ipc::Process> process_;
};

}  // namespace fp_host
