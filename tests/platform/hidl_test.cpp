// SPDX-License-Identifier: Apache-2.0
//
// The rules that the stand-in for HIDL keeps: results, support types, services and proxies.
#include <fcntl.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include <android/hardware/thermal/2.0/IThermal.h>
#include <hidl/HidlTransportSupport.h>

#include "control/hidl_thermal_client.h"
#include "control/hidl_thermal_service.h"
#include "support/device_test.h"

namespace android::hardware {
namespace {

using thermal::V1_0::ThermalStatus;
using thermal::V1_0::ThermalStatusCode;
using thermal::V2_0::IThermal;
using thermal::V2_0::IThermalChangedCallback;
using thermal::V2_0::Temperature;
using thermal::V2_0::TemperatureType;
using thermal::V2_0::ThrottlingSeverity;
using Death = fp_host::RemoteService::Death;

Temperature Skin(float value) {
  return {TemperatureType::SKIN, "skin", value, ThrottlingSeverity::LIGHT};
}

class LocalCallback : public IThermalChangedCallback {
 public:
  Return<void> notifyThrottling(const Temperature&) override { return Void(); }
};

TEST(HidlReturn, FailureMustBeAskedFor) {
  const auto fail = [] { return Return<void>(Status::fromStatusT(DEAD_OBJECT)); };
  EXPECT_DEATH(fail(), "");
  EXPECT_DEATH(Void() = fail(), "");
  EXPECT_FALSE(fail().isOk());
  EXPECT_TRUE(fail().isDeadObject());
  EXPECT_FALSE(Return<void>(Status::fromStatusT(UNKNOWN_ERROR)).isDeadObject());
  Return<void> moved = fail();
  Return<void> taken = std::move(moved);
  EXPECT_TRUE(moved.isOk()) << "asked for where it has gone";
  EXPECT_FALSE(taken.isOk());
  Void();  // a success needs no question
}

TEST(HidlTypes, Strings) {
  EXPECT_EQ("", hidl_string(nullptr));
  const hidl_string text = std::string("abc");
  EXPECT_EQ(std::string("abc"), static_cast<std::string>(text));
  EXPECT_TRUE(text == "abc" && "abc" == text && text != hidl_string("abd") && text < "abd");
  EXPECT_EQ(hidl_string("abc"), hidl_string(std::string("abc\0def", 7))) << "up to the first NUL";
}

TEST(HidlTypes, Vectors) {
  const std::vector<int> numbers = {1, 2, 3};
  hidl_vec<int> vector = numbers;
  EXPECT_EQ((hidl_vec<int>{1, 2, 3}), vector);
  EXPECT_EQ((hidl_vec<int>{1, 2}), hidl_vec<int>(numbers.begin(), numbers.begin() + 2));
  EXPECT_EQ(numbers, static_cast<std::vector<int>>(vector));
  vector.resize(4);
  EXPECT_EQ((hidl_vec<int>{1, 2, 3, 0}), vector) << "new elements are zero";

  int borrowed[] = {4, 5};
  vector.setToExternal(borrowed, 2);
  const hidl_vec<int> copy = vector;
  borrowed[0] = 9;
  EXPECT_EQ((hidl_vec<int>{9, 5}), vector);
  EXPECT_EQ((hidl_vec<int>{4, 5}), copy) << "a copy is its own";
  const hidl_vec<int> moved = std::move(vector);
  EXPECT_EQ(borrowed, moved.data());
  EXPECT_NE(copy, moved);
}

TEST(HidlTypes, Arrays) {
  const std::array<float, 3> numbers = {1, 2, 3};
  const hidl_array<float, 3> array = numbers;
  const hidl_array<float, 3> other = numbers.data();
  EXPECT_EQ(array, other);
  EXPECT_EQ(numbers, (static_cast<std::array<float, 3>>(array)));
  EXPECT_EQ(3u, array.size());
  const thermal::V2_0::TemperatureThreshold zero = {};
  EXPECT_EQ(0.0F, zero.hotThrottlingThresholds[6]);
}

TEST(HidlTypes, HandlesBorrowUntilTheyAreCopied) {
  const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
  native_handle_t* native = native_handle_create(1, 0);
  native->data[0] = fd;
  const auto is_open = [](int number) { return fcntl(number, F_GETFD) >= 0; };
  int duplicate = -1;
  {
    const hidl_handle borrowed = native;
    EXPECT_EQ(native, borrowed.getNativeHandle());
    const hidl_handle copy = borrowed;
    duplicate = copy->data[0];
    EXPECT_NE(fd, duplicate);
    EXPECT_TRUE(is_open(duplicate));
    EXPECT_EQ(nullptr, hidl_handle().getNativeHandle());
    EXPECT_EQ(nullptr, hidl_handle(hidl_handle()).getNativeHandle());
  }
  EXPECT_TRUE(is_open(fd));
  EXPECT_FALSE(is_open(duplicate));
  hidl_handle owner;
  owner.setTo(native, true);
  const hidl_handle next_owner = std::move(owner);
  EXPECT_EQ(nullptr, owner.getNativeHandle());
  EXPECT_EQ(native, next_owner.getNativeHandle());
}

TEST(HidlInterfaces, AreEqualByWhatTheyStandFor) {
  fp_host::HidlThermalClient client;
  fp_host::HidlThermalClient other;
  const sp<IThermalChangedCallback> local = sp<IThermalChangedCallback>(new LocalCallback);
  const sp<IThermalChangedCallback> proxy = client.NewProxy();
  EXPECT_NE(proxy, client.NewProxy());
  EXPECT_TRUE(interfacesEqual(proxy, client.NewProxy()));
  EXPECT_FALSE(interfacesEqual(proxy, other.NewProxy()));
  EXPECT_TRUE(interfacesEqual(local, local));
  EXPECT_FALSE(interfacesEqual(local, proxy));
  EXPECT_FALSE(interfacesEqual(local, sp<IThermalChangedCallback>(new LocalCallback)));
  EXPECT_FALSE(interfacesEqual(nullptr, proxy));
  EXPECT_TRUE(interfacesEqual(nullptr, nullptr));
}

TEST(HidlServices, AreWaitedForOnlyWhereDeclared) {
  fp_host::HidlThermalService service;
  EXPECT_EQ("android.hardware.thermal@2.0::IThermal/default", service.GetInstance());
  EXPECT_EQ(nullptr, IThermal::getService());
  service.Declare();
  EXPECT_EQ(nullptr, IThermal::getService("other"));
  EXPECT_EQ(nullptr, IThermal::getService(true)) << "no implementation in this process";
  std::thread starting([&] {
    EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
    service.Start();
  });
  const sp<IThermal> first = IThermal::getService("default", false);
  starting.join();
  ASSERT_NE(nullptr, first);
  const sp<IThermal> second = IThermal::getService();
  EXPECT_NE(first, second);
  EXPECT_TRUE(interfacesEqual(first, second));
  EXPECT_TRUE(first->isRemote());
}

// Callbacks that take their parameters by value are as good as others.
TEST(HidlServices, AnswerThroughTheCallbackOnceOrNotAtAll) {
  fp_host::HidlThermalService service;
  service.Declare();
  service.Start();
  service.SetTemperatures(
      {Skin(30), {TemperatureType::CPU, "cpu", 60, ThrottlingSeverity::NONE}, Skin(31)});
  const sp<IThermal> proxy = IThermal::getService();
  int answers = 0;
  std::vector<Temperature> received;
  const auto take = [&](ThermalStatus status, hidl_vec<Temperature> temperatures) {
    EXPECT_EQ(ThermalStatusCode::SUCCESS, status.code);
    received = temperatures;
    ++answers;
  };
  EXPECT_TRUE(proxy->getCurrentTemperatures(true, TemperatureType::SKIN, take).isOk());
  EXPECT_EQ((std::vector{Skin(30), Skin(31)}), received);
  EXPECT_TRUE(proxy->getCurrentTemperatures(false, TemperatureType::SKIN, take).isOk());
  EXPECT_EQ(3u, received.size());

  service.DieAtCall(1, Death::kDuring);
  EXPECT_TRUE(proxy->getCurrentTemperatures(false, TemperatureType::SKIN, take).isDeadObject());
  EXPECT_TRUE(proxy->debug(nullptr, {}).isDeadObject());
  EXPECT_EQ(2, answers);
}

TEST(HidlServices, ServerThatAnswersTwiceOrNeverIsEnded) {
  fp_host::HidlThermalService service;
  service.Declare();
  service.Start();
  const sp<IThermal> proxy = IThermal::getService();
  const auto ignore = [](const ThermalStatus&, const hidl_vec<Temperature>&) {};
  for (const int answers : {0, 2}) {
    service.SetAnswersPerCall(answers);
    EXPECT_DEATH(proxy->getCurrentTemperatures(false, TemperatureType::SKIN, ignore).isOk(), "");
  }
}

TEST(HidlCallbacks, OnewayCallsArriveInOrderUnlessTheClientIsDead) {
  fp_host::HidlThermalClient client;
  const sp<IThermalChangedCallback> proxy = client.NewProxy();
  for (int i = 0; i < 20; ++i) {
    EXPECT_TRUE(proxy->notifyThrottling(Skin(static_cast<float>(i))).isOk());
  }
  ASSERT_TRUE(fp_host::WaitForPools());
  const std::vector<Temperature> received = client.TakeReceived();
  ASSERT_EQ(20u, received.size());
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(Skin(static_cast<float>(i)), received[i]);
  }
  client.Kill();
  EXPECT_TRUE(proxy->notifyThrottling(Skin(0)).isDeadObject());
}

}  // namespace
}  // namespace android::hardware
