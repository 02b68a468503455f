// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event.h"

#include <cstdio>

#include "common/bounded_text.h"
#include "common/local_time.h"
#include "common/log.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "EnrollEvent";
constexpr size_t kTextSize = 256;
constexpr char kFieldTypes[] = "xdxxxxfx";  // of the record text

}  // namespace

EnrollEvent::EnrollEvent() : timestamp(time(nullptr)) {}

EnrollEvent::~EnrollEvent() = default;

std::string EnrollEvent::ToDebugString() const {
  BoundedText<kTextSize> text;
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
  BoundedText<kTextSize> text;
  text.Append("0x%llx,%d,0x%x,0x%x,0x%x,0x%x,%.2f,0x%x", static_cast<unsigned long long>(timestamp),
              op, enroll_successful, gid, fid, capture_count, iq_avg, enrolled_fingers_count);
  return text.ToString();
}

// sscanf() stores most fields directly in the record, so a record that fails to load keeps the ones
// that were read before the failure.
bool EnrollEvent::LoadFromBackupString(std::string& text) {
  unsigned long long stored_time = 0;
  int stored_op = 0;
  unsigned stored_success = 0;
  if (sscanf(text.c_str(), "0x%llx,%d,0x%x,0x%x,0x%x,0x%x,%f,0x%x", &stored_time, &stored_op,
             &stored_success, AsUnsigned(&gid), AsUnsigned(&fid), AsUnsigned(&capture_count),
             &iq_avg, AsUnsigned(&enrolled_fingers_count)) < 8) {
    LogParseFailure(
        kTag, "virtual bool android::fp_utils::EnrollEvent::LoadFromBackupString(std::string &)",
        text);
    return false;
  }
  timestamp = static_cast<time_t>(stored_time);
  op = static_cast<uint32_t>(stored_op);
  enroll_successful = stored_success != 0;
  // The pattern is stricter than sscanf(). If only sscanf() accepts the text, nothing is removed
  // from it, and the derived record then fails to load.
  RemoveFields(text, kFieldTypes);
  return true;
}

std::string EnrollEvent::GetLocalTime() const { return LocalTimeText(timestamp); }

}  // namespace android::fp_utils
