// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <istream>

namespace fp_golden {

// Reads cases in the format of coverage.txt, counts each anew in several ways, and prints the cases
// with these counts in the same format. Returns false if two ways of counting differ, which it
// reports on stderr, or if `file` holds no case.
bool Recount(std::istream& file);

}  // namespace fp_golden
