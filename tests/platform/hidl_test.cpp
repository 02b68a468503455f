// SPDX-License-Identifier: Apache-2.0
//
// The rules of HIDL that the stand-in enforces: failures must be checked, and proxies be compared
// by their object.
#include <gtest/gtest.h>

#include <utility>

#include <android/hardware/thermal/2.0/IThermal.h>
#include <hidl/HidlTransportSupport.h>

#include "fp_host/hidl_thermal_client.h"

namespace android::hardware {
namespace {

using thermal::V2_0::IThermalChangedCallback;
using thermal::V2_0::Temperature;

class LocalCallback : public IThermalChangedCallback {
 public:
  Return<void> notifyThrottling(const Temperature&) override { return Void(); }
};

TEST(HidlDeathTest, UncheckedFailureAborts) {
  const auto fail = [](status_t error) { return Return<void>(Status::fromStatusT(error)); };
  EXPECT_DEATH(fail(DEAD_OBJECT), "");
  EXPECT_FALSE(fail(DEAD_OBJECT).isOk());
  EXPECT_TRUE(fail(DEAD_OBJECT).isDeadObject());
  EXPECT_DEATH(fail(UNKNOWN_ERROR).isDeadObject(), "") << "which checks for another failure";
  Return<void> moved = fail(DEAD_OBJECT);
  EXPECT_DEATH(Return<void>(std::move(moved)), "");
  EXPECT_FALSE(moved.isOk());
  Void();  // an unchecked success is not an error
}

TEST(HidlInterfaces, AreEqualByTheObjectBehindThemAndFailWhenItIsDead) {
  fp_host::HidlThermalClient client, other;
  const sp<IThermalChangedCallback> local = sp<IThermalChangedCallback>(new LocalCallback);
  const sp<IThermalChangedCallback> proxy = client.NewProxy();
  EXPECT_NE(proxy, client.NewProxy());
  EXPECT_TRUE(interfacesEqual(proxy, client.NewProxy()));
  EXPECT_FALSE(interfacesEqual(proxy, other.NewProxy()));
  EXPECT_TRUE(interfacesEqual(local, local));
  EXPECT_FALSE(interfacesEqual(local, proxy));
  EXPECT_FALSE(interfacesEqual(nullptr, proxy));
  EXPECT_TRUE(proxy->notifyThrottling({}).isOk());
  client.Kill();
  EXPECT_TRUE(proxy->notifyThrottling({}).isDeadObject());
}

}  // namespace
}  // namespace android::hardware
