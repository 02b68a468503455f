// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>

// The wall clock of programs linked with the simulated device: the host's, unless it is stopped at
// a moment, so that what is stamped with the time of day is the same in every run. Clocks that
// count (steady, uptime, boot time) run on, and so does the wall clock of child processes.

namespace fp_host {

// From now on it is that long after the epoch, until the next call of either function.
void StopWallClock(time_t seconds, int milliseconds = 0);
void ReleaseWallClock();

}  // namespace fp_host
