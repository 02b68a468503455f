// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "common/bounded_text.h"
#include "common/log.h"
#include "fp_utils/enroll_event.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "EnrollEventG7";
constexpr size_t kPieceSize = 128;
constexpr char kLoadSignature[] =
    "virtual bool android::fp_utils::EnrollEventG7::LoadFromBackupString(std::string &)";

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
  const auto& num = stitch_img_num_;
  const auto& area = stitch_img_area_;
  // Truncated to this buffer, as in existing files.
  BoundedText<kPieceSize> text;
  text.Append(",0x%x,%.2f,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x", rc, rawmean_delta,
              num[0], num[1], num[2], num[3], num[4], area[0], area[1], area[2], area[3], area[4]);
  return EnrollEvent::ToBackupString() + text.ToString();
}

bool EnrollEventG7::LoadFromBackupString(std::string& text) {
  if (!EnrollEvent::LoadFromBackupString(text)) {
    FP_LOG_ERROR(kTag, "[%s] EnrollEvent failed to load '%s'", kLoadSignature, text.c_str());
    return false;
  }
  constexpr int kFields = 12;
  auto& num = stitch_img_num_;
  auto& area = stitch_img_area_;
  if (sscanf(text.c_str(), ",0x%x,%f,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x",
             AsUnsigned(&rc), &rawmean_delta, AsUnsigned(&num[0]), AsUnsigned(&num[1]),
             AsUnsigned(&num[2]), AsUnsigned(&num[3]), AsUnsigned(&num[4]), AsUnsigned(&area[0]),
             AsUnsigned(&area[1]), AsUnsigned(&area[2]), AsUnsigned(&area[3]),
             AsUnsigned(&area[4])) != kFields) {
    LogParseFailure(kTag, kLoadSignature, text);
    return false;
  }
  return true;
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
