// SPDX-License-Identifier: Apache-2.0
#include "model/exposure_controller.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <charconv>
#include <cmath>

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
constexpr size_t kMaxSweep = 1000;

struct Name {
  const char* property;  // below kPrefix
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

bool IsRead(const std::string& name) {
  for (const Name& known : kNames) {
    if (name == known.property) {
      return true;
    }
  }
  return false;
}

// Asks the platform, as the library does: a text that is not taken gives either default.
std::optional<uint32_t> Taken(const std::string& text) {
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

std::optional<std::pair<std::string, uint32_t>> ParseSetting(const std::string& text,
                                                             std::string* why) {
  const size_t equals = std::min(text.find('='), text.size());
  const std::string name = text.substr(0, equals);
  if (!IsRead(name)) {
    *why = fmt::format("the controller reads no \"{}\", but", name);
    for (const Name& known : kNames) {
      *why += fmt::format(" {}", known.property);
    }
    return std::nullopt;
  }
  const std::string value = equals < text.size() ? text.substr(equals + 1) : "";
  const auto taken = Taken(value);
  if (!taken) {
    *why = fmt::format("{} does not take \"{}\"", name, value);
    return std::nullopt;
  }
  return std::pair(name, *taken);
}

std::vector<std::pair<std::string, uint32_t>> ParseSweep(const std::string& text,
                                                         std::string* why) {
  const size_t first = std::min(text.find(':'), text.size());
  const auto from = ParseSetting(text.substr(0, first), why);
  if (!from) {
    return {};
  }
  const size_t second = text.find(':', first + 1);
  const bool has_three = first < text.size() && second != text.npos;
  const auto to = has_three ? Taken(text.substr(first + 1, second - first - 1)) : std::nullopt;
  const auto by = has_three ? Taken(text.substr(second + 1)) : std::nullopt;
  if (!to || !by || *by == 0 || *to < from->second || (*to - from->second) / *by >= kMaxSweep) {
    *why = fmt::format("\"{}\" is no NAME=FROM:TO:BY of up to {} values", text, kMaxSweep);
    return {};
  }
  std::vector<std::pair<std::string, uint32_t>> values;
  for (uint64_t value = from->second; value <= *to; value += *by) {
    values.emplace_back(from->first, static_cast<uint32_t>(value));
  }
  return values;
}

std::optional<Calibration> Calibration::Parse(const std::string& text) {
  Calibration calibration;
  const char* const end = text.data() + text.size();
  const auto expo = std::from_chars(text.data(), end, calibration.expo);
  if (expo.ec != std::errc() || expo.ptr == end || *expo.ptr != ':') {
    return std::nullopt;
  }
  const auto base = std::from_chars(expo.ptr + 1, end, calibration.base);
  const bool is_whole = base.ec == std::errc() && base.ptr == end;
  return is_whole && std::isnormal(calibration.expo) && calibration.expo > 0 &&
                 std::isnormal(calibration.base) && calibration.base > 0
             ? std::optional(calibration)
             : std::nullopt;
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
  // So large a base that no number of steps comes near a bound.
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
