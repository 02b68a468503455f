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
// panel for a capture, has the matcher judge the image, feeds the exposure controller and programs
// the sensor when the controller says so.
class Service {
 public:
  struct Outcome {
    std::shared_ptr<android::fp_utils::AuthEventG7> event;
    int steps = 0;  // exposure steps that this attempt led to
  };

  // Loads the histories of earlier runs and begins the bring-up.
  explicit Service(Phone& phone);

  uint32_t GetHistorySize() const { return attempts_.GetTotalAttempts(); }
  bool IsEnrolled(int finger) const { return matcher_.IsEnrolled(finger); }

  void ReportInitError(const InitError& error);
  // Ends the bring-up.
  void Calibrate(const fp_service::Calibrate& calibration);

  // What a touch is for has to be said before it; the operations below find the finger down.
  void ExpectFinger(Purpose purpose) { input_.SetPurpose(purpose); }
  Outcome Authenticate();
  Outcome FailToAcquire(int info);
  void CaptureForEnrollment();
  // After each of them, when the finger is up. Returns when it came down.
  std::string FinishTouch();

  // With the captures since the last enrollment.
  std::shared_ptr<android::fp_utils::EnrollEventG7> Enroll(int finger);
  std::shared_ptr<android::fp_utils::EnrollEventG7> Delete(int finger);

  // Waits until as many have been counted, for a second at most.
  void WaitForLongPresses(int count) { presses_.WaitFor(count); }

  // What is connected to the system server is gone with it.
  void SystemServerDied();

  void Dump(int fd);
  // The part of it that may be asked for on any thread while attempts are made: what locks.
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
