// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <ctime>
#include <istream>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

// What happens to the simulated device: a file of JSON Lines, one event a line. README.md beside
// this file documents the events for those who write scenarios.

namespace fp_service {

// State of the fingertip: how much of the panel's light it sends back to the sensor.
enum class Skin { kNormal, kDry, kWet };

struct Phase {
  std::string name;
};
struct Calibrate {
  float expo_ms;
  float base;
};
struct Light {
  float lux;
};
// `count` attempts, `every_s` seconds apart. Finger 0 is one that is not enrolled.
struct Attempts {
  int finger;
  int count;
  int every_s;
  Skin skin;
};
// Touches that give no image to match; `info` is the platform's AcquiredInfo.
struct AcquisitionErrors {
  int info;
  int count;
  int every_s;
};
struct Dump {};

using Happening = std::variant<Phase, Calibrate, Light, Attempts, AcquisitionErrors, Dump>;

struct Event {
  time_t at;  // seconds since the epoch
  Happening happening;
};

struct Scenario {
  std::vector<Event> events;
  int touches = 0;  // attempts and acquisition errors of all events
};

// what() is "<name>:<line>: <reason>".
class ScenarioError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads a whole scenario; `name` is for messages. Throws ScenarioError at the first wrong line.
Scenario ReadScenario(std::istream& lines, const std::string& name);

}  // namespace fp_service
