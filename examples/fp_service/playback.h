// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "player.h"
#include "properties.h"
#include "scenario.h"

namespace fp_service {

struct Settings {
  std::string device_root = "fp_device";
  uint64_t seed = 1;
  Properties properties;
  bool verbose = false;
};

// Plays `scenario` on a copy of the device without exposure control, then on the device with it,
// and prints a comparison and the service's dump. Each start of the service is a separate process,
// as on a phone. Throws std::runtime_error if one fails.
void PlayTwice(const Scenario& scenario, const Settings& settings);

// Starts the service on the device and prints its dump.
void PrintStoredState(const Settings& settings);

}  // namespace fp_service
