// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <optional>

namespace fp_host {

// The time of the wall clock, or nothing while it is the host's.
std::optional<timespec> SimulatedWallClock();

}  // namespace fp_host
