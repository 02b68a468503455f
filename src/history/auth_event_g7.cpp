// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "common/bounded_text.h"
#include "common/log.h"
#include "fp_utils/auth_event.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "AuthEventG7";
constexpr size_t kTextSize = 1024;
constexpr int8_t kAcquiredPartial = 2;
constexpr char kLoadSignature[] =
    "virtual bool android::fp_utils::AuthEventG7::LoadFromBackupString(std::string &)";

// Result codes of the matcher that determine the reason.
constexpr uint32_t kRcTooDark = 1164;
constexpr uint32_t kRcImagePartial = 1013;
constexpr uint32_t kRcLowQuality = 1014;
constexpr uint32_t kRcSpoof = 1137;
constexpr uint32_t kRcResidual = 1138;
constexpr uint32_t kRcTooBright = 1513;

// At or below this raw mean delta an image is too dark, whatever the matcher says.
constexpr int32_t kDarkRawmeanDelta = -1001;

// If A of the third metric exceeds this, the finger was on target and the cause is unknown.
constexpr uint32_t kOnTargetMetric = 119;

// The three values of a packed metric. A negative value becomes a very large one and passes every
// lower bound. The limits below were tuned with this effect.
struct Metric {
  explicit Metric(int32_t packed)
      : a(static_cast<uint32_t>(packed / 1000000)),
        b(static_cast<uint32_t>(packed % 1000000 / 1000)),
        c(static_cast<uint32_t>(packed % 1000)) {}

  uint32_t a, b, c;
};

bool IsOnTarget(const Metric& first, const Metric& second) {
  return first.a >= 225 && first.b >= 220 && first.c >= 215 && second.a >= 83 && second.b >= 205 &&
         second.c >= 205;
}

const char* ReasonOfMetrics(const AuthEventG7& event) {
  if (!IsOnTarget(Metric(event.packed_metric_1), Metric(event.packed_metric_2))) {
    return "Off target";
  }
  if (event.foreign_matter_count >= 1) {
    return "Foreign matter";
  }
  return Metric(event.packed_metric_3).a > kOnTargetMetric ? "Unknown" : "Partial off target";
}

// The capitalization varies, but tools that count reasons search for exactly these texts.
const char* Reason(const AuthEventG7& event) {
  if (event.rc == kRcTooDark || event.rawmean_delta <= kDarkRawmeanDelta) {
    return "Too Dark";
  }
  switch (event.rc) {
    case kRcImagePartial:
      return "Image Partial";
    case kRcLowQuality:
      return "Low quality";
    case kRcSpoof:
      return "Spoof";
    case kRcResidual:
      return "Residual";
    case kRcTooBright:
      return "Too bright";
    default:
      return ReasonOfMetrics(event);
  }
}

}  // namespace

AuthEventG7::AuthEventG7() = default;

AuthEventG7::~AuthEventG7() = default;

std::string AuthEventG7::ToDebugString() const {
  BoundedText<kTextSize> text;
  text.Append(", rc:%u, lptw:%u", rc, lptw);
  if (acquired_info == kAcquiredGood) {
    text.Append(", t_cov:%.0f%%, t_dist:%.1fmm, rawmean_delta:%d, match_score:%d", t_cov, t_dist,
                rawmean_delta, match_score);
    if (rc != 0) {
      text.Append(", %s", GetAuthFailureReason().c_str());
    } else {
      const auto& num = stitch_img_num_;
      const auto& area = stitch_img_area_;
      text.Append(", stitch_img_num_:%d_%d_%d_%d_%d", num[0], num[1], num[2], num[3], num[4]);
      text.Append(", stitch_img_area_:%d_%d_%d_%d_%d", area[0], area[1], area[2], area[3], area[4]);
    }
  } else if (acquired_info == kAcquiredPartial) {
    text.Append(", t_cov:%.0f%%, t_dist:%.1fmm", t_cov, t_dist);
  }
  return AuthEvent::ToDebugString() + text.ToString();
}

std::string AuthEventG7::ToBackupString() const {
  const auto& num = stitch_img_num_;
  const auto& area = stitch_img_area_;
  BoundedText<kTextSize> text;
  text.Append(
      ",%.2f,%.2f,%u,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,"
      "0x%x,0x%x,0x%x",
      t_cov, t_dist, lptw, rc, rawmean_delta, packed_metric_1, packed_metric_2, packed_metric_3,
      extra_metric, foreign_matter_count, match_score, num[0], num[1], num[2], num[3], num[4],
      area[0], area[1], area[2], area[3], area[4]);
  return AuthEvent::ToBackupString() + text.ToString();
}

bool AuthEventG7::LoadFromBackupString(std::string& text) {
  if (!AuthEvent::LoadFromBackupString(text)) {
    FP_LOG_ERROR(kTag, "[%s] AuthEvent failed to load '%s'", kLoadSignature, text.c_str());
    return false;
  }
  constexpr int kFields = 21;
  auto& num = stitch_img_num_;
  auto& area = stitch_img_area_;
  if (sscanf(text.c_str(),
             ",%f,%f,%u,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,"
             "0x%x,0x%x,0x%x",
             &t_cov, &t_dist, &lptw, &rc, AsUnsigned(&rawmean_delta), AsUnsigned(&packed_metric_1),
             AsUnsigned(&packed_metric_2), AsUnsigned(&packed_metric_3), AsUnsigned(&extra_metric),
             AsUnsigned(&foreign_matter_count), AsUnsigned(&match_score), AsUnsigned(&num[0]),
             AsUnsigned(&num[1]), AsUnsigned(&num[2]), AsUnsigned(&num[3]), AsUnsigned(&num[4]),
             AsUnsigned(&area[0]), AsUnsigned(&area[1]), AsUnsigned(&area[2]), AsUnsigned(&area[3]),
             AsUnsigned(&area[4])) != kFields) {
    LogParseFailure(kTag, kLoadSignature, text);
    return false;
  }
  return true;
}

std::string AuthEventG7::GetClassName() { return "AuthEventG7"; }

std::string AuthEventG7::GetAuthFailureReason() const {
  return std::string("reason:") + Reason(*this);
}

}  // namespace android::fp_utils
