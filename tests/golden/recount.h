// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <istream>

namespace fp_golden {

// Prints the cases of a file like coverage.txt with the counts that this program comes to, and the
// rest of the file as it is. False where two ways to count differ, with the case on stderr, and
// where there is no case.
bool Recount(std::istream& file);

}  // namespace fp_golden
