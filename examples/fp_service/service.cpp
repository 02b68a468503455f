// SPDX-License-Identifier: Apache-2.0
#include "service.h"

#include <utility>

namespace fp_service {
namespace {

using android::fp_utils::AuthEvent;
using android::fp_utils::AuthEventG7;
using android::fp_utils::AuthStatsG7;
using android::fp_utils::DynamicExposure;

constexpr uint32_t kHistorySize = 100;

// The matcher's side of a failed attempt. Its result codes are those that the library knows reasons
// for; 1 leaves the reason to the metrics.
constexpr uint32_t kTooDark = 1164;
constexpr uint32_t kTooBright = 1513;
constexpr uint32_t kLowQuality = 1014;
constexpr uint32_t kNoMatch = 1;

uint32_t ResultCode(const SensorModel::Capture& capture, bool enrolled) {
  if (enrolled && capture.raw_mean > 2700) {
    return kTooBright;
  }
  if (enrolled && capture.raw_mean < 1300) {
    return kTooDark;
  }
  return enrolled ? kLowQuality : kNoMatch;
}

}  // namespace

Service::Service(SensorModel& sensor)
    : sensor_(sensor), stats_("0", kHistorySize, true), exposure_(DynamicExposure::GetInstance()) {
  stats_.Init();
  exposure_.SetExpoChangedCallback(this, &Service::ExposureChanged);
}

void Service::ExposureChanged(void* context, float expo, float /*base*/) {
  auto& service = *static_cast<Service*>(context);
  service.sensor_.SetExposure(expo);
  ++service.steps_;
}

void Service::Calibrate(const fp_service::Calibrate& calibration) {
  sensor_.SetExposure(calibration.expo_ms);
  exposure_.UpdateCaliExpo(calibration.expo_ms, calibration.base);
}

std::shared_ptr<AuthEventG7> Service::NewRecord(time_t at) {
  auto event = std::static_pointer_cast<AuthEventG7>(stats_.CreateAttempt());
  event->timestamp = at;
  return event;
}

Service::Outcome Service::Record(const std::shared_ptr<AuthEventG7>& event) {
  stats_.AddAttempt(event);
  if (exposure_.IsSupported()) {
    exposure_.FeedAuthAttempt(event);
  }
  return {event, std::exchange(steps_, 0)};
}

Service::Outcome Service::Authenticate(time_t at, int finger, Skin skin) {
  const bool enrolled = finger != 0;
  const SensorModel::Capture capture = sensor_.Touch(skin);
  auto event = NewRecord(at);
  event->acquired_info = AuthEvent::kAcquiredGood;
  event->auth_successful = enrolled && capture.matches;
  event->fid = event->auth_successful ? finger : 0;
  event->latency = 180 + static_cast<int32_t>(sensor_.GetExposure()) + sensor_.Below(40);
  event->iq = capture.quality;
  event->t_cov = capture.coverage_percent;
  event->t_dist = capture.distance_mm;
  event->rawmean_delta = capture.raw_mean;
  if (event->auth_successful) {
    event->match_score = capture.quality * 20 + sensor_.Below(100);
    event->stitch_img_num_ = {1, 1 + sensor_.Below(3), 0, 0, 0};
    event->stitch_img_area_ = {sensor_.Below(4000), sensor_.Below(4000), 0, 0, 0};
  } else {
    event->rc = ResultCode(capture, enrolled);
    event->match_score = sensor_.Below(60);
    event->packed_metric_1 = 230225220;
    event->packed_metric_2 = 90210210;
    event->packed_metric_3 = 125000000;
  }
  return Record(event);
}

Service::Outcome Service::ReportAcquisitionError(time_t at, int info) {
  auto event = NewRecord(at);
  event->acquired_info = static_cast<int8_t>(info);
  return Record(event);
}

void Service::Dump(int fd) {
  stats_.Dump(fd, nullptr, 0);
  exposure_.Dump(fd);
}

}  // namespace fp_service
