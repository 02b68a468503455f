// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <string>

// The part of the platform that the sources of print_golden call: a log that prints the format of
// each line, and unsigned properties in memory. It replaces the platform libraries, which are
// missing on other processors.

namespace fp_golden {

void MuteLog();

// A property that is not in the map has its default.
inline std::map<std::string, uint32_t> properties;

}  // namespace fp_golden
