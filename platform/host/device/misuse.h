// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fp_host {

// Aborts for a use that is wrong on a device too, or for a control that is used wrongly. `what` is
// a sentence that says how. It goes to standard error, since tests record the log.
[[noreturn]] inline void AbortForMisuse(const std::string& what) {
  fprintf(stderr, "fp_host: %s\n", what.c_str());
  abort();
}

}  // namespace fp_host
