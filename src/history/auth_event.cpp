// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/auth_event.h"

#include <cstdio>
#include <iterator>

#include "common/bounded_text.h"
#include "common/exact_class.h"
#include "common/local_time.h"
#include "common/log.h"
#include "history/auth_event_text.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr size_t kTextSize = 128;

// AcquiredInfo names by value. Good (1) never asks for its name.
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

// The fields whose stored form is not their form in the record.
struct StoredForm {
  unsigned long long timestamp = 0;
  uint32_t acquired_info = 0;
  uint32_t auth_successful = 0;

  void StoreInto(AuthEvent& event) const {
    event.timestamp = static_cast<time_t>(timestamp);
    event.acquired_info = static_cast<int8_t>(acquired_info);
    event.auth_successful = auth_successful != 0;
  }
};

// A text as ToBackupString() writes it. False leaves record and text alone.
bool LoadWritten(AuthEvent& event, std::string& text) {
  RecordReader reader(text);
  StoredForm stored;
  AuthEvent read = event;
  if (!reader.HexLong(&stored.timestamp) || !reader.HexField(&stored.acquired_info) ||
      !reader.HexField(&stored.auth_successful) || !reader.HexField(&read.fid) ||
      !reader.HexField(&read.latency) || !reader.HexField(&read.iq)) {
    return false;
  }
  stored.StoreInto(read);
  event = read;
  text.erase(0, reader.Consumed());
  return true;
}

// Any text that scanf takes. Its fields go straight into the record, so that a damaged text leaves
// there what was readable, as it always has.
bool LoadScanned(AuthEvent& event, std::string& text) {
  StoredForm stored;
  const int converted =
      sscanf(text.c_str(), "0x%llx,0x%x,0x%x,0x%x,0x%x,0x%x", &stored.timestamp,
             &stored.acquired_info, &stored.auth_successful, AsUnsigned(&event.fid),
             AsUnsigned(&event.latency), AsUnsigned(&event.iq));
  if (converted < 6) {
    LogParseFailure(
        log_tag::kAuthEvent,
        "virtual bool android::fp_utils::AuthEvent::LoadFromBackupString(std::string &)", text);
    return false;
  }
  stored.StoreInto(event);
  // The pattern is stricter than the scan: a text that only the scan takes stays whole, and a
  // derived record then fails on it.
  RemoveFirstMatch(text, {FieldForm::kHex, FieldForm::kHex, FieldForm::kHex, FieldForm::kHex,
                          FieldForm::kHex, FieldForm::kHex});
  return true;
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
  RecordBuffer buffer;
  return {buffer, WriteAuthEvent(buffer, *this)};
}

char* WriteAuthEvent(char* out, const AuthEvent& event) {
  out = WriteHex(out, static_cast<uint64_t>(event.timestamp));
  out = WriteHexField(out, int32_t{event.acquired_info});  // -1 is 0xffffffff
  out = WriteHexField(out, event.auth_successful ? 1 : 0);
  out = WriteHexField(out, event.fid);
  out = WriteHexField(out, event.latency);
  out = WriteHexField(out, event.iq);
  return out;
}

char* WriteOwnRecord(char* out, const AuthEvent& event) {
  if (const auto* g7 = ExactCast<AuthEventG7>(event)) {
    return WriteAuthEventG7(out, *g7);
  }
  return ExactCast<AuthEvent>(event) != nullptr ? WriteAuthEvent(out, event) : nullptr;
}

bool AuthEvent::LoadFromBackupString(std::string& text) {
  return LoadWritten(*this, text) || LoadScanned(*this, text);
}

std::string AuthEvent::GetClassName() { return "AuthEvent"; }

std::string AuthEvent::GetLocalTime() const { return LocalTimeText(timestamp); }

}  // namespace android::fp_utils
