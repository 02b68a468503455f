// SPDX-License-Identifier: Apache-2.0
#include "model/causes.h"

#include <fmt/format.h>

#include <cctype>
#include <map>

namespace fp_inspect {
namespace {

// Causes that are derived from the values of an image; the first that applies is used. To add a
// cause, add a row.
struct ValueCause {
  const char* id;
  bool (*applies)(const AuthEventG7&, const Thresholds&);
  std::string (*title)(const Thresholds&);
  const char* meaning;
  bool is_light;
};

constexpr ValueCause kValueCauses[] = {
    {"too_bright",
     [](const AuthEventG7& a, const Thresholds& t) {
       return a.iq < t.iq && a.rawmean_delta > t.high_raw_mean;
     },
     [](const Thresholds& t) {
       return fmt::format("too bright (iq < {}, raw > {})", t.iq, t.high_raw_mean);
     },
     "exposure should step down", true},
    {"too_dark",
     [](const AuthEventG7& a, const Thresholds& t) {
       return a.iq < t.iq && a.rawmean_delta < t.low_raw_mean;
     },
     [](const Thresholds& t) {
       return fmt::format("too dark (iq < {}, raw < {})", t.iq, t.low_raw_mean);
     },
     "exposure should step up", true},
    {"low_coverage",
     [](const AuthEventG7& a, const Thresholds& t) { return a.iq >= t.iq && a.t_cov < t.coverage; },
     [](const Thresholds& t) {
       return fmt::format("low coverage (t_cov < {:.0f} %, iq >= {})", t.coverage, t.iq);
     },
     "not related to exposure: check finger placement, case, screen protector", false},
};

// Hints on acquisition errors and the matcher's reasons, by their names.
const std::map<std::string, const char*>& Meanings() {
  static const std::map<std::string, const char*> meanings = {
      {"TOO_DARK", "the panel did not light up, or the finger is wet"},
      {"TOO_BRIGHT", "ambient light leaks past the finger"},
      {"PARTIAL", "the finger was not fully on the sensor"},
      {"SENSOR_DIRTY", "clean the glass, check the screen protector"},
      {"TOO_FAST", "the finger was lifted during the capture"},
      {"LIFT_TOO_SOON", "the finger was lifted during the capture"},
      {"VENDOR", "vendor-specific error; see the log of the service"},
      {"Low quality", "poor image or finger not enrolled: check iq, coverage and enrollment"},
      {"Image Partial", "the finger covered little of the sensor"},
      {"Foreign matter", "dirt on the glass or the finger"},
      {"Residual", "residual fingerprint on the glass"},
      {"Spoof", "not recognised as a live finger"},
      {"Off target", "the finger missed the sensor"},
      {"Partial off target", "the finger was partly off the sensor"},
      {"Too Dark", "reported by the matcher, although iq is good"},
      {"Too bright", "reported by the matcher, although iq is good"},
  };
  return meanings;
}

Cause NamedCause(const char* family, const char* title, const std::string& name) {
  Cause cause = {.id = family, .title = title + name, .meaning = {}};
  for (const char c : name) {
    cause.id += c == ' ' ? '_' : static_cast<char>(tolower(static_cast<unsigned char>(c)));
  }
  const auto meaning = Meanings().find(name);
  cause.meaning = meaning != Meanings().end() ? meaning->second : "";
  return cause;
}

std::string TextAfter(const std::string& text, const char* prefix) {
  return text.starts_with(prefix) ? text.substr(std::char_traits<char>::length(prefix)) : "";
}

}  // namespace

Thresholds Thresholds::Of(const std::optional<Exposure>& exposure) {
  Thresholds thresholds;
  const auto override_with = [&](const char* name, int32_t* value) {
    if (const auto found = exposure->settings.find(name); found != exposure->settings.end()) {
      *value = static_cast<int32_t>(std::min<uint32_t>(found->second, INT32_MAX));
      thresholds.from_dump = true;
    }
  };
  if (exposure) {
    override_with("kIqThreshold", &thresholds.iq);
    override_with("kHighRawMeanThreshold", &thresholds.high_raw_mean);
    override_with("kLowRawMeanThreshold", &thresholds.low_raw_mean);
  }
  return thresholds;
}

bool IsRejected(const AuthEventG7& attempt) {
  return attempt.acquired_info == AuthEventG7::kAcquiredGood && !attempt.auth_successful;
}

bool IsFailed(const AuthEventG7& attempt) {
  return attempt.acquired_info != AuthEventG7::kAcquiredGood || !attempt.auth_successful;
}

std::string AcquisitionError(const Record& record) {
  const AuthEventG7* const attempt = record.Attempt();
  if (attempt == nullptr || attempt->acquired_info == AuthEventG7::kAcquiredGood) {
    return "";
  }
  const std::string words = DumpText(record);
  return TextAfter(words.substr(0, words.find(',')), "acquisition_error:");
}

std::string MatcherReason(const Record& record) {
  const AuthEventG7* const attempt = record.Attempt();
  if (attempt == nullptr || !record.g7 || !IsRejected(*attempt) || attempt->rc == 0) {
    return "";
  }
  return TextAfter(attempt->GetAuthFailureReason(), "reason:");
}

Cause CauseOf(const Record& record, const Thresholds& thresholds) {
  const AuthEventG7& attempt = *record.Attempt();
  if (!IsRejected(attempt)) {
    return NamedCause("no_image.", "no image: ", AcquisitionError(record));
  }
  for (const ValueCause& cause : kValueCauses) {
    if (record.g7 && cause.applies(attempt, thresholds)) {
      return {cause.id, cause.title(thresholds), cause.meaning, cause.is_light};
    }
  }
  const std::string reason = MatcherReason(record);
  if (!reason.empty() && reason != "Unknown") {
    return NamedCause("matcher.", "matcher: ", reason);
  }
  return {"open", "unexplained",
          "good values and no reason given: finger not enrolled, or poor enrollment"};
}

}  // namespace fp_inspect
