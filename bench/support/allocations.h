// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace fp_bench {

// Calls of operator new in the program so far.
uint64_t Allocations();

}  // namespace fp_bench
