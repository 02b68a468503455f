// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace fp_test {

// Calls of operator new on this thread so far, by the program and its libraries.
uint64_t Allocations();

}  // namespace fp_test
