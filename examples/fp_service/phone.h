// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <string>

#include "control/display_service.h"
#include "control/thermal_service.h"
#include "control/touch_node.h"
#include "fake_matcher.h"
#include "scenario.h"
#include "sensor_model.h"

namespace fp_service {

// What the phone keeps while the service starts anew.
struct PhoneState {
  explicit PhoneState(uint64_t seed) : sensor_random(seed), matcher(~seed) {}

  Random sensor_random;
  FakeMatcher::Storage matcher;
  float lux = 100;
  int skin_severity = 0;
};

// The simulated phone around the service: its file tree, touch controller, panel, sensors and heat,
// and the user's finger.
class Phone {
 public:
  // The touch controller counts so many units per display pixel.
  static constexpr int kTouchUnitsPerPixel = 10;

  // The device's files lie below `root`. `state` is borrowed.
  Phone(const std::string& root, PhoneState& state);

  // What the user and the surroundings do. A finger that is down was reported by the touch node.
  void SetTime(time_t at);
  void SetLux(float lux);
  void SetSkinSeverity(int severity);
  void LongPress(int times);
  void PutFinger(int finger, Skin skin, Aim aim);
  void LiftFinger();
  void LetDisplayHalDie();  // at its next call
  void RestartDeadHals();   // as init does
  void BlinkTouchDevice();  // it goes away and comes back

  // The sensor's driver, for the service.
  void SetExposure(float ms) { sensor_.SetExposure(ms); }
  float GetExposure() const { return sensor_.GetExposure(); }
  Capture CaptureImage();

  FakeMatcher::Storage& GetSecureStorage() { return state_.matcher; }

 private:
  // Files and properties that are there before anything runs on the phone.
  struct Build {
    explicit Build(const std::string& root);
  };

  fp_host::TouchRecord Report(uint32_t type) const;

  Build build_;
  PhoneState& state_;
  SensorModel sensor_;
  fp_host::TouchNode touch_;
  fp_host::DisplayService display_;
  fp_host::ThermalService thermal_;
  int finger_ = 0;
  Skin skin_ = Skin::kNormal;
  Contact contact_ = {};
};

}  // namespace fp_service
