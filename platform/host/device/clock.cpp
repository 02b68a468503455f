// SPDX-License-Identifier: Apache-2.0
#include "device/clock.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "fp_host/clock.h"

namespace fp_host {
namespace {

// The environment variable with the clock of a started process, in milliseconds: "=N" stops it at N
// since the epoch, "N" puts it N ahead of the host's.
constexpr char kClockVariable[] = "FP_DEVICE_CLOCK";

constexpr int64_t kNotStopped = std::numeric_limits<int64_t>::min();
constexpr int64_t kMsPerSecond = 1000;
constexpr int64_t kNsPerMs = 1000000;
std::atomic<int64_t> stopped_at_ms = kNotStopped;

timespec ToTimespec(int64_t ms) {
  return {.tv_sec = ms / kMsPerSecond, .tv_nsec = ms % kMsPerSecond * kNsPerMs};
}

// The host's time plus `ms`. A system call, since clock_gettime() itself is interposed.
timespec HostTimePlus(int64_t ms) {
  timespec now = {};
  syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
  const int64_t now_ms = now.tv_sec * kMsPerSecond + now.tv_nsec / kNsPerMs;
  timespec ahead = ToTimespec(now_ms + ms);
  ahead.tv_nsec += now.tv_nsec % kNsPerMs;
  return ahead;
}

}  // namespace

void StopWallClock(time_t seconds, int milliseconds) {
  stopped_at_ms = int64_t{seconds} * kMsPerSecond + milliseconds;
}

void ResumeWallClock() { stopped_at_ms = kNotStopped; }

std::optional<timespec> SimulatedWallClock() {
  const int64_t at_ms = stopped_at_ms;
  if (at_ms != kNotStopped) {
    return ToTimespec(at_ms);
  }
  static const char* const inherited = getenv(kClockVariable);
  static const bool is_stopped = inherited != nullptr && inherited[0] == '=';
  static const int64_t value = inherited != nullptr ? atoll(inherited + is_stopped) : 0;
  if (inherited == nullptr) {
    return std::nullopt;
  }
  return is_stopped ? ToTimespec(value) : HostTimePlus(value);
}

}  // namespace fp_host
