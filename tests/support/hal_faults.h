// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "control/services.h"

namespace fp_test {

// Something that goes wrong with a HAL in or before the next call.
struct HalFault {
  const char* name;
  std::function<void(fp_host::RemoteService&)> strike;
  bool answered;        // whether the client gets the answer of a HAL that works
  bool dead = false;    // whether the process that the client is connected to is dead afterwards
  bool served = false;  // whether the HAL does what it is asked for, answered or not
};

// The faults that every HAL may have, and those of a test.
inline std::vector<HalFault> HalFaults(std::vector<HalFault> others) {
  using Death = fp_host::RemoteService::Death;
  const auto die = [](Death death) {
    return [death](fp_host::RemoteService& service) { service.DieAtCall(1, death); };
  };
  std::vector<HalFault> faults = {
      {.name = "none", .strike = [](auto&) {}, .answered = true, .served = true},
      {.name = "dies before", .strike = die(Death::kBefore), .answered = false, .dead = true},
      {.name = "dies during",
       .strike = die(Death::kDuring),
       .answered = false,
       .dead = true,
       .served = true},
      {.name = "dies after",
       .strike = die(Death::kAfter),
       .answered = true,
       .dead = true,
       .served = true},
      {.name = "is slow",
       .strike = [](auto& service) { service.SetDelay(std::chrono::milliseconds(2)); },
       .answered = true,
       .served = true},
  };
  faults.insert(faults.end(), others.begin(), others.end());
  return faults;
}

// Ends every fault above; a HAL that is dead comes back.
inline void Repair(fp_host::RemoteService& service) {
  service.DieAtCall(0, fp_host::RemoteService::Death::kBefore);
  service.SetDelay(std::chrono::milliseconds(0));
  service.Start();
}

}  // namespace fp_test
