// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "fp_utils/export.h"

namespace android::fp_utils {

// Threading:  reentrant, no state.
class FP_UTILS_EXPORT VersionCompare {
 public:
  // Whether two version strings are the same bytes. "1.0" and "1.00" are not: nothing is read into
  // them.
  static bool checkEqual(std::string const& a, std::string const& b);
};

}  // namespace android::fp_utils
