// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <vector>

#include <android/hardware/thermal/2.0/IThermal.h>

namespace fp_host {

namespace ipc {
class Process;
}  // namespace ipc

// Simulates another process that is a client of the HIDL thermal HAL and has one callback. The
// transport checks that each call is answered exactly once, and aborts if not.
//
// Threading:  Connect() while no call is running; otherwise any thread may call any operation.
class HidlThermalClient {
 public:
  using CoolingDevice = android::hardware::thermal::V2_0::CoolingDevice;
  using CoolingType = android::hardware::thermal::V2_0::CoolingType;
  using IThermal = android::hardware::thermal::V2_0::IThermal;
  using IThermalChangedCallback = android::hardware::thermal::V2_0::IThermalChangedCallback;
  using Temperature = android::hardware::thermal::V2_0::Temperature;
  using TemperatureThreshold = android::hardware::thermal::V2_0::TemperatureThreshold;
  using TemperatureType = android::hardware::thermal::V2_0::TemperatureType;
  using ThermalStatus = android::hardware::thermal::V1_0::ThermalStatus;

  template <typename Record>
  struct Answer {
    ThermalStatus status;
    std::vector<Record> records;
  };

  HidlThermalClient();
  ~HidlThermalClient();
  HidlThermalClient(const HidlThermalClient&) = delete;
  HidlThermalClient& operator=(const HidlThermalClient&) = delete;

  // Sends later calls to `service`, an object of this process. Null releases the service.
  void Connect(const android::sp<IThermal>& service);

  Answer<Temperature> Temperatures(bool filter, TemperatureType type) const {
    return SendQuery<Temperature>(&IThermal::getCurrentTemperatures, filter, type);
  }
  Answer<TemperatureThreshold> Thresholds(bool filter, TemperatureType type) const {
    return SendQuery<TemperatureThreshold>(&IThermal::getTemperatureThresholds, filter, type);
  }
  Answer<CoolingDevice> CoolingDevices(bool filter, CoolingType type) const {
    return SendQuery<CoolingDevice>(&IThermal::getCurrentCoolingDevices, filter, type);
  }
  // Sends `query` and returns the answer.
  template <typename Record, typename Query, typename... Parameters>
  Answer<Record> SendQuery(Query query, Parameters... parameters) const {
    Answer<Record> answer = {kTransportFailure, {}};
    const auto take = [&answer](const ThermalStatus& status,
                                const android::hardware::hidl_vec<Record>& records) {
      answer = {status, records};
    };
    (service_.get()->*query)(parameters..., take).isOk();
    return answer;
  }

  ThermalStatus Register(const android::sp<IThermalChangedCallback>& callback, bool filter = false,
                         TemperatureType type = TemperatureType::SKIN) const {
    return SendCommand(&IThermal::registerThermalChangedCallback, callback, filter, type);
  }
  ThermalStatus Unregister(const android::sp<IThermalChangedCallback>& callback) const {
    return SendCommand(&IThermal::unregisterThermalChangedCallback, callback);
  }

  // A new proxy of the callback. Over the transport, each call passes a new one to the service.
  android::sp<IThermalChangedCallback> NewProxy() const;

  // The client dies: calls of its callback fail, and those that are queued are dropped.
  void Kill();

  // The notifications that the callback received since the last TakeReceived(), oldest first.
  std::vector<Temperature> TakeReceived();

 private:
  class Callback;

  template <typename Operation, typename... Parameters>
  ThermalStatus SendCommand(Operation operation, const Parameters&... parameters) const {
    ThermalStatus answer = kTransportFailure;
    const auto take = [&answer](const ThermalStatus& status) { answer = status; };
    (service_.get()->*operation)(parameters..., take).isOk();
    return answer;
  }

  // The answer if the transport fails: the service is dead.
  const ThermalStatus kTransportFailure = {
      android::hardware::thermal::V1_0::ThermalStatusCode::FAILURE, "?"};

  const android::sp<Callback> callback_;
  const std::shared_ptr<ipc::Process> process_;
  android::sp<IThermal> service_;
};

}  // namespace fp_host
