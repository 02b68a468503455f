// SPDX-License-Identifier: Apache-2.0
#include "model/zone.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <utility>

namespace fp_inspect {
namespace {

// The variable TZ with which the process was started. The constructor of Zone reads it before any
// Activate() changes it.
const std::optional<std::string>& InitialZone() {
  static const auto zone = [] {
    const char* const name = getenv("TZ");
    return name != nullptr ? std::optional<std::string>(name) : std::nullopt;
  }();
  return zone;
}

}  // namespace

Zone::Zone(std::string name) : name_(std::move(name)) { InitialZone(); }

bool Zone::Exists(const std::string& name) {
  const bool is_posix_form = name.find_first_of("0123456789") >= 3 &&
                             name.find_first_of("0123456789") != name.npos &&
                             name.find('/') == name.npos;
  std::error_code ignored;
  return name.empty() || name == "UTC" || is_posix_form ||
         (name.find("..") == name.npos &&
          std::filesystem::is_regular_file("/usr/share/zoneinfo/" + name, ignored));
}

void Zone::Activate() const {
  static std::optional<std::string> active;
  if (active == name_) {
    return;
  }
  active = name_;
  if (!name_.empty()) {
    setenv("TZ", name_.c_str(), 1);
  } else if (InitialZone()) {
    setenv("TZ", InitialZone()->c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

int64_t Zone::ToEpoch(int64_t wall) const {
  Activate();
  const time_t as_utc = wall;
  tm parts = {};
  gmtime_r(&as_utc, &parts);
  parts.tm_isdst = -1;
  return mktime(&parts);
}

int64_t Zone::ToWall(int64_t epoch) const {
  Activate();
  const time_t seconds = epoch;
  tm parts = {};
  return localtime_r(&seconds, &parts) != nullptr ? timegm(&parts) : epoch;
}

std::string Zone::Text(int64_t epoch, const char* format) const {
  Activate();
  const time_t seconds = epoch;
  tm parts = {};
  if (localtime_r(&seconds, &parts) == nullptr) {
    return std::to_string(epoch);  // the year does not fit, as with a damaged timestamp
  }
  char text[64];
  return {text, strftime(text, sizeof text, format, &parts)};
}

}  // namespace fp_inspect
