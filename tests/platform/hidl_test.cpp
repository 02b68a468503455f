// SPDX-License-Identifier: Apache-2.0
//
// What the stand-in for HIDL is strict about: failures that nobody asks about, the index of an
// array, the identity of proxies, and one-way calls.
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

using thermal::V2_0::IThermal;
using thermal::V2_0::IThermalChangedCallback;
using thermal::V2_0::Temperature;
using thermal::V2_0::TemperatureType;

class LocalCallback : public IThermalChangedCallback {
 public:
  Return<void> notifyThrottling(const Temperature&) override { return Void(); }
};

TEST(HidlDeathTest, FailureThatNobodyAsksAboutAborts) {
  const auto fail = [](status_t error) { return Return<void>(Status::fromStatusT(error)); };
  EXPECT_DEATH(fail(DEAD_OBJECT), "");
  EXPECT_FALSE(fail(DEAD_OBJECT).isOk());
  EXPECT_TRUE(fail(DEAD_OBJECT).isDeadObject());
  EXPECT_DEATH(fail(UNKNOWN_ERROR).isDeadObject(), "") << "not asked about this failure";
  Return<void> moved = fail(DEAD_OBJECT);
  EXPECT_DEATH(Return<void>(std::move(moved)), "");
  EXPECT_FALSE(moved.isOk());
  Void();  // a success needs no question
}

TEST(HidlDeathTest, WrongIndexAborts) {
  hidl_array<float, 7> array = {};
  EXPECT_DEATH(array[7] = 1, "");
  const hidl_vec<int> vector = {1, 2};
  EXPECT_DEATH(static_cast<void>(vector[2]), "");
}

TEST(HidlInterfaces, AreEqualByTheObjectBehindThem) {
  fp_host::HidlThermalClient client, other;
  const sp<IThermalChangedCallback> local = sp<IThermalChangedCallback>(new LocalCallback);
  const sp<IThermalChangedCallback> proxy = client.NewProxy();
  EXPECT_NE(proxy, client.NewProxy());
  EXPECT_TRUE(interfacesEqual(proxy, client.NewProxy()));
  EXPECT_FALSE(interfacesEqual(proxy, other.NewProxy()));
  EXPECT_TRUE(interfacesEqual(local, local));
  EXPECT_FALSE(interfacesEqual(local, proxy));
  EXPECT_FALSE(interfacesEqual(nullptr, proxy));
}

TEST(HidlServices, AreWaitedForOnlyWhereDeclaredAndAnswerOnlyWhileAlive) {
  fp_host::HidlThermalService service;
  EXPECT_EQ(nullptr, IThermal::getService());
  service.Declare();
  EXPECT_EQ(nullptr, IThermal::getService("other"));
  EXPECT_EQ(nullptr, IThermal::getService("default", true)) << "none in this process";
  std::thread starting([&] {
    EXPECT_TRUE(fp_host::WaitForWaitingThreads(1));
    service.Start();
  });
  const sp<IThermal> thermal = IThermal::getService();
  starting.join();
  ASSERT_NE(nullptr, thermal);
  int answers = 0;
  const auto count = [&answers](const auto&, const auto&) { ++answers; };
  EXPECT_TRUE(thermal->getCurrentTemperatures(true, TemperatureType::SKIN, count).isOk());
  service.DieAtCall(1, fp_host::RemoteService::Death::kDuring);
  EXPECT_TRUE(thermal->getCurrentTemperatures(true, TemperatureType::SKIN, count).isDeadObject());
  EXPECT_EQ(1, answers) << "no answer where the transport fails";
}

TEST(HidlCallbacks, OnewayCallsArriveInOrderUnlessTheClientIsDead) {
  fp_host::HidlThermalClient client;
  const sp<IThermalChangedCallback> proxy = client.NewProxy();
  for (int i = 0; i < 20; ++i) {
    Temperature temperature = {};
    temperature.value = static_cast<float>(i);
    EXPECT_TRUE(proxy->notifyThrottling(temperature).isOk());
  }
  ASSERT_TRUE(fp_host::WaitForPools());
  const std::vector<Temperature> received = client.TakeReceived();
  ASSERT_EQ(20u, received.size());
  for (size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(static_cast<float>(i), received[i].value);
  }
  client.Kill();
  EXPECT_TRUE(proxy->notifyThrottling({}).isDeadObject());
}

}  // namespace
}  // namespace android::hardware
