// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <memory>
#include <string>

#include "fp_utils/auth_stats.h"
#include "fp_utils/dynamic_exposure.h"
#include "scenario.h"
#include "sensor_model.h"

namespace fp_service {

// A fingerprint HAL service reduced to its use of the library: it owns the history of attempts,
// feeds the exposure controller and programs the sensor when the controller says so.
class Service {
 public:
  struct Outcome {
    std::shared_ptr<android::fp_utils::AuthEventG7> event;
    int steps;  // exposure steps that this attempt led to
  };

  // Loads the history of earlier runs.
  explicit Service(SensorModel& sensor);

  uint32_t GetHistorySize() const { return stats_.GetTotalAttempts(); }

  void Calibrate(const fp_service::Calibrate& calibration);
  Outcome Authenticate(time_t at, int finger, Skin skin);
  Outcome ReportAcquisitionError(time_t at, int info);
  void Dump(int fd);

 private:
  static void ExposureChanged(void* context, float expo, float base);
  std::shared_ptr<android::fp_utils::AuthEventG7> NewRecord(time_t at);
  Outcome Record(const std::shared_ptr<android::fp_utils::AuthEventG7>& event);

  SensorModel& sensor_;
  android::fp_utils::AuthStatsG7 stats_;
  android::fp_utils::DynamicExposure& exposure_;
  int steps_ = 0;
};

}  // namespace fp_service
