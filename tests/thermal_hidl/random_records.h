// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/CoolingDevice.h>
#include <aidl/android/hardware/thermal/Temperature.h>
#include <aidl/android/hardware/thermal/TemperatureThreshold.h>

namespace fp_test {

// Random AIDL thermal records, with types that nobody has defined, floats of all bit patterns and
// threshold vectors of all lengths.
class RandomRecords {
 public:
  explicit RandomRecords(uint64_t seed) : random_(seed) {}

  std::vector<aidl::android::hardware::thermal::Temperature> Temperatures() {
    return Fill<aidl::android::hardware::thermal::Temperature>([this](auto& record) {
      record.value = Float();
      record.throttlingStatus = Value<aidl::android::hardware::thermal::ThrottlingSeverity>();
    });
  }
  std::vector<aidl::android::hardware::thermal::TemperatureThreshold> Thresholds() {
    return Fill<aidl::android::hardware::thermal::TemperatureThreshold>([this](auto& record) {
      record.hotThrottlingThresholds = Floats();
      record.coldThrottlingThresholds = Floats();
    });
  }
  std::vector<aidl::android::hardware::thermal::CoolingDevice> CoolingDevices() {
    return Fill<aidl::android::hardware::thermal::CoolingDevice>(
        [this](auto& record) { record.value = static_cast<int64_t>(random_()); });
  }

 private:
  template <typename Record, typename Finish>
  std::vector<Record> Fill(Finish finish) {
    std::vector<Record> records(random_() % 6);
    for (Record& record : records) {
      record.type = Value<decltype(record.type)>();
      record.name = std::string(random_() % 40, static_cast<char>('a' + random_() % 26));
      finish(record);
    }
    return records;
  }

  // Mostly one of the enumeration's values.
  template <typename Enum>
  Enum Value() {
    const ndk::enum_range<Enum> known;
    const size_t count = static_cast<size_t>(known.end() - known.begin());
    switch (random_() % 8) {
      case 0:
        return static_cast<Enum>(static_cast<int32_t>(random_()));
      case 1:
        return static_cast<Enum>(random_() % 2 == 0 ? INT32_MIN : INT32_MAX);
      default:
        return known.begin()[random_() % count];
    }
  }
  float Float() { return __builtin_bit_cast(float, static_cast<uint32_t>(random_())); }
  std::vector<float> Floats() {
    std::vector<float> floats(random_() % 10);
    for (float& value : floats) {
      value = Float();
    }
    return floats;
  }

  std::mt19937_64 random_;
};

}  // namespace fp_test
