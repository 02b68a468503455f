// SPDX-License-Identifier: Apache-2.0
//
// A program with a class derived from the thermal wrapper. Compiled without RTTI, like the
// interface that the wrapper implements.
#include "fp_utils/thermal_hidl_wrapper.h"

namespace {

using aidl::android::hardware::thermal::ThermalHidlWrapper;
using android::hardware::Return;

class CountingWrapper : public ThermalHidlWrapper {
 public:
  using ThermalHidlWrapper::ThermalHidlWrapper;

  Return<void> getCpuUsages(getCpuUsages_cb cb) override {
    ++calls;
    return ThermalHidlWrapper::getCpuUsages(cb);
  }

  int calls = 0;
};

}  // namespace

int main() {
  const android::sp<CountingWrapper> wrapper(new CountingWrapper(nullptr));
  const android::sp<android::hardware::thermal::V2_0::IThermal> thermal = wrapper;
  int answers = 0;
  thermal->getCpuUsages([&](const auto& /*status*/, const auto& /*usages*/) { ++answers; });
  return wrapper->calls == 1 && answers == 1 ? 0 : 1;
}
