// SPDX-License-Identifier: Apache-2.0
//
// Sets the system properties of `fp_phone run`. On a host they live in the memory of the process.
#include <cstdlib>
#include <sstream>
#include <string>

#include <android-base/properties.h>

#include "environment.h"

namespace fp_phone {
namespace {

[[gnu::constructor]] void SetProperties() {
  const char* const properties = getenv(kPropertiesVariable);
  std::istringstream lines(properties != nullptr ? properties : "");
  for (std::string line; std::getline(lines, line);) {
    const size_t equals = line.find('=');
    android::base::SetProperty(line.substr(0, equals), line.substr(equals + 1));
  }
}

}  // namespace
}  // namespace fp_phone
