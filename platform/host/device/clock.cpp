// SPDX-License-Identifier: Apache-2.0
#include "device/clock.h"

#include <atomic>
#include <cstdint>
#include <limits>

#include "fp_host/clock.h"

namespace fp_host {
namespace {

constexpr int64_t kNotStopped = std::numeric_limits<int64_t>::min();
std::atomic<int64_t> stopped_at_ms = kNotStopped;

}  // namespace

void StopWallClock(time_t seconds, int milliseconds) {
  stopped_at_ms = int64_t{seconds} * 1000 + milliseconds;
}

void ResumeWallClock() { stopped_at_ms = kNotStopped; }

std::optional<timespec> StoppedWallClock() {
  const int64_t at_ms = stopped_at_ms;
  if (at_ms == kNotStopped) {
    return std::nullopt;
  }
  return timespec{.tv_sec = at_ms / 1000, .tv_nsec = at_ms % 1000 * 1000000};
}

}  // namespace fp_host
