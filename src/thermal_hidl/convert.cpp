// SPDX-License-Identifier: Apache-2.0
#include "thermal_hidl/convert.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace aidl::android::hardware::thermal {
namespace {

namespace V2_0 = ::android::hardware::thermal::V2_0;

// For thresholds that the service does not provide.
constexpr float kNoThreshold = std::numeric_limits<float>::quiet_NaN();

// The last type that HIDL has in common with AIDL, which has more.
constexpr auto kLastTemperatureType = static_cast<uint32_t>(V2_0::TemperatureType::NPU);

V2_0::TemperatureType ToHidl(TemperatureType type) {
  return static_cast<uint32_t>(type) <= kLastTemperatureType
             ? static_cast<V2_0::TemperatureType>(type)
             : V2_0::TemperatureType::UNKNOWN;
}

// AIDL has more types, with numbers above COMPONENT.
V2_0::CoolingType ToHidl(CoolingType type) {
  return static_cast<uint32_t>(type) < static_cast<uint32_t>(V2_0::CoolingType::COMPONENT)
             ? static_cast<V2_0::CoolingType>(type)
             : V2_0::CoolingType::COMPONENT;
}

// A vector should have one element per severity, but AIDL does not enforce its length.
template <typename Thresholds>
void Copy(const std::vector<float>& from, Thresholds& to) {
  for (size_t i = 0; i < Thresholds::size(); ++i) {
    to[i] = i < from.size() ? from[i] : kNoThreshold;
  }
}

}  // namespace

V2_0::Temperature ToHidl(const Temperature& temperature) {
  return {.type = ToHidl(temperature.type),
          .name = temperature.name,
          .value = temperature.value,
          .throttlingStatus = static_cast<V2_0::ThrottlingSeverity>(temperature.throttlingStatus)};
}

V2_0::TemperatureThreshold ToHidl(const TemperatureThreshold& threshold) {
  V2_0::TemperatureThreshold converted = {};
  converted.type = ToHidl(threshold.type);
  converted.name = threshold.name;
  Copy(threshold.hotThrottlingThresholds, converted.hotThrottlingThresholds);
  Copy(threshold.coldThrottlingThresholds, converted.coldThrottlingThresholds);
  converted.vrThrottlingThreshold = kNoThreshold;  // AIDL has no such field
  return converted;
}

V2_0::CoolingDevice ToHidl(const CoolingDevice& device) {
  return {.type = ToHidl(device.type),
          .name = device.name,
          .value = static_cast<uint64_t>(device.value)};
}

}  // namespace aidl::android::hardware::thermal
