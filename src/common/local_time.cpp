// SPDX-License-Identifier: Apache-2.0
#include "common/local_time.h"

namespace android::fp_utils {

std::string LocalTimeText(time_t seconds) {
  // Takes over a change of the time zone, which localtime_r() need not do. localtime() does, but
  // its result is shared between threads, and several may dump at once.
  tzset();
  tm parts = {};
  if (localtime_r(&seconds, &parts) == nullptr) {
    return std::to_string(seconds);
  }
  char text[64];
  return {text, strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

}  // namespace android::fp_utils
