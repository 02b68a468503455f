// SPDX-License-Identifier: Apache-2.0
//
// A client that knows HIDL thermal 2.0 alone, on a device that has the AIDL service alone.
#include "fp_utils/thermal_hidl_wrapper.h"

#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "control/hidl_thermal_client.h"
#include "control/thermal_service.h"
#include "support/device_test.h"
#include "thermal_hidl/random_records.h"

namespace {

namespace V1_0 = android::hardware::thermal::V1_0;
namespace V2_0 = android::hardware::thermal::V2_0;
namespace aidl_thermal = aidl::android::hardware::thermal;
using aidl_thermal::ThermalHidlWrapper;
using android::sp;
using android::hardware::hidl_handle;
using android::hardware::hidl_vec;
using fp_host::HidlThermalClient;
using fp_host::ThermalService;
using fp_host::WaitForPools;
using fp_test::RandomRecords;
using ndk::ScopedAStatus;
using Calls = std::vector<std::string>;

constexpr auto kSkin = V2_0::TemperatureType::SKIN;
constexpr char kUnsupported[] = "Operation unsupported by Thermal HIDL wrapper";
constexpr char kNoClient[] = "Thermal AIDL HAL client used by HIDL wrapper was not initialized";

const V1_0::ThermalStatus kSuccess = {V1_0::ThermalStatusCode::SUCCESS, ""};

V1_0::ThermalStatus Failure(const char* message) {
  return {V1_0::ThermalStatusCode::FAILURE, message};
}

ScopedAStatus NotReady() {
  return ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, "HAL not ready");
}

// What a query was answered with, once.
template <typename Record>
struct Answer {
  V1_0::ThermalStatus status;
  std::vector<Record> records;
};

// The HIDL client: each operation checks that it is answered exactly once.
class Client {
 public:
  explicit Client(sp<V2_0::IThermal> thermal) : thermal_(std::move(thermal)) {}

  Answer<V2_0::Temperature> Temperatures(bool filter, V2_0::TemperatureType type) {
    return Ask<V2_0::Temperature>(
        [&](auto cb) { return thermal_->getCurrentTemperatures(filter, type, cb); });
  }
  Answer<V2_0::TemperatureThreshold> Thresholds(bool filter, V2_0::TemperatureType type) {
    return Ask<V2_0::TemperatureThreshold>(
        [&](auto cb) { return thermal_->getTemperatureThresholds(filter, type, cb); });
  }
  Answer<V2_0::CoolingDevice> CoolingDevices(bool filter, V2_0::CoolingType type) {
    return Ask<V2_0::CoolingDevice>(
        [&](auto cb) { return thermal_->getCurrentCoolingDevices(filter, type, cb); });
  }
  V1_0::ThermalStatus Register(const sp<V2_0::IThermalChangedCallback>& callback,
                               bool filter = false, V2_0::TemperatureType type = kSkin) {
    return Do([&](auto cb) {
      return thermal_->registerThermalChangedCallback(callback, filter, type, cb);
    });
  }
  V1_0::ThermalStatus Unregister(const sp<V2_0::IThermalChangedCallback>& callback) {
    return Do([&](auto cb) { return thermal_->unregisterThermalChangedCallback(callback, cb); });
  }

  template <typename Record, typename Operation>
  static Answer<Record> Ask(Operation operation) {
    std::vector<Answer<Record>> answers;
    EXPECT_TRUE(operation([&](const V1_0::ThermalStatus& status, const hidl_vec<Record>& records) {
                  answers.push_back({status, records});
                }).isOk());
    EXPECT_EQ(1u, answers.size());
    return answers.at(0);
  }
  template <typename Operation>
  static V1_0::ThermalStatus Do(Operation operation) {
    std::vector<V1_0::ThermalStatus> answers;
    EXPECT_TRUE(
        operation([&](const V1_0::ThermalStatus& status) { answers.push_back(status); }).isOk());
    EXPECT_EQ(1u, answers.size());
    return answers.at(0);
  }

 private:
  const sp<V2_0::IThermal> thermal_;
};

class ThermalHidlWrapperTest : public ::testing::Test {
 protected:
  ThermalHidlWrapperTest() {
    ABinderProcess_startThreadPool();
    service_.Start();
    const ndk::SpAIBinder binder(AServiceManager_checkService(service_.GetInstance().c_str()));
    wrapper_ =
        sp<V2_0::IThermal>(new ThermalHidlWrapper(aidl_thermal::IThermal::fromBinder(binder)));
  }

  ThermalService service_;
  sp<V2_0::IThermal> wrapper_;
  HidlThermalClient hidl_client_;
  const sp<V2_0::IThermalChangedCallback> callback_ = hidl_client_.NewProxy();
};

// What each kind of record becomes, field by field, for every value that an enumeration of either
// side has and for values that neither has.

template <typename HidlType>
HidlType ExpectedType(int32_t aidl_type, int32_t last, HidlType other) {
  return aidl_type >= 0 && aidl_type <= last ? static_cast<HidlType>(aidl_type) : other;
}

void ExpectSameBits(float expected, float actual) {
  EXPECT_EQ(std::bit_cast<uint32_t>(expected), std::bit_cast<uint32_t>(actual));
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
    ExpectSameBits(i < from.size() ? from[i] : std::bit_cast<float>(0x7FC00000u), to[i]);
  }
}

void ExpectMatch(const aidl_thermal::TemperatureThreshold& from,
                 const V2_0::TemperatureThreshold& to) {
  EXPECT_EQ(ExpectedType(static_cast<int32_t>(from.type), 9, V2_0::TemperatureType::UNKNOWN),
            to.type);
  EXPECT_STREQ(from.name.c_str(), to.name.c_str());
  ExpectMatch(from.hotThrottlingThresholds, to.hotThrottlingThresholds);
  ExpectMatch(from.coldThrottlingThresholds, to.coldThrottlingThresholds);
  ExpectSameBits(std::bit_cast<float>(0x7FC00000u), to.vrThrottlingThreshold);
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

TEST_F(ThermalHidlWrapperTest, ConvertsRecordsFieldByField) {
  Client client(wrapper_);
  RandomRecords random(1);
  EXPECT_EQ(kSuccess, client.Register(callback_));
  for (int i = 0; i < fp_test::Share(400); ++i) {
    const auto temperatures = random.Temperatures();
    const auto thresholds = random.Thresholds();
    const auto devices = random.CoolingDevices();
    service_.SetTemperatures(temperatures);
    service_.SetThresholds(thresholds);
    service_.SetCoolingDevices(devices);
    ExpectMatch(temperatures, client.Temperatures(false, kSkin));
    ExpectMatch(thresholds, client.Thresholds(false, kSkin));
    ExpectMatch(devices, client.CoolingDevices(false, V2_0::CoolingType::FAN));

    for (const auto& temperature : temperatures) {
      service_.Notify(temperature);
    }
    ASSERT_TRUE(WaitForPools());
    ExpectMatch(temperatures, Answer<V2_0::Temperature>{kSuccess, hidl_client_.TakeReceived()});
  }
}

// The kinds that only one side knows, spelled out.
TEST_F(ThermalHidlWrapperTest, FoldsKindsThatHidlDoesNotKnow) {
  const std::pair<int32_t, int32_t> kTemperatureTypes[] = {
      {-1, -1}, {0, 0}, {3, 3}, {9, 9}, {10, -1}, {19, -1}, {INT32_MAX, -1}, {INT32_MIN, -1}};
  const std::pair<int32_t, uint32_t> kCoolingTypes[] = {{0, 0},  {5, 5},  {6, 6},        {7, 6},
                                                        {14, 6}, {-1, 6}, {INT32_MIN, 6}};
  Client client(wrapper_);
  for (const auto& [from, to] : kTemperatureTypes) {
    aidl_thermal::Temperature temperature;
    temperature.type = static_cast<aidl_thermal::TemperatureType>(from);
    service_.SetTemperatures({temperature});
    EXPECT_EQ(static_cast<V2_0::TemperatureType>(to),
              client.Temperatures(false, kSkin).records.at(0).type);
  }
  for (const auto& [from, to] : kCoolingTypes) {
    aidl_thermal::CoolingDevice device;
    device.type = static_cast<aidl_thermal::CoolingType>(from);
    service_.SetCoolingDevices({device});
    EXPECT_EQ(static_cast<V2_0::CoolingType>(to),
              client.CoolingDevices(false, V2_0::CoolingType::FAN).records.at(0).type);
  }
}

TEST_F(ThermalHidlWrapperTest, PassesFiltersOnUnchanged) {
  Client client(wrapper_);
  const auto odd = static_cast<V2_0::TemperatureType>(17);
  EXPECT_EQ(kSuccess, client.Temperatures(true, kSkin).status);
  client.Temperatures(false, kSkin);
  client.Temperatures(true, odd);
  client.Thresholds(true, V2_0::TemperatureType::UNKNOWN);
  client.Thresholds(false, kSkin);
  client.CoolingDevices(true, V2_0::CoolingType::COMPONENT);
  client.CoolingDevices(false, V2_0::CoolingType::FAN);
  client.Register(callback_, true, odd);
  client.Unregister(callback_);
  client.Register(callback_, false, odd);
  EXPECT_EQ((Calls{"getTemperaturesWithType 3", "getTemperatures", "getTemperaturesWithType 17",
                   "getTemperatureThresholdsWithType -1", "getTemperatureThresholds",
                   "getCoolingDevicesWithType 6", "getCoolingDevices",
                   "registerThermalChangedCallbackWithType 17", "unregisterThermalChangedCallback",
                   "registerThermalChangedCallback"}),
            service_.TakeCalls());
}

TEST_F(ThermalHidlWrapperTest, ReportsTheMessageOfTheService) {
  Client client(wrapper_);
  service_.SetTemperatures({{}, {}});
  service_.Refuse(NotReady);
  const auto expect_failures = [&](const char* message) {
    const V1_0::ThermalStatus failure = Failure(message);
    const auto temperatures = client.Temperatures(true, kSkin);
    EXPECT_EQ(failure, temperatures.status);
    EXPECT_TRUE(temperatures.records.empty());
    EXPECT_EQ(failure, client.Thresholds(false, kSkin).status);
    EXPECT_EQ(failure, client.CoolingDevices(false, V2_0::CoolingType::FAN).status);
    EXPECT_EQ(failure, client.Register(callback_));
  };
  expect_failures("HAL not ready");
  service_.Kill();
  expect_failures("");
}

TEST_F(ThermalHidlWrapperTest, DoesNotSupportTheQueriesOfHidl1) {
  const auto expect_unsupported = [](const auto& answer) {
    EXPECT_EQ(Failure(kUnsupported), answer.status);
    EXPECT_TRUE(answer.records.empty());
  };
  expect_unsupported(
      Client::Ask<V1_0::Temperature>([&](auto cb) { return wrapper_->getTemperatures(cb); }));
  expect_unsupported(
      Client::Ask<V1_0::CpuUsage>([&](auto cb) { return wrapper_->getCpuUsages(cb); }));
  expect_unsupported(
      Client::Ask<V1_0::CoolingDevice>([&](auto cb) { return wrapper_->getCoolingDevices(cb); }));
  EXPECT_TRUE(service_.TakeCalls().empty());
}

TEST_F(ThermalHidlWrapperTest, RegistersEachCallbackOnce) {
  Client client(wrapper_);
  HidlThermalClient other;
  EXPECT_EQ(Failure("Invalid nullptr callback"), client.Register(nullptr));
  EXPECT_EQ(kSuccess, client.Register(callback_));
  EXPECT_EQ(Failure("The callback was already registered through wrapper"),
            client.Register(hidl_client_.NewProxy(), true));
  EXPECT_EQ(kSuccess, client.Register(other.NewProxy()));
  EXPECT_EQ((Calls{"registerThermalChangedCallback", "registerThermalChangedCallback"}),
            service_.TakeCalls());
  EXPECT_EQ(2, service_.CountCallbacks());

  // A callback that the service did not take may try again.
  HidlThermalClient third;
  service_.Refuse(NotReady);
  EXPECT_EQ(Failure("HAL not ready"), client.Register(third.NewProxy()));
  service_.Accept();
  EXPECT_EQ(kSuccess, client.Register(third.NewProxy()));
}

TEST_F(ThermalHidlWrapperTest, UnregistersWhatIsRegistered) {
  Client client(wrapper_);
  EXPECT_EQ(Failure("Invalid nullptr callback"), client.Unregister(nullptr));
  EXPECT_EQ(Failure("The callback was not registered through wrapper before"),
            client.Unregister(callback_));
  EXPECT_TRUE(service_.TakeCalls().empty());
  client.Register(callback_);
  service_.Refuse(NotReady);
  EXPECT_EQ(Failure("HAL not ready"), client.Unregister(callback_));
  service_.Accept();
  service_.Notify({});
  ASSERT_TRUE(WaitForPools());
  EXPECT_EQ(1u, hidl_client_.TakeReceived().size()) << "still registered";
  EXPECT_EQ(Failure("The callback was already registered through wrapper"),
            client.Register(callback_));
  EXPECT_EQ(kSuccess, client.Unregister(hidl_client_.NewProxy())) << "another proxy of it";
  EXPECT_EQ(0, service_.CountCallbacks());
  EXPECT_EQ(kSuccess, client.Register(callback_));
}

TEST_F(ThermalHidlWrapperTest, NotificationToADeadClientIsDropped) {
  Client client(wrapper_);
  client.Register(callback_);
  hidl_client_.Kill();
  service_.Notify({});
  ASSERT_TRUE(WaitForPools());
  EXPECT_TRUE(hidl_client_.TakeReceived().empty());
  EXPECT_EQ(kSuccess, client.Unregister(callback_));
}

TEST_F(ThermalHidlWrapperTest, NotificationsOutliveTheWrapper) {
  Client(wrapper_).Register(callback_);
  wrapper_ = nullptr;
  service_.Notify({});
  ASSERT_TRUE(WaitForPools());
  EXPECT_EQ(1u, hidl_client_.TakeReceived().size());
}

TEST(ThermalHidlWrapperWithoutClient, ReportsSoAndDoesNothingElse) {
  const sp<V2_0::IThermal> wrapper = sp<V2_0::IThermal>(new ThermalHidlWrapper(nullptr));
  Client client(wrapper);
  HidlThermalClient hidl_client;
  EXPECT_EQ(Failure(kNoClient), client.Temperatures(true, kSkin).status);
  EXPECT_EQ(Failure(kNoClient), client.Thresholds(true, kSkin).status);
  EXPECT_EQ(Failure(kNoClient), client.CoolingDevices(true, V2_0::CoolingType::FAN).status);
  EXPECT_EQ(Failure(kNoClient), client.Register(hidl_client.NewProxy()));
  EXPECT_EQ(Failure(kNoClient), client.Unregister(nullptr)) << "the missing client comes first";
  native_handle_t* handle = native_handle_create(1, 0);
  handle->data[0] = STDOUT_FILENO;
  EXPECT_TRUE(wrapper->debug(handle, {"option"}).isOk());
  native_handle_delete(handle);
}

TEST_F(ThermalHidlWrapperTest, DebugDumpsTheService) {
  const auto dump = [this](int descriptors,
                           const hidl_vec<android::hardware::hidl_string>& options) {
    return fp_test::DumpText([&](int fd) {
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
  service_.DieAtCall(1, fp_host::RemoteService::Death::kBefore);
  EXPECT_EQ("", dump(1, {"-v"})) << "no service, no text, no harm";
  EXPECT_EQ("", dump(1, {}));
}

}  // namespace
