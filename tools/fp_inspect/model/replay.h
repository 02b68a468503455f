// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/causes.h"
#include "model/exposure_controller.h"
#include "model/sensor_fit.h"
#include "model/timeline.h"

namespace fp_inspect {

// The attempts on which a step was decided. `first` and `last` are positions in the run.
struct Sample {
  size_t first = 0;
  size_t last = 0;
  size_t images = 0;
  size_t rejected = 0;
  double avg_iq = 0;
  double avg_raw_mean = 0;
};

struct ExposureStep {
  size_t at = 0;     // position in the run of the attempt that caused it
  int32_t step = 0;  // in effect from then on, counted from the calibration
  float expo = 0;    // milliseconds; NaN without a calibration
  bool up = false;
  Sample sample = {};
};

// The sample that a dump shows, and that of the replay at the same attempt.
struct ReplayCheck {
  bool Agrees() const;

  uint32_t source = 0;
  size_t attempts = 0;  // of the run that were made before the dump
  Exposure dumped = {};
  Exposure replayed = {};
};

// The steps and exposures of a controller that is fed the attempts of a run.
struct ControllerTrace {
  std::vector<ExposureStep> steps;
  std::vector<float> expo;  // in effect at each attempt
  size_t rejected = 0;
};

// One run of the service, from its bring-up to its last dump. Later attempts may belong to another
// run.
struct Run {
  int64_t begin = 0;
  std::vector<AuthEventG7> attempts = {};
  std::vector<int64_t> times = {};
  std::string unknown = {};  // why the run or its end is not replayed
  Settings settings = {};
  ControllerTrace recorded = {};
  std::vector<ReplayCheck> checks = {};
  size_t images = 0;
};

// The first point at which a run with other settings differs from the recorded one.
struct Departure {
  size_t run = 0;
  size_t at = 0;                              // position of the attempt
  std::optional<ExposureStep> recorded = {};  // the steps made there
  std::optional<ExposureStep> other = {};
  std::optional<ControllerTrace> modelled = {};  // the whole run, modelled after that attempt
};

struct Variant {
  Settings settings = {};  // only those that differ from the device's
  std::vector<Departure> departures = {};
};

struct Replay {
  bool Agrees() const;

  std::optional<Calibration> calibration = {};
  std::vector<Run> runs = {};
  std::vector<Variant> variants = {};
  std::optional<SensorFit> fit = {};
  size_t check_count = 0;  // of all runs
};

// Replays every run with its recorded settings. With `fit_sensor`, also fits the sensor model if
// possible.
Replay ReplayRecorded(const Device& device, const std::optional<Calibration>& calibration,
                      bool fit_sensor);

// Adds the departures that result when `settings` override those of the device.
void AddVariant(const Settings& settings, Replay* replay);

}  // namespace fp_inspect
