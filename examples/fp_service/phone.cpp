// SPDX-License-Identifier: Apache-2.0
#include "phone.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numbers>

#include <android-base/properties.h>

#include "fp_host/clock.h"
#include "fp_host/device.h"
#include "fp_host/sensor_service.h"
#include "fp_host/services.h"
#include "touch_format.h"

namespace fp_service {
namespace {

namespace fs = std::filesystem;
using aidl::android::hardware::thermal::TemperatureType;
using aidl::android::hardware::thermal::ThrottlingSeverity;

void WriteFile(const std::string& device_path, const std::string& content) {
  const fs::path path = fp_host::HostPath(device_path);
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}

}  // namespace

Phone::DeviceSetup::DeviceSetup(const std::string& root) {
  fp_host::SetDeviceRoot(root);
  fp_host::BootDevice();
  android::base::SetProperty("persist.vendor.udfps.dynamic_exposure_supported", "true");
  android::base::SetProperty("persist.vendor.udfps.fth.touch_resolution_scaling_factor",
                             std::to_string(kTouchUnitsPerPixel));
  // The board's identity, which the boot loader publishes.
  const std::pair<const char*, char> items[] = {{"platform", 0x11}, {"product", 0x07},
                                                {"stage", 0x20},    {"major", 0x01},
                                                {"minor", 0x02},    {"variant", 0x00}};
  for (const auto& [item, value] : items) {
    WriteFile(std::string("/sys/firmware/devicetree/base/chosen/plat/") + item,
              std::string(3, '\0') + value);
  }
  WriteFile("/dev/trusty-log0", "fingerprint: sensor id 0x2a, calibration page 3\n");
}

Phone::Phone(const std::string& root, PhoneState& state)
    : device_setup_(root), state_(state), sensor_(state.sensor_random) {
  display_.Declare();
  display_.Start();
  thermal_.Declare();
  thermal_.Start();
  SetSkinSeverity(state.skin_severity);
  SetLux(state.lux);
}

void Phone::SetTime(time_t at) { fp_host::StopWallClock(at); }

void Phone::SetLux(float lux) {
  state_.lux = lux;
  fp_host::ReportLux(lux);
}

void Phone::SetSkinSeverity(int severity) {
  state_.skin_severity = severity;
  thermal_.SetTemperatures({{.type = TemperatureType::SKIN,
                             .name = "skin",
                             .value = 30 + 4 * static_cast<float>(severity),
                             .throttlingStatus = static_cast<ThrottlingSeverity>(severity)}});
}

void Phone::LongPress(int times) { fp_host::ReportLongPress(times); }

fp_host::TouchRecord Phone::MakeTouchRecord(uint32_t type) const {
  const auto units = [](float pixels) {
    return static_cast<uint16_t>(std::lround(pixels * kTouchUnitsPerPixel));
  };
  fp_host::TouchRecord record = {.type = type};
  record.coords[touch_format::kX] = units(contact_.x);
  record.coords[touch_format::kY] = units(contact_.y);
  record.coords[touch_format::kMajor] = units(contact_.major);
  record.coords[touch_format::kMinor] = units(contact_.minor);
  record.angle = static_cast<int32_t>(std::lround(contact_.angle * 8192 / std::numbers::pi));
  return record;
}

void Phone::PutFinger(int finger, Skin skin, Placement placement) {
  finger_ = finger;
  skin_ = skin;
  contact_ = sensor_.Touch(placement);
  touch_.Push({MakeTouchRecord(touch_format::kDown)});
}

void Phone::LiftFinger() { touch_.Push({MakeTouchRecord(touch_format::kUp)}); }

void Phone::CrashDisplayHalAtNextCall() {
  display_.DieAtCall(1, fp_host::RemoteService::Death::kBeforeCall);
}

void Phone::RestartDeadHals() {
  if (!display_.IsUp()) {
    fp_host::WaitUntilBinderPoolsIdle();  // until its clients have been told of the death
    display_.Start();
  }
}

void Phone::ReconnectTouchDevice() {
  touch_.HangUp();
  touch_.Reconnect();
}

Capture Phone::CaptureImage() {
  return sensor_.Expose(
      {.finger = finger_, .skin = skin_, .lux = state_.lux, .lit = display_.IsLhbmOn()});
}

}  // namespace fp_service
