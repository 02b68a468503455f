// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/auth_event.h"

namespace android::fp_utils {

// The texts of the library's own authentication records; each writes at `out` and returns the end.
char* WriteAuthEvent(char* out, const AuthEvent& event);
char* WriteAuthEventG7(char* out, const AuthEventG7& event);

// Composes what ToBackupString() returns, without a string, for a record of one of these very
// classes. Null for any other: a class of the service may have its own text.
char* WriteOwnRecord(char* out, const AuthEvent& event);

}  // namespace android::fp_utils
