// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdio>

#include "common/bounded_text.h"
#include "common/log.h"
#include "fp_utils/enroll_event.h"
#include "history/enroll_event_text.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr size_t kPieceSize = 128;
constexpr char kLoadSignature[] =
    "virtual bool android::fp_utils::EnrollEventG7::LoadFromBackupString(std::string &)";

// The tail in the form in which ToBackupString() writes it. False leaves the record alone.
bool LoadWrittenTail(EnrollEventG7& event, const std::string& text) {
  RecordReader reader(text);
  EnrollEventG7 read = event;
  if (!reader.HexField(&read.rc) || !reader.FixedPointField(&read.rawmean_delta) ||
      !reader.HexFields(&read.stitch_img_num_) || !reader.HexFields(&read.stitch_img_area_)) {
    return false;
  }
  event = read;
  return true;
}

// Any tail that scanf takes, straight into the record.
bool LoadScannedTail(EnrollEventG7& event, const std::string& text) {
  constexpr int kFields = 12;
  auto& num = event.stitch_img_num_;
  auto& area = event.stitch_img_area_;
  return sscanf(text.c_str(), ",0x%x,%f,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x",
                AsUnsigned(&event.rc), &event.rawmean_delta, AsUnsigned(&num[0]),
                AsUnsigned(&num[1]), AsUnsigned(&num[2]), AsUnsigned(&num[3]), AsUnsigned(&num[4]),
                AsUnsigned(&area[0]), AsUnsigned(&area[1]), AsUnsigned(&area[2]),
                AsUnsigned(&area[3]), AsUnsigned(&area[4])) == kFields;
}

}  // namespace

EnrollEventG7::EnrollEventG7() = default;

EnrollEventG7::~EnrollEventG7() = default;

std::string EnrollEventG7::ToDebugString() const {
  std::string text = EnrollEvent::ToDebugString() + ", rc:" + std::to_string(rc);
  if (op == kOpDelete) {
    return text;
  }
  const auto append = [&text](const char* format, auto... values) {
    char piece[kPieceSize];
    snprintf(piece, sizeof piece, format, values...);
    text += piece;
  };
  const auto& num = stitch_img_num_;
  const auto& area = stitch_img_area_;
  append(", rawmean_delta:%.2f", rawmean_delta);
  append(", stitch_img_num_:%d_%d_%d_%d_%d", num[0], num[1], num[2], num[3], num[4]);
  append(", stitch_img_area_:%d_%d_%d_%d_%d", area[0], area[1], area[2], area[3], area[4]);
  if (!enroll_successful) {
    text += ", " + GetEnrollFailureReason();
  }
  return text;
}

std::string EnrollEventG7::ToBackupString() const {
  RecordBuffer buffer;
  return {buffer, WriteEnrollEventG7(buffer, *this)};
}

char* WriteEnrollEventG7(char* out, const EnrollEventG7& event) {
  out = WriteEnrollEvent(out, event);
  char* const tail = out;
  out = WriteHexField(out, event.rc);
  *out++ = ',';
  out = WriteFixedPoint(out, event.rawmean_delta, 2);
  out = WriteHexFields(out, event.stitch_img_num_);
  out = WriteHexFields(out, event.stitch_img_area_);
  // The tail has always been limited to this buffer; readers of old and new files see the same.
  return std::min(out, tail + kPieceSize - 1);
}

bool EnrollEventG7::LoadFromBackupString(std::string& text) {
  if (!EnrollEvent::LoadFromBackupString(text)) {
    FP_LOG_ERROR(log_tag::kEnrollEventG7, "[%s] EnrollEvent failed to load '%s'", kLoadSignature,
                 text.c_str());
    return false;
  }
  if (LoadWrittenTail(*this, text) || LoadScannedTail(*this, text)) {
    return true;
  }
  LogParseFailure(log_tag::kEnrollEventG7, kLoadSignature, text);
  return false;
}

std::string EnrollEventG7::GetEnrollFailureReason() const {
  switch (rc) {
    case 1:
      return "reason:Area Small";
    case 2:
      return "reason:Foreign Matter";
    case 3:
      return "reason:Low Image Quality";
    default:
      return "reason:Unknown";
  }
}

}  // namespace android::fp_utils
