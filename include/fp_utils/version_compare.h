// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "fp_utils/export.h"

namespace android::fp_utils {

// Compares version strings.
//
// Threading:  safe from any thread.
class FP_UTILS_EXPORT VersionCompare {
 public:
  // Returns whether both strings have the same bytes; "1.0" and "1.00" differ.
  [[nodiscard]] static bool checkEqual(const std::string& a, const std::string& b);
};

}  // namespace android::fp_utils
