// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary content as a scenario. It must be accepted, or rejected with a message that
// begins with the name of the input.
#include <cstdint>
#include <cstdlib>
#include <sstream>

#include "scenario.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
  try {
    fp_service::ReadScenario(lines, "x");
  } catch (const fp_service::ScenarioError& error) {
    if (std::string(error.what()).rfind("x:", 0) != 0) {
      abort();
    }
  }
  return 0;
}
