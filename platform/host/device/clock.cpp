// SPDX-License-Identifier: Apache-2.0
#include "device/clock.h"

#include <atomic>
#include <limits>

#include "control/clock.h"

namespace fp_host {
namespace {

constexpr time_t kRuns = std::numeric_limits<time_t>::min();
std::atomic<time_t> stopped_at = kRuns;

}  // namespace

void StopWallClock(time_t seconds) { stopped_at = seconds; }

void ReleaseWallClock() { stopped_at = kRuns; }

std::optional<time_t> StoppedWallClock() {
  const time_t seconds = stopped_at;
  return seconds == kRuns ? std::nullopt : std::optional(seconds);
}

}  // namespace fp_host
