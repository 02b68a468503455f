// SPDX-License-Identifier: Apache-2.0
#include "properties.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include <android-base/properties.h>

namespace fp_service {
namespace {

enum class Kind { kSwitch, kNumber, kPath };

struct Property {
  const char* name;
  Kind kind;
  const char* default_value;  // on this phone, if nothing is set
};

constexpr char kPrefix[] = "persist.vendor.udfps.";

// Names without kPrefix. platform/device/README.md explains the properties.
constexpr Property kProperties[] = {
    {"dynamic_exposure_supported", Kind::kSwitch, "true"},
    {"dynamic.exposure.number_of_attempts", Kind::kNumber, "10"},
    {"dynamic.exposure.expo_change_unit_denominator", Kind::kNumber, "60"},
    {"dynamic.exposure.frr_threshold", Kind::kNumber, "20"},
    {"dynamic.exposure.image_quality_threshold", Kind::kNumber, "28"},
    {"dynamic.exposure.high_raw_mean_threshold", Kind::kNumber, "2500"},
    {"dynamic.exposure.low_raw_mean_threshold", Kind::kNumber, "1500"},
    {"dynamic.exposure.upper_bound_us", Kind::kNumber, "150000"},
    {"dynamic.exposure.lower_bound_us", Kind::kNumber, "10000"},
    {"geometry.rect.x_axis_scan_points", Kind::kNumber, "the width + 1"},
    {"geometry.rect.y_axis_scan_points", Kind::kNumber, "the height + 1"},
    {"fps_touch_handler_supported", Kind::kSwitch, "true"},
    {"fth.touch_dev_path", Kind::kPath, "/dev/fth_fd"},
    {"fth.touch_resolution_scaling_factor", Kind::kNumber, "10"},
};

// Reads the property with the platform's functions, as the library does. Only a valid value gives
// the same result with two different defaults.
bool IsValid(const std::string& name, Kind kind) {
  switch (kind) {
    case Kind::kSwitch:
      return android::base::GetBoolProperty(name, true) ==
             android::base::GetBoolProperty(name, false);
    case Kind::kNumber:
      return android::base::GetUintProperty<uint32_t>(name, 0) ==
             android::base::GetUintProperty<uint32_t>(name, 1);
    case Kind::kPath:
      return !android::base::GetProperty(name, "").empty();
  }
  return false;
}

}  // namespace

std::pair<std::string, std::string> ParseProperty(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos) {
    throw std::invalid_argument("a property must have the form NAME=VALUE");
  }
  const std::string name = text.substr(0, equals);
  const auto* property = std::find_if(
      std::begin(kProperties), std::end(kProperties),
      [&](const Property& candidate) { return name == std::string(kPrefix) + candidate.name; });
  if (property == std::end(kProperties)) {
    throw std::invalid_argument(fmt::format("the library reads no property {}", name));
  }
  const std::string value = text.substr(equals + 1);
  android::base::SetProperty(name, value);
  if (!IsValid(name, property->kind)) {
    throw std::invalid_argument(fmt::format("invalid value \"{}\" for {}; {} would stay in effect",
                                            value, name, property->default_value));
  }
  return {name, value};
}

void SetProperties(const Properties& properties) {
  for (const auto& [name, value] : properties) {
    android::base::SetProperty(name, value);
  }
}

}  // namespace fp_service
