// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <istream>

namespace fp_golden {

// Prints a file in the form of coverage.txt, each case with the counts that this program computes.
// Returns false if two ways of counting differ, which it reports on stderr, or if there is no case.
bool Recount(std::istream& file);

}  // namespace fp_golden
