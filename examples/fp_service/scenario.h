// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <ctime>
#include <istream>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

// A scenario is a JSON Lines file with the events of the simulated device. README.md documents the
// events.

namespace fp_service {

constexpr int kMaxFingers = 5;  // that can be enrolled, numbered from 1; 0 is never enrolled
constexpr int kMaxPhases = 64;  // of a scenario

// State of the fingertip: how much of the panel's light it reflects to the sensor.
enum class Skin { kNormal, kDry, kWet };

// Whether the fingertip is placed on the whole sensor, or covers only part of it.
enum class Placement { kGood, kPoor };

struct Phase {
  std::string name;
};
struct Calibrate {
  float expo_ms;
  float base;
};
// An error during the sensor's bring-up, which may still end in a calibration.
struct InitError {
  int code;
  std::string message;
};
struct Light {
  float lux;
};
// `count` attempts, `every_s` seconds apart.
struct Attempts {
  int finger;
  int count;
  int every_s;
  Skin skin;
  Placement placement;
};
// Touches that give no image to match; `info` is the platform's AcquiredInfo.
struct AcquisitionErrors {
  int info;
  int count;
  int every_s;
};
// An enrollment of `captures` touches.
struct Enroll {
  int finger;
  int captures;
  Placement placement;
};
struct Delete {
  int finger;
};
struct LongPress {
  int count;
};
// Throttling severity of the skin temperature, 0 (none) to 6 (shutdown).
struct Heat {
  int severity;
};
// The display HAL dies at its next call and is started again.
struct DisplayHalDies {};
// The service ends and is started again.
struct Restart {};
// The phone loses power during a save of the attempts, and boots again.
struct PowerCut {};
struct Dump {};

using EventData =
    std::variant<Phase, Calibrate, InitError, Light, Enroll, Delete, Attempts, AcquisitionErrors,
                 LongPress, Heat, DisplayHalDies, Restart, PowerCut, Dump>;

struct Event {
  time_t at;  // seconds since the epoch
  EventData data;
};

using Scenario = std::vector<Event>;

// what() is "<name>:<line>: <reason>".
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads a whole scenario. No event may begin before the previous one has ended. `name` stands for
// the input in messages. Throws ScenarioError at the first wrong line.
Scenario ReadScenario(std::istream& lines, const std::string& name);

// Reads a scenario from a file. Throws ScenarioError("<path>: <reason>") if it cannot be opened.
Scenario LoadScenario(const std::string& path);

}  // namespace fp_service
