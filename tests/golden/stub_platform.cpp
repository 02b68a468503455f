// SPDX-License-Identifier: Apache-2.0
//
// The part of the platform that the sources of print_golden call: a log that prints the format of
// each line, and properties in memory. It replaces the platform libraries, which are missing on
// other processors.
#include "golden/stub_platform.h"

#include <cstdio>
#include <map>
#include <string>

#include <android-base/properties.h>
#include <android/log.h>

namespace {

bool is_muted = false;
std::map<std::string, std::string> properties;

}  // namespace

void fp_golden::MuteLog() { is_muted = true; }

extern "C" int __android_log_print(int /*priority*/, const char* tag, const char* format, ...) {
  if (!is_muted) {
    printf("  log of %s: %s\n", tag, format);
  }
  return 1;
}

namespace android::base {

bool SetProperty(const std::string& name, const std::string& value) {
  properties[name] = value;
  return true;
}

template <typename Number>
Number GetUintProperty(const std::string& name, Number default_value, Number /*max*/) {
  const std::string& value = properties[name];
  return value.empty() ? default_value : static_cast<Number>(std::stoul(value));
}
template uint32_t GetUintProperty(const std::string&, uint32_t, uint32_t);

}  // namespace android::base
