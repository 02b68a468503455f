// SPDX-License-Identifier: Apache-2.0
//
// A client of HIDL thermal 2.0 on a device that has only the AIDL service.
#include "fp_utils/thermal_hidl_wrapper.h"

#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "fp_host/hidl_thermal_client.h"
#include "fp_host/testing.h"
#include "fp_host/thermal_service.h"

namespace {

namespace V1_0 = android::hardware::thermal::V1_0;
namespace V2_0 = android::hardware::thermal::V2_0;
namespace aidl_thermal = aidl::android::hardware::thermal;
using aidl_thermal::ThermalHidlWrapper;
using android::sp;
using android::hardware::hidl_array;
using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using namespace fp_host;
using ndk::ScopedAStatus;
using Calls = std::vector<std::string>;

constexpr auto kSkin = V2_0::TemperatureType::SKIN;
constexpr char kNoClient[] = "Thermal AIDL HAL client used by HIDL wrapper was not initialized";

const V1_0::ThermalStatus kSuccess = {V1_0::ThermalStatusCode::SUCCESS, ""};

V1_0::ThermalStatus Failure(const char* message) {
  return {V1_0::ThermalStatusCode::FAILURE, message};
}

ScopedAStatus NotReady() {
  return ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, "HAL not ready");
}

class ThermalHidlWrapperTest : public ::testing::Test {
 protected:
  ThermalHidlWrapperTest() {
    ABinderProcess_startThreadPool();
    service_.Start();
    const ndk::SpAIBinder binder(AServiceManager_waitForService(service_.GetInstance().c_str()));
    wrapper_ =
        sp<V2_0::IThermal>(new ThermalHidlWrapper(aidl_thermal::IThermal::fromBinder(binder)));
    client_.Connect(wrapper_);
  }

  ThermalService service_;
  sp<V2_0::IThermal> wrapper_;
  HidlThermalClient client_;
  const sp<V2_0::IThermalChangedCallback> callback_ = client_.NewProxy();
};

std::vector<float> Floats(size_t count) {
  std::vector<float> floats(count);
  std::iota(floats.begin(), floats.end(), 0.5F);
  return floats;
}

void ExpectPadded(const std::vector<float>& from, const hidl_array<float, 7>& to) {
  for (size_t i = 0; i < 7; ++i) {
    EXPECT_TRUE(i < from.size() ? to[i] == from[i] : std::isnan(to[i])) << i;
  }
}

TEST_F(ThermalHidlWrapperTest, ConvertsRecordsFieldByField) {
  const struct {
    int32_t aidl, temperature;  // the type in AIDL, and what a sensor's becomes in HIDL
    uint32_t cooling;           // what a cooling device's becomes
  } kTypes[] = {{INT32_MIN, -1, 6}, {-1, -1, 6}, {0, 0, 0},   {5, 5, 5},         {6, 6, 6},
                {7, 7, 6},          {9, 9, 6},   {10, -1, 6}, {INT32_MAX, -1, 6}};
  constexpr size_t kCount = std::size(kTypes);
  std::vector<aidl_thermal::Temperature> temperatures(kCount);
  std::vector<aidl_thermal::TemperatureThreshold> thresholds(kCount);
  std::vector<aidl_thermal::CoolingDevice> devices(kCount);
  for (size_t i = 0; i < kCount; ++i) {
    const auto type = static_cast<aidl_thermal::TemperatureType>(kTypes[i].aidl);
    const std::string name = "sensor " + std::to_string(i);
    temperatures[i].type = thresholds[i].type = type;
    devices[i].type = static_cast<aidl_thermal::CoolingType>(type);
    temperatures[i].name = thresholds[i].name = devices[i].name = name;
    temperatures[i].value = Floats(i + 1).back();
    temperatures[i].throttlingStatus = static_cast<aidl_thermal::ThrottlingSeverity>(type);
    thresholds[i].hotThrottlingThresholds = Floats(i);
    thresholds[i].coldThrottlingThresholds = Floats(kCount - i);
    devices[i].value = (static_cast<int64_t>(i) - 3) * 0x123456789ABCDEF;
  }
  service_.SetTemperatures(temperatures);
  service_.SetThresholds(thresholds);
  service_.SetCoolingDevices(devices);
  EXPECT_EQ(kSuccess, client_.Register(callback_));
  for (const auto& temperature : temperatures) {
    service_.Notify(temperature);
  }
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());

  const auto queried = client_.Temperatures(false, kSkin);
  const auto received = client_.TakeReceived();
  const auto limits = client_.Thresholds(false, kSkin);
  const auto coolers = client_.CoolingDevices(false, V2_0::CoolingType::FAN);
  for (const auto& status : {queried.status, limits.status, coolers.status}) {
    EXPECT_EQ(kSuccess, status);
  }
  for (const size_t size :
       {queried.records.size(), received.size(), limits.records.size(), coolers.records.size()}) {
    ASSERT_EQ(kCount, size);
  }
  for (size_t i = 0; i < kCount; ++i) {
    SCOPED_TRACE(kTypes[i].aidl);
    for (const auto& to : {queried.records[i], received[i]}) {
      EXPECT_EQ(kTypes[i].temperature, static_cast<int32_t>(to.type));
      EXPECT_EQ(temperatures[i].name, to.name.c_str());
      EXPECT_EQ(temperatures[i].value, to.value);
      EXPECT_EQ(kTypes[i].aidl, static_cast<int32_t>(to.throttlingStatus));
    }
    const auto& limit = limits.records[i];
    EXPECT_EQ(kTypes[i].temperature, static_cast<int32_t>(limit.type));
    EXPECT_EQ(thresholds[i].name, limit.name.c_str());
    ExpectPadded(thresholds[i].hotThrottlingThresholds, limit.hotThrottlingThresholds);
    ExpectPadded(thresholds[i].coldThrottlingThresholds, limit.coldThrottlingThresholds);
    EXPECT_TRUE(std::isnan(limit.vrThrottlingThreshold));
    const auto& cooler = coolers.records[i];
    EXPECT_EQ(kTypes[i].cooling, static_cast<uint32_t>(cooler.type));
    EXPECT_EQ(devices[i].name, cooler.name.c_str());
    EXPECT_EQ(static_cast<uint64_t>(devices[i].value), cooler.value);
  }
}

TEST_F(ThermalHidlWrapperTest, PassesFiltersOnUnchanged) {
  const auto odd = static_cast<V2_0::TemperatureType>(17);
  EXPECT_EQ(kSuccess, client_.Temperatures(true, kSkin).status);
  client_.Temperatures(false, kSkin);
  client_.Temperatures(true, odd);
  client_.Thresholds(true, V2_0::TemperatureType::UNKNOWN);
  client_.Thresholds(false, kSkin);
  client_.CoolingDevices(true, V2_0::CoolingType::COMPONENT);
  client_.CoolingDevices(false, V2_0::CoolingType::FAN);
  client_.Register(callback_, true, odd);
  service_.Notify({});
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  EXPECT_TRUE(client_.TakeReceived().empty()) << "of another type than the one asked for";
  client_.Unregister(callback_);
  client_.Register(callback_, false, odd);
  EXPECT_EQ((Calls{"getTemperaturesWithType 3", "getTemperatures", "getTemperaturesWithType 17",
                   "getTemperatureThresholdsWithType -1", "getTemperatureThresholds",
                   "getCoolingDevicesWithType 6", "getCoolingDevices",
                   "registerThermalChangedCallbackWithType 17", "unregisterThermalChangedCallback",
                   "registerThermalChangedCallback"}),
            service_.TakeCalls());
}

TEST_F(ThermalHidlWrapperTest, DoesNotSupportTheQueriesOfHidl1) {
  const auto expect_unsupported = [](const auto& answer) {
    EXPECT_EQ(Failure("Operation unsupported by Thermal HIDL wrapper"), answer.status);
    EXPECT_TRUE(answer.records.empty());
  };
  expect_unsupported(client_.SendQuery<V1_0::Temperature>(&V2_0::IThermal::getTemperatures));
  expect_unsupported(client_.SendQuery<V1_0::CpuUsage>(&V2_0::IThermal::getCpuUsages));
  expect_unsupported(client_.SendQuery<V1_0::CoolingDevice>(&V2_0::IThermal::getCoolingDevices));
  EXPECT_TRUE(service_.TakeCalls().empty());
}

TEST_F(ThermalHidlWrapperTest, RegistersEachCallbackOnce) {
  HidlThermalClient other;
  EXPECT_EQ(Failure("Invalid nullptr callback"), client_.Register(nullptr));
  service_.Refuse(NotReady);
  EXPECT_EQ(Failure("HAL not ready"), client_.Register(callback_)) << "it can be registered later";
  service_.Accept();
  EXPECT_EQ(kSuccess, client_.Register(callback_));
  EXPECT_EQ(Failure("The callback was already registered through wrapper"),
            client_.Register(client_.NewProxy(), true));
  EXPECT_EQ(kSuccess, client_.Register(other.NewProxy()));
  EXPECT_EQ(3u, service_.TakeCalls().size()) << "the refused one, and one for each callback";
  EXPECT_EQ(2, service_.CountCallbacks());
}

TEST_F(ThermalHidlWrapperTest, UnregistersWhatIsRegistered) {
  EXPECT_EQ(Failure("Invalid nullptr callback"), client_.Unregister(nullptr));
  EXPECT_EQ(Failure("The callback was not registered through wrapper before"),
            client_.Unregister(callback_));
  EXPECT_TRUE(service_.TakeCalls().empty());
  client_.Register(callback_);
  service_.Refuse(NotReady);
  EXPECT_EQ(Failure("HAL not ready"), client_.Unregister(callback_));
  service_.Accept();
  service_.Notify({});
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  EXPECT_EQ(1u, client_.TakeReceived().size()) << "still registered";
  EXPECT_EQ(Failure("The callback was already registered through wrapper"),
            client_.Register(callback_));
  EXPECT_EQ(kSuccess, client_.Unregister(client_.NewProxy())) << "another proxy of it";
  EXPECT_EQ(0, service_.CountCallbacks());
  EXPECT_EQ(kSuccess, client_.Register(callback_));
}

TEST_F(ThermalHidlWrapperTest, NotificationsOutliveTheWrapperButNotTheClient) {
  HidlThermalClient dead;
  client_.Register(callback_);
  dead.Connect(wrapper_);
  dead.Register(dead.NewProxy());
  dead.Kill();
  service_.Notify({});
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  EXPECT_TRUE(dead.TakeReceived().empty());
  EXPECT_EQ(1u, client_.TakeReceived().size());
  EXPECT_EQ(kSuccess, dead.Unregister(dead.NewProxy()));

  dead.Connect(nullptr);
  client_.Connect(nullptr);
  wrapper_ = nullptr;
  service_.Notify({});
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  EXPECT_EQ(1u, client_.TakeReceived().size());
}

// What a client's request for a bug report writes, with a handle of so many descriptors.
std::string Dump(V2_0::IThermal& service, int descriptors, const hidl_vec<hidl_string>& options) {
  return DumpText([&](int fd) {
    native_handle_t* handle = native_handle_create(descriptors, 1);
    handle->data[0] = fd;
    EXPECT_TRUE(service.debug(handle, options).isOk());
    native_handle_delete(handle);
  });
}

TEST(ThermalHidlWrapperWithoutClient, ReportsSoAndDoesNothingElse) {
  const sp<V2_0::IThermal> wrapper = sp<V2_0::IThermal>(new ThermalHidlWrapper(nullptr));
  HidlThermalClient client;
  client.Connect(wrapper);
  EXPECT_EQ(Failure(kNoClient), client.Temperatures(true, kSkin).status);
  EXPECT_EQ(Failure(kNoClient), client.Thresholds(true, kSkin).status);
  EXPECT_EQ(Failure(kNoClient), client.CoolingDevices(true, V2_0::CoolingType::FAN).status);
  EXPECT_EQ(Failure(kNoClient), client.Register(client.NewProxy()));
  EXPECT_EQ(Failure(kNoClient), client.Unregister(nullptr)) << "the missing client comes first";
  EXPECT_EQ("", Dump(*wrapper, 1, {"option"}));
}

TEST_F(ThermalHidlWrapperTest, DebugDumpsTheService) {
  EXPECT_EQ("thermal '-v' 'all sensors' ''\n", Dump(*wrapper_, 1, {"-v", "all sensors", ""}));
  EXPECT_EQ("thermal\n", Dump(*wrapper_, 1, {}));
  EXPECT_EQ("", Dump(*wrapper_, 0, {"-v"})) << "a handle without descriptors";
  EXPECT_TRUE(wrapper_->debug(nullptr, {"-v"}).isOk());
  EXPECT_EQ(2, service_.CountCalls());
  service_.DieAtCall(1, RemoteService::Death::kBeforeCall);
  EXPECT_EQ("", Dump(*wrapper_, 1, {"-v"})) << "without the service there is no text";
  EXPECT_EQ("", Dump(*wrapper_, 1, {}));
}

}  // namespace
