// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/version_compare.h"

namespace android::fp_utils {

bool VersionCompare::checkEqual(std::string const& a, std::string const& b) { return a == b; }

}  // namespace android::fp_utils
