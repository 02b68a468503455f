// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/auth_event.h"

#include <cstdio>
#include <iterator>

#include "common/bounded_text.h"
#include "common/local_time.h"
#include "common/log.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "AuthEvent";
constexpr size_t kTextSize = 128;
constexpr char kFieldTypes[] = "xxxxxx";  // of the record text

// Names of AcquiredInfo, indexed by value. The one of 1 (good) is never printed.
constexpr const char* kAcquisitionErrors[] = {
    "UNKNOWN",    "GOOD",     "PARTIAL",          "INSUFFICIENT",  "SENSOR_DIRTY",
    "TOO_SLOW",   "TOO_FAST", "VENDOR",           "START",         "TOO_DARK",
    "TOO_BRIGHT", "IMMOBILE", "RETRYING_CAPTURE", "LIFT_TOO_SOON", "POWER_PRESS",
};

std::string AcquisitionErrorText(int8_t acquired_info) {
  if (acquired_info < 0 || static_cast<size_t>(acquired_info) >= std::size(kAcquisitionErrors)) {
    return std::to_string(acquired_info);
  }
  return kAcquisitionErrors[acquired_info];
}

}  // namespace

AuthEvent::AuthEvent() : timestamp(time(nullptr)) {}

AuthEvent::~AuthEvent() = default;

std::string AuthEvent::ToDebugString() const {
  BoundedText<kTextSize> text;
  text.Append("%s ", GetLocalTime().c_str());
  if (acquired_info == kAcquiredGood) {
    text.Append("auth_successful:%d, fid:%d, latency:%d, iq:%d", auth_successful, fid, latency, iq);
  } else {
    text.Append("acquisition_error:%s", AcquisitionErrorText(acquired_info).c_str());
  }
  return text.ToString();
}

std::string AuthEvent::ToBackupString() const {
  BoundedText<kTextSize> text;
  text.Append("0x%llx,0x%x,0x%x,0x%x,0x%x,0x%x", static_cast<unsigned long long>(timestamp),
              acquired_info, auth_successful, fid, latency, iq);
  return text.ToString();
}

// sscanf() stores most fields directly in the record, so a record that fails to load keeps the ones
// that were read before the failure.
bool AuthEvent::LoadFromBackupString(std::string& text) {
  unsigned long long stored_time = 0;
  unsigned stored_info = 0;
  unsigned stored_success = 0;
  if (sscanf(text.c_str(), "0x%llx,0x%x,0x%x,0x%x,0x%x,0x%x", &stored_time, &stored_info,
             &stored_success, AsUnsigned(&fid), AsUnsigned(&latency), AsUnsigned(&iq)) < 6) {
    LogParseFailure(
        kTag, "virtual bool android::fp_utils::AuthEvent::LoadFromBackupString(std::string &)",
        text);
    return false;
  }
  timestamp = static_cast<time_t>(stored_time);
  acquired_info = static_cast<int8_t>(stored_info);
  auth_successful = stored_success != 0;
  // The pattern is stricter than sscanf(). If only sscanf() accepts the text, nothing is removed
  // from it, and the derived record then fails to load.
  RemoveFields(text, kFieldTypes);
  return true;
}

std::string AuthEvent::GetClassName() { return "AuthEvent"; }

std::string AuthEvent::GetLocalTime() const { return LocalTimeText(timestamp); }

}  // namespace android::fp_utils
