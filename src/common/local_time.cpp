// SPDX-License-Identifier: Apache-2.0
#include "common/local_time.h"

namespace android::fp_utils {

std::string LocalTimeText(time_t seconds) {
  // localtime_r() need not notice a change of the time zone. localtime() does, but all threads
  // share its result, and several may dump at once.
  tzset();
  tm parts = {};
  if (localtime_r(&seconds, &parts) == nullptr) {
    return std::to_string(seconds);
  }
  char text[64];
  return {text, strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

}  // namespace android::fp_utils
