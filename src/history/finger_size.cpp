// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "common/bounded_text.h"
#include "common/log.h"
#include "fp_utils/finger_sizes.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "FingerSizes";
constexpr size_t kTextSize = 128;

}  // namespace

FingerSize::FingerSize() = default;

FingerSize::FingerSize(int32_t op, float major, float minor) : op{op}, major{major}, minor{minor} {}

FingerSize::~FingerSize() = default;

std::string FingerSize::ToString() const {
  BoundedText<kTextSize> text;
  text.Append("op:%d, size:(%.1f, %.1f)", op, major, minor);
  return text.ToString();
}

std::string FingerSize::ToBackupString() const {
  BoundedText<kTextSize> text;
  text.Append("%d,%.1f,%.1f", op, major, minor);
  return text.ToString();
}

bool FingerSize::LoadFromBackupString(std::string& text) {
  int scanned_op = 0;
  if (sscanf(text.c_str(), "%d,%f,%f", &scanned_op, &major, &minor) != 3) {
    LogParseFailure(
        kTag, "virtual bool android::fp_utils::FingerSize::LoadFromBackupString(std::string &)",
        text);
    return false;
  }
  op = scanned_op;
  return true;
}

}  // namespace android::fp_utils
