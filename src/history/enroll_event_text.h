// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/enroll_event.h"

namespace android::fp_utils {

// The texts of the library's own enrollment records; each writes at `out` and returns the end.
char* WriteEnrollEvent(char* out, const EnrollEvent& event);
char* WriteEnrollEventG7(char* out, const EnrollEventG7& event);

// Composes what ToBackupString() returns, without a string, for a record of one of these very
// classes. Null for any other: a class of the service may have its own text.
char* WriteOwnRecord(char* out, const EnrollEvent& event);

}  // namespace android::fp_utils
