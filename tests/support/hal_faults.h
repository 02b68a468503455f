// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "fp_host/services.h"

namespace fp_test {

// What a call that meets a fault shows.
enum HalFaultEffect : unsigned {
  kAnswered = 1,  // the client gets the answer that a working HAL gives
  kServed = 2,    // the HAL does the work, whether it answers or not
  kDead = 4,      // the process that the client is connected to is dead afterwards
};

// A fault of a HAL before or during the next call.
struct HalFault {
  const char* name;
  std::function<void(fp_host::RemoteService&)> strike;
  unsigned effects;

  bool Has(HalFaultEffect effect) const { return (effects & effect) != 0; }
};

// The faults that every HAL may have, followed by those of a test.
inline std::vector<HalFault> HalFaults(std::vector<HalFault> others) {
  using Death = fp_host::RemoteService::Death;
  const auto die = [](Death death) {
    return [death](fp_host::RemoteService& service) { service.DieAtCall(1, death); };
  };
  const auto be_slow = [](fp_host::RemoteService& service) {
    service.SetDelay(std::chrono::milliseconds(2));
  };
  std::vector<HalFault> faults = {
      {"none", [](auto&) {}, kAnswered | kServed},
      {"dies before the call", die(Death::kBefore), kDead},
      {"dies during the call", die(Death::kDuring), kDead | kServed},
      {"dies after the call", die(Death::kAfter), kAnswered | kDead | kServed},
      {"is slow", be_slow, kAnswered | kServed},
  };
  faults.insert(faults.end(), others.begin(), others.end());
  return faults;
}

inline void Kill(fp_host::RemoteService& service) { service.Kill(); }

inline void Restart(fp_host::RemoteService& service) {
  service.Kill();
  service.Start();
}

// Ends the faults that every HAL may have, and starts a HAL that is dead.
inline void Repair(fp_host::RemoteService& service) {
  service.DieAtCall(0, fp_host::RemoteService::Death::kBefore);
  service.SetDelay(std::chrono::milliseconds(0));
  service.Start();
}

}  // namespace fp_test
