// SPDX-License-Identifier: Apache-2.0
//
// A client of HIDL thermal 2.0 on a device that has only the AIDL service.
#include "fp_utils/thermal_hidl_wrapper.h"

#include <unistd.h>

#include <cstdint>
#include <functional>
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
using android::hardware::hidl_vec;
using namespace fp_host;
using ndk::ScopedAStatus;
using Calls = std::vector<std::string>;

constexpr auto kSkin = V2_0::TemperatureType::SKIN;
constexpr char kUnsupported[] = "Operation unsupported by Thermal HIDL wrapper";
constexpr char kNoClient[] = "Thermal AIDL HAL client used by HIDL wrapper was not initialized";

template <typename Record>
using Answer = HidlThermalClient::Answer<Record>;

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

template <typename HidlType>
HidlType ExpectedType(int32_t aidl_type, int32_t last, HidlType other) {
  return aidl_type >= 0 && aidl_type <= last ? static_cast<HidlType>(aidl_type) : other;
}

void ExpectSameBits(float expected, float actual) {
  EXPECT_EQ(__builtin_bit_cast(uint32_t, expected), __builtin_bit_cast(uint32_t, actual));
}

void ExpectMatch(const aidl_thermal::Temperature& from, const V2_0::Temperature& to) {
  EXPECT_EQ(ExpectedType(static_cast<int32_t>(from.type), 9, V2_0::TemperatureType::UNKNOWN),
            to.type);
  EXPECT_STREQ(from.name.c_str(), to.name.c_str());
  ExpectSameBits(from.value, to.value);
  EXPECT_EQ(static_cast<int32_t>(from.throttlingStatus), static_cast<int32_t>(to.throttlingStatus));
}

void ExpectMatch(const std::vector<float>& from,
                 const android::hardware::hidl_array<float, 7>& to) {
  for (size_t i = 0; i < 7; ++i) {
    ExpectSameBits(i < from.size() ? from[i] : __builtin_bit_cast(float, 0x7FC00000u), to[i]);
  }
}

void ExpectMatch(const aidl_thermal::TemperatureThreshold& from,
                 const V2_0::TemperatureThreshold& to) {
  EXPECT_EQ(ExpectedType(static_cast<int32_t>(from.type), 9, V2_0::TemperatureType::UNKNOWN),
            to.type);
  EXPECT_STREQ(from.name.c_str(), to.name.c_str());
  ExpectMatch(from.hotThrottlingThresholds, to.hotThrottlingThresholds);
  ExpectMatch(from.coldThrottlingThresholds, to.coldThrottlingThresholds);
  ExpectSameBits(__builtin_bit_cast(float, 0x7FC00000u), to.vrThrottlingThreshold);
}

void ExpectMatch(const aidl_thermal::CoolingDevice& from, const V2_0::CoolingDevice& to) {
  EXPECT_EQ(ExpectedType(static_cast<int32_t>(from.type), 5, V2_0::CoolingType::COMPONENT),
            to.type);
  EXPECT_STREQ(from.name.c_str(), to.name.c_str());
  EXPECT_EQ(static_cast<uint64_t>(from.value), to.value);
}

template <typename Aidl, typename Hidl>
void ExpectMatch(const std::vector<Aidl>& from, const Answer<Hidl>& answer) {
  EXPECT_EQ(kSuccess, answer.status);
  ASSERT_EQ(from.size(), answer.records.size());
  for (size_t i = 0; i < from.size(); ++i) {
    ExpectMatch(from[i], answer.records[i]);
  }
}

// Makes a record of each type, and of types that the interface does not define.
template <typename Record>
std::vector<Record> RecordsOfAllTypes(const std::function<void(Record&, int32_t type)>& fill) {
  std::vector<Record> records;
  for (int32_t type = -2; type <= 25; ++type) {
    Record& record = records.emplace_back();
    record.type = static_cast<decltype(record.type)>(type == -2   ? INT32_MIN
                                                     : type == 25 ? INT32_MAX
                                                                  : type);
    record.name = "sensor " + std::to_string(type);
    fill(record, type);
  }
  return records;
}

std::vector<float> Floats(int count) {
  std::vector<float> floats;
  for (int i = 0; i < count; ++i) {
    floats.push_back(
        __builtin_bit_cast(float, 0x7FC00001u - 0x10101010u * static_cast<uint32_t>(i)));
  }
  return floats;
}

TEST_F(ThermalHidlWrapperTest, ConvertsRecordsFieldByField) {
  const auto temperatures =
      RecordsOfAllTypes<aidl_thermal::Temperature>([](auto& record, int32_t type) {
        record.value = Floats(3 + type).back();
        record.throttlingStatus = static_cast<aidl_thermal::ThrottlingSeverity>(type);
      });
  const auto thresholds =
      RecordsOfAllTypes<aidl_thermal::TemperatureThreshold>([](auto& record, int32_t type) {
        record.hotThrottlingThresholds = Floats((type + 2) % 10);
        record.coldThrottlingThresholds = Floats((type + 5) % 10);
      });
  const auto devices = RecordsOfAllTypes<aidl_thermal::CoolingDevice>(
      [](auto& record, int32_t type) { record.value = type * 0x123456789ABCDEF; });
  service_.SetTemperatures(temperatures);
  service_.SetThresholds(thresholds);
  service_.SetCoolingDevices(devices);
  ExpectMatch(temperatures, client_.Temperatures(false, kSkin));
  ExpectMatch(thresholds, client_.Thresholds(false, kSkin));
  ExpectMatch(devices, client_.CoolingDevices(false, V2_0::CoolingType::FAN));

  EXPECT_EQ(kSuccess, client_.Register(callback_));
  for (const auto& temperature : temperatures) {
    service_.Notify(temperature);
  }
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  ExpectMatch(temperatures, Answer<V2_0::Temperature>{kSuccess, client_.TakeReceived()});
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
    EXPECT_EQ(Failure(kUnsupported), answer.status);
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
  EXPECT_EQ(kSuccess, client_.Register(callback_));
  EXPECT_EQ(Failure("The callback was already registered through wrapper"),
            client_.Register(client_.NewProxy(), true));
  EXPECT_EQ(kSuccess, client_.Register(other.NewProxy()));
  EXPECT_EQ((Calls{"registerThermalChangedCallback", "registerThermalChangedCallback"}),
            service_.TakeCalls());
  EXPECT_EQ(2, service_.CountCallbacks());

  // A callback that the service refused can be registered later.
  HidlThermalClient third;
  service_.Refuse(NotReady);
  EXPECT_EQ(Failure("HAL not ready"), client_.Register(third.NewProxy()));
  service_.Accept();
  EXPECT_EQ(kSuccess, client_.Register(third.NewProxy()));
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

TEST_F(ThermalHidlWrapperTest, NotificationToADeadClientIsDropped) {
  client_.Register(callback_);
  client_.Kill();
  service_.Notify({});
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  EXPECT_TRUE(client_.TakeReceived().empty());
  EXPECT_EQ(kSuccess, client_.Unregister(callback_));
}

TEST_F(ThermalHidlWrapperTest, NotificationsOutliveTheWrapper) {
  client_.Register(callback_);
  client_.Connect(nullptr);
  wrapper_ = nullptr;
  service_.Notify({});
  ASSERT_TRUE(WaitUntilBinderPoolsIdle());
  EXPECT_EQ(1u, client_.TakeReceived().size());
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
  native_handle_t* handle = native_handle_create(1, 0);
  handle->data[0] = STDOUT_FILENO;
  EXPECT_TRUE(wrapper->debug(handle, {"option"}).isOk());
  native_handle_delete(handle);
}

TEST_F(ThermalHidlWrapperTest, DebugDumpsTheService) {
  const auto dump = [this](int descriptors,
                           const hidl_vec<android::hardware::hidl_string>& options) {
    return DumpText([&](int fd) {
      native_handle_t* handle = native_handle_create(descriptors, 1);
      handle->data[0] = fd;
      EXPECT_TRUE(wrapper_->debug(handle, options).isOk());
      native_handle_delete(handle);
    });
  };
  EXPECT_EQ("thermal '-v' 'all sensors' ''\n", dump(1, {"-v", "all sensors", ""}));
  EXPECT_EQ("thermal\n", dump(1, {}));
  EXPECT_EQ("", dump(0, {"-v"})) << "a handle without descriptors";
  EXPECT_TRUE(wrapper_->debug(nullptr, {"-v"}).isOk());
  EXPECT_EQ(2, service_.CountCalls());
  service_.DieAtCall(1, RemoteService::Death::kBeforeCall);
  EXPECT_EQ("", dump(1, {"-v"})) << "without the service there is no text";
  EXPECT_EQ("", dump(1, {}));
}

}  // namespace
