// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>

// The wall clock of programs linked with the simulated device. It is the host's, unless it is
// stopped at a point in time, so that time stamps are the same in every run. The other clocks
// (steady, uptime, boot time) go on, and so does the wall clock of child processes.

namespace fp_host {

// Stops the clock at this time since the epoch, until the next call of either function.
void StopWallClock(time_t seconds, int milliseconds = 0);
void ReleaseWallClock();

}  // namespace fp_host
