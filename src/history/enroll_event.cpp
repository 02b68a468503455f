// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event.h"

#include <cstdio>
#include <limits>

#include "common/bounded_text.h"
#include "common/exact_class.h"
#include "common/local_time.h"
#include "common/log.h"
#include "history/enroll_event_text.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

// A text as ToBackupString() writes it. False leaves record and text alone.
bool LoadWritten(EnrollEvent& event, std::string& text) {
  RecordReader reader(text);
  unsigned long long timestamp = 0;
  uint32_t successful = 0;
  EnrollEvent read = event;
  if (!reader.HexLong(&timestamp) || !reader.DecimalField(&read.op) ||
      !reader.HexField(&successful) || !reader.HexField(&read.gid) || !reader.HexField(&read.fid) ||
      !reader.HexField(&read.capture_count) || !reader.FixedPointField(&read.iq_avg) ||
      !reader.HexField(&read.enrolled_fingers_count) ||
      read.op > std::numeric_limits<int32_t>::max()) {
    return false;
  }
  read.timestamp = static_cast<time_t>(timestamp);
  read.enroll_successful = successful != 0;
  event = read;
  text.erase(0, reader.Consumed());
  return true;
}

// Any text that scanf takes; what is not converted by way of a temporary goes straight into the
// record, so that a damaged text leaves there what was readable, as it always has.
bool LoadScanned(EnrollEvent& event, std::string& text) {
  unsigned long long timestamp = 0;
  int op = 0;
  unsigned successful = 0;
  const int converted =
      sscanf(text.c_str(), "0x%llx,%d,0x%x,0x%x,0x%x,0x%x,%f,0x%x", &timestamp, &op, &successful,
             AsUnsigned(&event.gid), AsUnsigned(&event.fid), AsUnsigned(&event.capture_count),
             &event.iq_avg, AsUnsigned(&event.enrolled_fingers_count));
  if (converted < 8) {
    LogParseFailure(
        log_tag::kEnrollEvent,
        "virtual bool android::fp_utils::EnrollEvent::LoadFromBackupString(std::string &)", text);
    return false;
  }
  event.timestamp = static_cast<time_t>(timestamp);
  event.op = static_cast<uint32_t>(op);
  event.enroll_successful = successful != 0;
  // The pattern is stricter than the scan: a text that only the scan takes stays whole, and a
  // derived record then fails on it.
  RemoveFirstMatch(text,
                   {FieldForm::kHex, FieldForm::kDecimal, FieldForm::kHex, FieldForm::kHex,
                    FieldForm::kHex, FieldForm::kHex, FieldForm::kFixedPoint, FieldForm::kHex});
  return true;
}

}  // namespace

EnrollEvent::EnrollEvent() : timestamp(time(nullptr)) {}

EnrollEvent::~EnrollEvent() = default;

std::string EnrollEvent::ToDebugString() const {
  BoundedText<256> text;
  text.Append("%s ", GetLocalTime().c_str());
  if (op == kOpDelete) {
    text.Append("op:DEL, gid:%d, fid:%d", gid, fid);
  } else if (op == kOpAdd) {
    text.Append(
        "op:ADD, enroll_successful:%d, gid:%d, fid:%d, capture_count:%d, iq_avg:%.2f, "
        "enrolled_fingers_count:%d",
        enroll_successful, gid, fid, capture_count, iq_avg, enrolled_fingers_count);
  }
  return text.ToString();
}

std::string EnrollEvent::ToBackupString() const {
  RecordBuffer buffer;
  return {buffer, WriteEnrollEvent(buffer, *this)};
}

char* WriteEnrollEvent(char* out, const EnrollEvent& event) {
  out = WriteHex(out, static_cast<uint64_t>(event.timestamp));
  *out++ = ',';
  out = WriteDecimal(out, static_cast<int32_t>(event.op));
  out = WriteHexField(out, event.enroll_successful ? 1 : 0);
  out = WriteHexField(out, event.gid);
  out = WriteHexField(out, event.fid);
  out = WriteHexField(out, event.capture_count);
  *out++ = ',';
  out = WriteFixedPoint(out, event.iq_avg, 2);
  return WriteHexField(out, event.enrolled_fingers_count);
}

char* WriteOwnRecord(char* out, const EnrollEvent& event) {
  if (const auto* g7 = ExactCast<EnrollEventG7>(event)) {
    return WriteEnrollEventG7(out, *g7);
  }
  return ExactCast<EnrollEvent>(event) != nullptr ? WriteEnrollEvent(out, event) : nullptr;
}

bool EnrollEvent::LoadFromBackupString(std::string& text) {
  return LoadWritten(*this, text) || LoadScanned(*this, text);
}

std::string EnrollEvent::GetLocalTime() const { return LocalTimeText(timestamp); }

}  // namespace android::fp_utils
