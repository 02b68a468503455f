// SPDX-License-Identifier: Apache-2.0
//
// Makes the class FUZZED_RECORD load arbitrary text, and print and write the loaded record. None of
// this may crash.
#include <cstdint>
#include <string>

#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"
#include "fp_utils/finger_sizes.h"
#include "fuzzed_device.h"

using namespace android::fp_utils;

namespace {

std::string Print(const auto& record) {
  if constexpr (requires { record.ToDebugString(); }) {
    return record.ToDebugString();
  } else {
    return record.ToString();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fp_fuzz::BootInMemory();
  FUZZED_RECORD record;
  std::string text(reinterpret_cast<const char*>(data), size);
  if (record.LoadFromBackupString(text)) {
    Print(record);
    record.ToBackupString();
  }
  return 0;
}
