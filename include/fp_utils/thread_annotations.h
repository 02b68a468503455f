// SPDX-License-Identifier: Apache-2.0
#pragma once

// Which mutex guards what, for clang's -Wthread-safety: GUARDED_BY, REQUIRES and their kin.
#include <android-base/thread_annotations.h>

// libbase writes the attributes for every compiler; one that does not know them would warn about
// each use in the including program.
#if !defined(__clang__)
#undef THREAD_ANNOTATION_ATTRIBUTE__
#define THREAD_ANNOTATION_ATTRIBUTE__(x)
#endif
