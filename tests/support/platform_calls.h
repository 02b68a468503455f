// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "support/log_recorder.h"

// Programs that include this define some functions of the platform themselves: they write down the
// call and go on to the platform's own.

namespace fp_test {

// A line of the log for a call to the platform. While calls are recorded, they stand in TakeLog()
// among what the library logged, which shows the order of both.
inline LogLine Call(std::string call) { return {ANDROID_LOG_UNKNOWN, "call", std::move(call)}; }

void RecordCalls(bool record);
// For calls that this cannot see by itself.
void RecordCall(const std::string& call);

// The tags that platform tracing says it is enabled for.
void SetTraceTags(uint64_t tags);

}  // namespace fp_test
