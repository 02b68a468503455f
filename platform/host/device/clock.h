// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <optional>

namespace fp_host {

// Where the wall clock stands; nothing while it runs.
std::optional<timespec> StoppedWallClock();

}  // namespace fp_host
