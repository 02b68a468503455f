// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/version_compare.h"

namespace android::fp_utils {

bool VersionCompare::checkEqual(const std::string& a, const std::string& b) { return a == b; }

}  // namespace android::fp_utils
