// SPDX-License-Identifier: Apache-2.0
//
// The smallest service: it keeps a history of attempts, adapts the exposure and prints its dump.
// Instead of waiting for fingers, it feeds the library ten images that are too bright.
#include <unistd.h>

#include <cstdio>
#include <memory>

#include <android-base/properties.h>

#include "fp_utils/auth_stats.h"
#include "fp_utils/dynamic_exposure.h"

using namespace android::fp_utils;

class Service {
 public:
  Service() {
    attempts_.Init();
    exposure_.SetExpoChangedCallback(this, [](void* service, float expo_ms, float /*base*/) {
      static_cast<Service*>(service)->expo_ms_ = expo_ms;  // a device's service programs its sensor
    });
    exposure_.UpdateCaliExpo(expo_ms_, 300);
  }

  void RecordReject(int quality, int raw_mean) {
    auto event = std::static_pointer_cast<AuthEventG7>(attempts_.CreateAttempt());
    event->acquired_info = AuthEvent::kAcquiredGood;
    event->iq = quality;
    event->rawmean_delta = raw_mean;
    attempts_.AddAttempt(event);
    exposure_.FeedAuthAttempt(event);
  }

  void Dump(int fd) {
    attempts_.Dump(fd, nullptr, 0);
    exposure_.Dump(fd);
    dprintf(fd, "Exposure: %.1f ms\n", expo_ms_);
  }

 private:
  // With true, the history would be kept in /data/vendor/fingerprint/AuthStats.0.
  AuthStatsG7 attempts_{"0", 100, false};
  DynamicExposure& exposure_ = DynamicExposure::GetInstance();
  float expo_ms_ = 60;  // as calibrated
};

int main() {
  android::base::SetProperty("persist.vendor.udfps.dynamic_exposure_supported", "true");
  Service service;
  for (int i = 0; i < 10; ++i) {
    service.RecordReject(12, 2900);
  }
  service.Dump(STDOUT_FILENO);
}
