// SPDX-License-Identifier: Apache-2.0
//
// The AIDL thermal interface as the stand-in shapes it, and the simulated service behind it.
#include "control/thermal_service.h"

#include <cmath>
#include <limits>
#include <mutex>
#include <set>
#include <vector>

#include <aidl/android/hardware/thermal/BnThermalChangedCallback.h>
#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "support/device_test.h"

namespace aidl::android::hardware::thermal {
namespace {

using fp_host::ThermalService;
using fp_host::WaitForPools;
using ndk::ScopedAStatus;

class Callback : public BnThermalChangedCallback {
 public:
  ScopedAStatus notifyThrottling(const Temperature& temperature) override {
    const std::lock_guard lock(mutex_);
    received_.push_back(temperature.value);
    return ScopedAStatus::fromStatus(STATUS_BAD_VALUE);
  }
  std::vector<float> TakeReceived() {
    const std::lock_guard lock(mutex_);
    return std::exchange(received_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<float> received_;
};

Temperature Reading(TemperatureType type, float value) {
  Temperature temperature;
  temperature.type = type;
  temperature.value = value;
  return temperature;
}

class ThermalServiceTest : public ::testing::Test {
 protected:
  ThermalServiceTest() {
    ABinderProcess_startThreadPool();
    service_.Start();
    Connect();
  }

  void Connect() {
    thermal_ = IThermal::fromBinder(
        ndk::SpAIBinder(AServiceManager_waitForService(service_.GetInstance().c_str())));
    ASSERT_NE(nullptr, thermal_);
  }

  ThermalService service_;
  std::shared_ptr<IThermal> thermal_;
  const std::shared_ptr<Callback> callback_ = ndk::SharedRefBase::make<Callback>();
};

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
  EXPECT_TRUE(types.contains(static_cast<int32_t>(TemperatureType::SKIN)));
}

TEST_F(ThermalServiceTest, AnswersQueries) {
  EXPECT_EQ("android.hardware.thermal.IThermal/default", service_.GetInstance());
  int32_t version = 0;
  std::string hash;
  EXPECT_TRUE(thermal_->getInterfaceVersion(&version).isOk());
  EXPECT_TRUE(thermal_->getInterfaceHash(&hash).isOk());
  EXPECT_EQ(IThermal::version, version);
  EXPECT_EQ(IThermal::hash, hash);

  const Temperature skin = Reading(TemperatureType::SKIN, 33);
  const Temperature cpu = Reading(TemperatureType::CPU, 60);
  service_.SetTemperatures({skin, cpu});
  std::vector<Temperature> temperatures;
  EXPECT_TRUE(thermal_->getTemperatures(&temperatures).isOk());
  EXPECT_EQ((std::vector{skin, cpu}), temperatures);
  EXPECT_TRUE(thermal_->getTemperaturesWithType(TemperatureType::CPU, &temperatures).isOk());
  EXPECT_EQ((std::vector{cpu}), temperatures);
  EXPECT_EQ((std::vector<std::string>{"getTemperatures", "getTemperaturesWithType 0"}),
            service_.TakeCalls());

  service_.Refuse(
      [] { return ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, "starting"); });
  const ScopedAStatus status = thermal_->getTemperatures(&temperatures);
  EXPECT_STREQ("starting", status.getMessage());
  EXPECT_EQ((std::vector{cpu}), temperatures) << "a failure writes no result";
}

TEST_F(ThermalServiceTest, CallbacksAreKnownByTheirObject) {
  const auto register_callback = [this](const std::shared_ptr<IThermalChangedCallback>& callback) {
    return thermal_->registerThermalChangedCallback(callback).getExceptionCode();
  };
  const auto unregister = [this](const std::shared_ptr<IThermalChangedCallback>& callback) {
    return thermal_->unregisterThermalChangedCallback(callback).getExceptionCode();
  };
  EXPECT_EQ(EX_ILLEGAL_ARGUMENT, register_callback(nullptr)) << "null gets there";
  EXPECT_EQ(EX_ILLEGAL_ARGUMENT, unregister(nullptr));
  EXPECT_EQ(EX_ILLEGAL_ARGUMENT, unregister(callback_));
  EXPECT_EQ(EX_NONE, register_callback(callback_));
  EXPECT_EQ(EX_ILLEGAL_ARGUMENT, register_callback(callback_));
  EXPECT_EQ(EX_NONE, register_callback(ndk::SharedRefBase::make<Callback>())) << "another";
  EXPECT_EQ(2, service_.CountCallbacks());
  EXPECT_EQ(EX_NONE, unregister(callback_));
  EXPECT_EQ(1, service_.CountCallbacks());
  service_.Kill();
  EXPECT_EQ(0, service_.CountCallbacks()) << "gone with the process";
}

TEST_F(ThermalServiceTest, NotificationsArriveInOrderAndFiltered) {
  const auto skin_only = ndk::SharedRefBase::make<Callback>();
  thermal_->registerThermalChangedCallback(callback_);
  thermal_->registerThermalChangedCallbackWithType(skin_only, TemperatureType::SKIN);
  std::vector<float> expected;
  for (int i = 0; i < 50; ++i) {
    expected.push_back(static_cast<float>(i));
    service_.Notify(Reading(TemperatureType::GPU, expected.back()));
  }
  service_.Notify(Reading(TemperatureType::SKIN, 33));
  expected.push_back(33);
  ASSERT_TRUE(WaitForPools());
  EXPECT_EQ(expected, callback_->TakeReceived());
  EXPECT_EQ((std::vector<float>{33}), skin_only->TakeReceived());
}

}  // namespace
}  // namespace aidl::android::hardware::thermal
