// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "common/bounded_text.h"
#include "common/exact_class.h"
#include "common/log.h"
#include "fp_utils/finger_sizes.h"
#include "history/finger_size_text.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

char* WriteFingerSize(char* out, const FingerSize& size) {
  out = WriteDecimal(out, size.op);
  *out++ = ',';
  out = WriteFixedPoint(out, size.major, 1);
  *out++ = ',';
  return WriteFixedPoint(out, size.minor, 1);
}

}  // namespace

FingerSize::FingerSize() = default;

FingerSize::FingerSize(int32_t op, float major, float minor) : op{op}, major{major}, minor{minor} {}

FingerSize::~FingerSize() = default;

std::string FingerSize::ToString() const {
  BoundedText<128> text;
  text.Append("op:%d, size:(%.1f, %.1f)", op, major, minor);
  return text.ToString();
}

std::string FingerSize::ToBackupString() const {
  RecordBuffer buffer;
  return {buffer, WriteFingerSize(buffer, *this)};
}

char* WriteOwnRecord(char* out, const FingerSize& size) {
  return ExactCast<FingerSize>(size) != nullptr ? WriteFingerSize(out, size) : nullptr;
}

bool FingerSize::LoadFromBackupString(std::string& text) {
  int scanned_op = 0;
  if (sscanf(text.c_str(), "%d,%f,%f", &scanned_op, &major, &minor) != 3) {
    LogParseFailure(
        log_tag::kFingerSizes,
        "virtual bool android::fp_utils::FingerSize::LoadFromBackupString(std::string &)", text);
    return false;
  }
  op = scanned_op;
  return true;
}

}  // namespace android::fp_utils
