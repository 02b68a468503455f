// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <string>

#include "fake_matcher.h"
#include "fp_host/display_service.h"
#include "fp_host/thermal_service.h"
#include "fp_host/touch_node.h"
#include "scenario.h"
#include "sensor_model.h"

namespace fp_service {

// The phone's state that survives a restart of the service.
struct PhoneState {
  explicit PhoneState(uint64_t seed) : sensor_random(seed), matcher(~seed) {}

  Random sensor_random;
  FakeMatcher::Storage matcher;
  float lux = 100;
  int skin_severity = 0;
};

// The simulated phone around the service: its file tree, touch controller, panel, sensors and
// temperature, and the user's finger.
class Phone {
 public:
  // Units of the touch controller per display pixel.
  static constexpr int kTouchUnitsPerPixel = 10;

  // The device's files lie below `root`. `state` is borrowed.
  Phone(const std::string& root, PhoneState& state);

  // Actions of the user and the environment. PutFinger() returns after the touch node has sent its
  // report.
  void SetTime(time_t at);
  void SetLux(float lux);
  void SetSkinSeverity(int severity);
  void LongPress(int times);
  void PutFinger(int finger, Skin skin, Placement placement);
  void LiftFinger();
  void CrashDisplayHalAtNextCall();
  void RestartDeadHals();       // as init does
  void ReconnectTouchDevice();  // hangs up and reconnects

  // The interface of the sensor's driver.
  void SetExposure(float ms) { sensor_.SetExposure(ms); }
  float GetExposure() const { return sensor_.GetExposure(); }
  Capture CaptureImage();

  FakeMatcher::Storage& GetSecureStorage() { return state_.matcher; }

 private:
  // Creates the files and properties that exist before the service starts.
  struct DeviceSetup {
    explicit DeviceSetup(const std::string& root);
  };

  fp_host::TouchRecord MakeTouchRecord(uint32_t type) const;

  DeviceSetup device_setup_;
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
