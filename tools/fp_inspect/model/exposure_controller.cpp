// SPDX-License-Identifier: Apache-2.0
#include "model/exposure_controller.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include <android-base/file.h>
#include <android-base/properties.h>
#include <android-base/unique_fd.h>

#include "reading/dump_reader.h"

namespace fp_inspect {
namespace {

using android::base::GetUintProperty;
using android::base::SetProperty;
using android::fp_utils::DynamicExposure;

constexpr char kPrefix[] = "persist.vendor.udfps.dynamic.exposure.";
constexpr size_t kMaxSweepValues = 1000;

struct Name {
  const char* property;  // what follows kPrefix
  const char* in_dump;
};
constexpr Name kNames[] = {
    {"number_of_attempts", "kNumberOfAttempts"},
    {"expo_change_unit_denominator", "kExpoChangeUnitDenominator"},
    {"frr_threshold", "kFrrThreshold"},
    {"image_quality_threshold", "kIqThreshold"},
    {"high_raw_mean_threshold", "kHighRawMeanThreshold"},
    {"low_raw_mean_threshold", "kLowRawMeanThreshold"},
    {"upper_bound_us", "kExpoUpperBoundUs"},
    {"lower_bound_us", "kExpoLowerBoundUs"},
};

// Parses the text as the library does, by reading it as a property. For an invalid text both calls
// return their different defaults.
std::optional<uint32_t> ParseAsProperty(const std::string& text) {
  constexpr char kScratch[] = "fp_inspect.value";
  SetProperty(kScratch, text);
  const auto value = GetUintProperty<uint32_t>(kScratch, 0);
  return value == GetUintProperty<uint32_t>(kScratch, 1) ? std::optional(value) : std::nullopt;
}

}  // namespace

Settings SettingsOf(const Exposure& exposure) {
  Settings settings;
  for (const Name& name : kNames) {
    if (const auto found = exposure.settings.find(name.in_dump); found != exposure.settings.end()) {
      settings[name.property] = found->second;
    }
  }
  return settings;
}

Setting ParseSetting(const std::string& text) {
  const size_t equals = std::min(text.find('='), text.size());
  const std::string name = text.substr(0, equals);
  std::string names;
  for (const Name& known : kNames) {
    if (name == known.property) {
      const std::string value = text.substr(std::min(equals + 1, text.size()));
      if (const auto parsed = ParseAsProperty(value)) {
        return {name, *parsed};
      }
      throw std::invalid_argument(fmt::format("invalid value \"{}\" for {}", value, name));
    }
    names += fmt::format(" {}", known.property);
  }
  throw std::invalid_argument(
      fmt::format("unknown setting \"{}\"; valid settings:{}", name, names));
}

std::vector<Setting> ParseSweep(const std::string& text) {
  const size_t first = std::min(text.find(':'), text.size());
  const size_t second = std::min(text.find(':', first + 1), text.size());
  const Setting from = ParseSetting(text.substr(0, first));
  const auto value_after = [&](size_t at, size_t end) {
    return ParseAsProperty(text.substr(std::min(at + 1, text.size()), end - at - 1)).value_or(0);
  };
  const uint32_t to = value_after(first, second);
  const uint32_t by = value_after(second, text.size());
  if (by == 0 || to < from.second || (to - from.second) / by >= kMaxSweepValues) {
    throw std::invalid_argument(
        fmt::format("\"{}\" is not NAME=FROM:TO:BY with 1 to {} values", text, kMaxSweepValues));
  }
  std::vector<Setting> values;
  for (uint64_t value = from.second; value <= to; value += by) {
    values.emplace_back(from.first, static_cast<uint32_t>(value));
  }
  return values;
}

Calibration Calibration::Parse(const std::string& text) {
  Calibration calibration;
  const char* const end = text.data() + text.size();
  const auto expo = std::from_chars(text.data(), end, calibration.expo);
  const char* const colon = std::find(expo.ptr, end, ':');
  const auto base = std::from_chars(colon == end ? end : colon + 1, end, calibration.base);
  if (colon != expo.ptr || base.ptr != end || !std::isnormal(calibration.expo) ||
      !std::isnormal(calibration.base) || calibration.expo < 0 || calibration.base < 0) {
    throw std::invalid_argument(fmt::format("\"{}\" is not MS:BASE, e.g. 60:300", text));
  }
  return calibration;
}

ExposureController::ExposureController(const Settings& settings,
                                       const std::optional<Calibration>& calibration)
    : is_calibrated_(calibration.has_value()), expo_(calibration ? calibration->expo : NAN) {
  SetProperty("persist.vendor.udfps.dynamic_exposure_supported", "true");
  for (const Name& name : kNames) {
    const auto found = settings.find(name.property);
    // An empty property is one that is not set.
    SetProperty(std::string(kPrefix) + name.property,
                found != settings.end() ? std::to_string(found->second) : "");
  }
  if (!calibration) {
    SetProperty(std::string(kPrefix) + "upper_bound_us", std::to_string(UINT32_MAX));
    SetProperty(std::string(kPrefix) + "lower_bound_us", "0");
  }
  controller_ = std::make_unique<DynamicExposure>();
  controller_->SetExpoChangedCallback(this, [](void* context, float expo, float /*base*/) {
    auto& self = *static_cast<ExposureController*>(context);
    self.expo_ = self.is_calibrated_ ? expo : NAN;
  });
  // Without a calibration, the base is so large that steps barely change the exposure, which
  // therefore reaches no bound.
  const Calibration used = calibration.value_or(Calibration{.expo = 1000, .base = 1e9F});
  controller_->UpdateCaliExpo(used.expo, used.base);
}

void ExposureController::Feed(const AuthEventG7& attempt) {
  controller_->FeedAuthAttempt(std::make_shared<AuthEventG7>(attempt));
}

Exposure ExposureController::Dump() const {
  const android::base::unique_fd file(memfd_create("controller", MFD_CLOEXEC));
  controller_->Dump(file.get());
  lseek(file.get(), 0, SEEK_SET);
  std::string text;
  android::base::ReadFdToString(file, &text);
  ByteWindow window = ByteWindow::OfBytes(std::move(text));
  Contents contents;
  ReadDump(window, &contents);
  return contents.exposures.empty() ? Exposure() : std::move(contents.exposures.back());
}

}  // namespace fp_inspect
