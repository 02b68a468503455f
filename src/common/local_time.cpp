// SPDX-License-Identifier: Apache-2.0
#include "common/local_time.h"

namespace android::fp_utils {

std::string LocalTimeText(time_t seconds) {
  // POSIX does not require localtime_r() to notice a change of the time zone. localtime() does, but
  // its result is shared by all threads, and several may dump at once.
  tzset();
  tm parts = {};
  if (localtime_r(&seconds, &parts) == nullptr) {
    return std::to_string(seconds);
  }
  char text[64];
  return {text, strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

}  // namespace android::fp_utils
