// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>

#include "fp_host/scoped.h"

// The wall clock of programs linked with the simulated device, for time(), gettimeofday() and
// clock_gettime(CLOCK_REALTIME). It is the host's, unless it is stopped at a point in time, so that
// time stamps are the same in every run. The other clocks (steady, uptime, boot time) keep running,
// and so does the wall clock of child processes. Time stamps of files are the host's.
//
// Threading:  any thread may call any function.

namespace fp_host {

// Stops the clock at this time since the epoch. If it is stopped already, it jumps, in either
// direction.
void StopWallClock(time_t seconds, int milliseconds = 0);
// The clock shows the host's time again.
void ResumeWallClock();

class ScopedWallClock : public Scoped {
 public:
  explicit ScopedWallClock(time_t seconds, int milliseconds = 0) {
    StopWallClock(seconds, milliseconds);
  }
  ~ScopedWallClock() { ResumeWallClock(); }
};

}  // namespace fp_host
