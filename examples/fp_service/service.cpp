// SPDX-License-Identifier: Apache-2.0
#include "service.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>
#include <utility>

#include <android/binder_process.h>

#include "fp_utils/critical_errors.h"
#include "fp_utils/dev_cdt_info.h"

namespace fp_service {
namespace {

using android::fp_utils::AlsMonitor;
using android::fp_utils::AuthEvent;
using android::fp_utils::AuthEventG7;
using android::fp_utils::Circle;
using android::fp_utils::CriticalErrors;
using android::fp_utils::DevCdtInfo;
using android::fp_utils::DynamicExposure;
using android::fp_utils::Ellipse;
using android::fp_utils::EnrollEvent;
using android::fp_utils::EnrollEventG7;
using android::fp_utils::ErrorEvent;
using android::fp_utils::FingerSize;
using android::fp_utils::FpsInitInfo;
using android::fp_utils::Thermal;

constexpr uint32_t kAttemptsKept = 100;
constexpr uint32_t kSizesKept = 500;

// The numbers of the service's operations in its records of finger sizes.
constexpr int32_t kOpAuthenticate = 1;
constexpr int32_t kOpEnroll = 2;

// The platform's AcquiredInfo.
constexpr int8_t kAcquiredVendor = 7;
constexpr int8_t kAcquiredTooDark = 9;
constexpr int32_t kUnlitRawMean = 300;  // any finger is brighter while the panel is lit

// The library waits only 10 ms for the thermal HAL, because a service may be unable to wait longer.
// This service can.
void WaitForThermalHal() {
  constexpr int kTimeoutMs = 1000;
  for (int i = 0; i < kTimeoutMs && Thermal::GetInstance().GetCpuSeverity() == -ENODEV; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace

Service::Service(Phone& phone)
    : phone_(phone),
      matcher_(phone.GetSecureStorage()),
      attempts_("0", kAttemptsKept, true),
      sizes_("touch", kSizesKept, true),
      exposure_(DynamicExposure::GetInstance()) {
  init_.SetState(FpsInitInfo::State::kStarted);
  DevCdtInfo::GetInstance();
  ABinderProcess_startThreadPool();  // its threads receive the death notifications of HALs
  WaitForThermalHal();
  AlsMonitor::GetInstance()->StartSampling();
  attempts_.Init();
  enrollments_.Init("EnrollEventG7");
  exposure_.SetExpoChangedCallback(this, &Service::ExposureChanged);
}

void Service::ReportInitError(const InitError& error) {
  init_.SetError(error.code, error.message);
  CriticalErrors::GetInstance().AddErrorEvent(
      std::make_shared<ErrorEvent>("init: " + error.message));
}

void Service::ExposureChanged(void* context, float expo, float /*base*/) {
  auto& service = *static_cast<Service*>(context);
  service.phone_.SetExposure(expo);
  ++service.steps_since_attempt_;
}

void Service::Calibrate(const fp_service::Calibrate& calibration) {
  phone_.SetExposure(calibration.expo_ms);
  exposure_.UpdateCaliExpo(calibration.expo_ms, calibration.base);
  init_.SetState(FpsInitInfo::State::kFinished);
}

// Lights the panel, captures an image, and measures how much of the sensor the finger covers.
std::optional<Service::Image> Service::TakeImage(Purpose purpose) {
  const auto touch = input_.WaitForFinger();
  if (!touch) {
    return std::nullopt;
  }
  display_.SetLhbm(true, nullptr);
  const Capture capture = phone_.CaptureImage();
  display_.SetLhbm(false, nullptr);
  input_.ImageCaptured();

  const Circle sensor = SensorModel::Area();
  const Ellipse& finger = touch->contact;
  sizes_.AddFinger(
      std::make_shared<FingerSize>(purpose == Purpose::kEnroll ? kOpEnroll : kOpAuthenticate,
                                   finger.major_axis, finger.minor_axis),
      true);
  return Image{.capture = capture,
               .coverage_percent = sensor.CoverageCoveredBy(finger),
               .distance_mm = std::hypot(finger.center.x - sensor.center.x,
                                         finger.center.y - sensor.center.y) /
                              SensorModel::kPixelsPerMm,
               .lptw = touch->lptw};
}

std::string Service::FinishTouch() {
  input_.WaitForLift();
  return input_.GetDownTime();
}

std::shared_ptr<AuthEventG7> Service::NewAttempt() {
  return std::static_pointer_cast<AuthEventG7>(attempts_.CreateAttempt());
}

Service::Outcome Service::Record(const std::shared_ptr<AuthEventG7>& event) {
  attempts_.AddAttempt(event);
  exposure_.FeedAuthAttempt(event);
  return {event, std::exchange(steps_since_attempt_, 0)};
}

Service::Outcome Service::Authenticate() {
  const auto image = TakeImage(Purpose::kAuthenticate);
  if (!image) {
    return RecordAcquisitionError(kAcquiredVendor);
  }
  if (image->capture.raw_mean < kUnlitRawMean) {
    return RecordAcquisitionError(kAcquiredTooDark);
  }
  const auto result = matcher_.Match(image->capture, image->coverage_percent);
  auto event = NewAttempt();
  event->acquired_info = AuthEvent::kAcquiredGood;
  event->auth_successful = result.finger != 0;
  event->fid = result.finger;
  event->latency = static_cast<int32_t>(phone_.GetExposure()) + result.latency_ms;
  event->iq = image->capture.quality;
  event->t_cov = image->coverage_percent;
  event->t_dist = image->distance_mm;
  event->lptw = image->lptw ? 1 : 0;
  event->rawmean_delta = image->capture.raw_mean;
  event->rc = result.rc;
  event->match_score = result.score;
  event->packed_metric_1 = result.packed_metrics[0];
  event->packed_metric_2 = result.packed_metrics[1];
  event->packed_metric_3 = result.packed_metrics[2];
  event->stitch_img_num_ = result.stitched_images;
  event->stitch_img_area_ = result.stitched_area;
  return Record(event);
}

Service::Outcome Service::FailToAcquire(int info) {
  input_.WaitForFinger();
  return RecordAcquisitionError(info);
}

Service::Outcome Service::RecordAcquisitionError(int info) {
  auto event = NewAttempt();
  event->acquired_info = static_cast<int8_t>(info);
  return Record(event);
}

void Service::CaptureForEnrollment() {
  if (const auto image = TakeImage(Purpose::kEnroll)) {
    matcher_.AddImage(image->capture, image->coverage_percent);
  }
}

std::shared_ptr<EnrollEventG7> Service::NewEnrollment(int finger) {
  auto event = std::static_pointer_cast<EnrollEventG7>(enrollments_.CreateEvent());
  event->fid = finger;
  event->enrolled_fingers_count = matcher_.CountEnrolled();
  return event;
}

std::shared_ptr<EnrollEventG7> Service::Enroll(int finger) {
  const auto enrollment = matcher_.FinishEnrollment(finger);
  auto event = NewEnrollment(finger);
  event->op = EnrollEvent::kOpAdd;
  event->enroll_successful = enrollment.rc == 0;
  event->rc = enrollment.rc;
  event->capture_count = enrollment.captures;
  event->iq_avg = enrollment.average_quality;
  event->rawmean_delta = enrollment.average_raw_mean;
  enrollments_.AddEvent(event);
  return event;
}

std::shared_ptr<EnrollEventG7> Service::Delete(int finger) {
  matcher_.Delete(finger);
  auto event = NewEnrollment(finger);
  event->op = EnrollEvent::kOpDelete;
  enrollments_.AddEvent(event);
  return event;
}

void Service::DumpEnvironment(int fd) {
  float lux = 0;
  if (AlsMonitor::GetInstance()->GetLight(&lux) == 0) {
    dprintf(fd, "Ambient light: %.0f lux\n", lux);
  } else {
    dprintf(fd, "Ambient light: unknown\n");
  }
  dprintf(fd, "Throttling severity: %d\n", Thermal::GetInstance().GetCpuSeverity());
  dprintf(fd, "Long presses: %d\n", presses_.Get());
}

void Service::SystemServerDied() {
  presses_.SystemServerDied();
  AlsMonitor::OnSystemServerDeath();
  AlsMonitor::GetInstance()->StartSampling();
}

void Service::DumpWhileBusy(int fd) {
  init_.Dump(fd);
  CriticalErrors::GetInstance().Dump(fd, nullptr, 0);
  enrollments_.Dump(fd, nullptr, 0);
}

void Service::Dump(int fd) {
  DumpWhileBusy(fd);
  const DevCdtInfo& board = DevCdtInfo::GetInstance();
  dprintf(fd,
          "Board: platform 0x%02x, product 0x%02x, stage 0x%02x, version %u.%u, variant 0x%02x\n",
          board.platform, board.product, board.stage, board.major, board.minor, board.variant);
  attempts_.Dump(fd, nullptr, 0);
  exposure_.Dump(fd);
  dprintf(fd, "Finger sizes: %u touches, %u for authentication, %u for enrollment\n",
          sizes_.GetFingerCount(), sizes_.GetOp1Count(), sizes_.GetOp2Count());
  for (const auto& [name, axis] :
       {std::pair("major", FingerSize::kMajor), std::pair("minor", FingerSize::kMinor)}) {
    dprintf(fd, "  %s axis: 5%% are up to %.1f, 50%% up to %.1f, 95%% up to %.1f pixels\n", name,
            sizes_.GetPercentileValue(axis, 5), sizes_.GetPercentileValue(axis, 50),
            sizes_.GetPercentileValue(axis, 95));
  }
  DumpEnvironment(fd);
}

}  // namespace fp_service
