// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "fp_utils/finger_sizes.h"

namespace android::fp_utils {

// Composes what ToBackupString() returns, without a string, for a plain FingerSize. Null for any
// other class: one of the service may have its own text.
char* WriteOwnRecord(char* out, const FingerSize& size);

}  // namespace android::fp_utils
