// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fp_utils/dynamic_exposure.h"
#include "reading/record.h"

namespace fp_inspect {

// Settings of the exposure controller, by the last part of their property's name
// ("frr_threshold"). A setting that is missing has the library's default.
using Settings = std::map<std::string, uint32_t>;

// Converts the settings of a dump, which uses other names.
Settings SettingsOf(const Exposure& exposure);

using Setting = std::pair<std::string, uint32_t>;

// ParseSetting() takes "frr_threshold=10"; ParseSweep() takes "frr_threshold=10:40:5" for 10, 15
// and so on up to 40. Both throw std::invalid_argument if the controller does not know the name or
// would not accept the value.
Setting ParseSetting(const std::string& text);
std::vector<Setting> ParseSweep(const std::string& text);

struct Calibration {
  // "60:300": milliseconds and the base. Throws std::invalid_argument.
  static Calibration Parse(const std::string& text);

  float expo = 0;
  float base = 0;
};

// The library's controller, as in a service that has just started. Without a calibration it has no
// bounds and no exposure.
//
// Threading:  settings are properties of the process, so only one thread may construct controllers.
class ExposureController {
 public:
  ExposureController(const Settings& settings, const std::optional<Calibration>& calibration);
  ExposureController(const ExposureController&) = delete;
  ExposureController& operator=(const ExposureController&) = delete;

  void Feed(const AuthEventG7& attempt);
  int32_t GetStep() const { return controller_->GetStep(); }
  float GetExpo() const { return expo_; }  // milliseconds; NaN without a calibration

  // The settings and the sample, as a dump of this controller shows them.
  Exposure Dump() const;

 private:
  std::unique_ptr<android::fp_utils::DynamicExposure> controller_;
  const bool is_calibrated_;
  float expo_;
};

}  // namespace fp_inspect
