// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "fake_matcher.h"
#include "finger_input.h"
#include "fp_utils/als_monitor.h"
#include "fp_utils/auth_stats.h"
#include "fp_utils/display_controller.h"
#include "fp_utils/dynamic_exposure.h"
#include "fp_utils/enroll_event_container.h"
#include "fp_utils/finger_sizes.h"
#include "fp_utils/fps_init_info.h"
#include "fp_utils/thermal.h"
#include "phone.h"
#include "press_counter.h"
#include "scenario.h"

namespace fp_service {

// A fingerprint HAL service reduced to its use of the library: it owns the histories, lights the
// panel for a capture, matches the image, feeds the exposure controller and programs
// the sensor when the controller says so.
class Service {
 public:
  struct Outcome {
    std::shared_ptr<android::fp_utils::AuthEventG7> event;
    int steps = 0;  // exposure steps that this attempt caused
  };

  // Loads the histories of earlier runs and begins the bring-up.
  explicit Service(Phone& phone);

  uint32_t GetHistorySize() const { return attempts_.GetTotalAttempts(); }
  bool IsEnrolled(int finger) const { return matcher_.IsEnrolled(finger); }

  void ReportInitError(const InitError& error);
  // Ends the bring-up.
  void Calibrate(const fp_service::Calibrate& calibration);

  // Sets the purpose of the next touch. The operations below expect the finger to be down.
  void ExpectFinger(Purpose purpose) { input_.SetPurpose(purpose); }
  Outcome Authenticate();
  Outcome FailToAcquire(int info);
  void CaptureForEnrollment();
  // Call it after each of them, when the finger is up. Returns the time of the finger down.
  std::string FinishTouch();

  // Enrolls `finger` with the captures since the last enrollment.
  std::shared_ptr<android::fp_utils::EnrollEventG7> Enroll(int finger);
  std::shared_ptr<android::fp_utils::EnrollEventG7> Delete(int finger);

  // Waits up to a second until `count` long presses have been counted.
  void WaitForLongPresses(int count) { presses_.WaitFor(count); }

  // Renews the connections that end with the system server.
  void SystemServerDied();

  void Dump(int fd);
  // The part of the dump that any thread may request during an attempt, because it locks.
  void DumpWhileBusy(int fd);

 private:
  struct Image {
    Capture capture;
    float coverage_percent;
    float distance_mm;
    bool lptw;
  };

  static void ExposureChanged(void* context, float expo, float base);
  std::optional<Image> TakeImage(Purpose purpose);
  std::shared_ptr<android::fp_utils::AuthEventG7> NewAttempt();
  Outcome RecordAcquisitionError(int info);
  Outcome Record(const std::shared_ptr<android::fp_utils::AuthEventG7>& event);
  std::shared_ptr<android::fp_utils::EnrollEventG7> NewEnrollment(int finger);
  void DumpEnvironment(int fd);

  Phone& phone_;
  FakeMatcher matcher_;
  android::fp_utils::FpsInitInfo init_;
  android::fp_utils::AuthStatsG7 attempts_;
  android::fp_utils::EnrollEventContainer enrollments_;
  android::fp_utils::FingerSizes sizes_;
  android::fp_utils::DynamicExposure& exposure_;
  android::fp_utils::DisplayController display_;
  PressCounter presses_;
  FingerInput input_;
  int steps_since_attempt_ = 0;
};

}  // namespace fp_service
