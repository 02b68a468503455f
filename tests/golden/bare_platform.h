// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <string>

// All of the platform that the golden programs' sources call: a log that prints the formats of its
// lines, and unsigned properties in memory. Other processors need no platform library for it.

namespace fp_golden {

void MuteLog();

// Empty: every property has its default.
inline std::map<std::string, uint32_t> properties;

}  // namespace fp_golden
