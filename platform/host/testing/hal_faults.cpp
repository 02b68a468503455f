// SPDX-License-Identifier: Apache-2.0
#include "fp_host/testing.h"

namespace fp_host {

using Death = RemoteService::Death;

std::vector<HalFault> HalFaults(std::vector<HalFault> others) {
  const auto die = [](Death death) {
    return [death](RemoteService& service) { service.DieAtCall(1, death); };
  };
  const auto be_slow = [](RemoteService& service) {
    service.SetDelay(std::chrono::milliseconds(2));
  };
  std::vector<HalFault> faults = {
      {"none", [](auto&) {}, kAnswered | kServed},
      {"dies before the call", die(Death::kBeforeCall), kDead},
      {"dies during the call", die(Death::kBeforeAnswer), kDead | kServed},
      {"dies after the call", die(Death::kAfterAnswer), kAnswered | kDead | kServed},
      {"is slow", be_slow, kAnswered | kServed},
  };
  faults.insert(faults.end(), others.begin(), others.end());
  return faults;
}

}  // namespace fp_host
