// SPDX-License-Identifier: Apache-2.0
//
// The AIDL thermal interface as the stand-in shapes it, and the simulated service behind it.
#include "control/thermal_service.h"

#include <limits>
#include <set>
#include <vector>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_manager.h>

#include "support/device_test.h"

namespace aidl::android::hardware::thermal {
namespace {

using ndk::ScopedAStatus;

Temperature Reading(TemperatureType type, float value) {
  Temperature temperature;
  temperature.type = type;
  temperature.value = value;
  return temperature;
}

TEST(ThermalRecords, DefaultsAndComparison) {
  Temperature temperature;
  EXPECT_EQ(TemperatureType::CPU, temperature.type) << "0, whatever that means";
  EXPECT_EQ(Temperature(), temperature);
  temperature.value = std::numeric_limits<float>::quiet_NaN();
  EXPECT_NE(temperature, temperature);
  EXPECT_TRUE(TemperatureThreshold().hotThrottlingThresholds.empty());
  EXPECT_EQ(CoolingType::FAN, CoolingDevice().type);

  std::set<int32_t> types;
  for (const TemperatureType type : ndk::enum_range<TemperatureType>()) {
    types.insert(static_cast<int32_t>(type));
  }
  EXPECT_EQ(-1, *types.begin());
  EXPECT_EQ(1u, types.count(static_cast<int32_t>(TemperatureType::SKIN)));
}

TEST(ThermalService, AnswersQueries) {
  fp_host::ThermalService service;
  service.Start();
  const std::shared_ptr<IThermal> thermal = IThermal::fromBinder(
      ndk::SpAIBinder(AServiceManager_waitForService(service.GetInstance().c_str())));
  ASSERT_NE(nullptr, thermal);
  EXPECT_EQ("android.hardware.thermal.IThermal/default", service.GetInstance());
  int32_t version = 0;
  std::string hash;
  EXPECT_TRUE(thermal->getInterfaceVersion(&version).isOk());
  EXPECT_TRUE(thermal->getInterfaceHash(&hash).isOk());
  EXPECT_EQ(IThermal::version, version);
  EXPECT_EQ(IThermal::hash, hash);

  const Temperature skin = Reading(TemperatureType::SKIN, 33);
  const Temperature cpu = Reading(TemperatureType::CPU, 60);
  service.SetTemperatures({skin, cpu});
  std::vector<Temperature> temperatures;
  EXPECT_TRUE(thermal->getTemperatures(&temperatures).isOk());
  EXPECT_EQ((std::vector{skin, cpu}), temperatures);
  EXPECT_TRUE(thermal->getTemperaturesWithType(TemperatureType::CPU, &temperatures).isOk());
  EXPECT_EQ((std::vector{cpu}), temperatures);
  EXPECT_EQ((std::vector<std::string>{"getTemperatures", "getTemperaturesWithType 0"}),
            service.TakeCalls());

  service.Refuse(
      [] { return ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, "starting"); });
  const ScopedAStatus status = thermal->getTemperatures(&temperatures);
  EXPECT_STREQ("starting", status.getMessage());
  EXPECT_EQ((std::vector{cpu}), temperatures) << "a failure writes no result";
}

}  // namespace
}  // namespace aidl::android::hardware::thermal
