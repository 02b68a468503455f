// SPDX-License-Identifier: Apache-2.0
#include "golden/stub_platform.h"

#include <cstdio>

#include <android-base/properties.h>
#include <android/log.h>

namespace {

bool is_muted = false;

}  // namespace

void fp_golden::MuteLog() { is_muted = true; }

extern "C" int __android_log_print(int /*priority*/, const char* tag, const char* format, ...) {
  if (!is_muted) {
    printf("  log of %s: %s\n", tag, format);
  }
  return 1;
}

namespace android::base {

template <typename Number>
Number GetUintProperty(const std::string& name, Number default_value, Number /*max*/) {
  const auto found = fp_golden::properties.find(name);
  return found == fp_golden::properties.end() ? default_value : found->second;
}
template uint32_t GetUintProperty(const std::string&, uint32_t, uint32_t);

}  // namespace android::base
