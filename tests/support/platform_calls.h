// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "fp_host/testing.h"

// A program with this source interposes some functions of the platform: each records the call and
// calls the platform's function.

namespace fp_test {

// The log line of a recorded call. TakeLog() returns recorded calls and the library's lines in one
// order.
inline fp_host::LogLine Call(std::string call) {
  return {ANDROID_LOG_UNKNOWN, "call", std::move(call)};
}

void RecordCalls(bool record);
// Records a call that is not interposed here.
void RecordCall(const std::string& call);

// Sets the tags for which platform tracing says that it is enabled.
void SetTraceTags(uint64_t tags);

}  // namespace fp_test
