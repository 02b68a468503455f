// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <optional>

namespace fp_host {

// The time at which the wall clock is stopped, or nothing while it runs.
std::optional<timespec> StoppedWallClock();

}  // namespace fp_host
