// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <string>

namespace android::fp_utils {

// `seconds` since the epoch as "YYYY-MM-DD hh:mm:ss" in the process's time zone. A time that the
// calendar cannot express (from a damaged record) is returned as the plain number.
std::string LocalTimeText(time_t seconds);

}  // namespace android::fp_utils
