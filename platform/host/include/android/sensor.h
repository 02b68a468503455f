// SPDX-License-Identifier: Apache-2.0
#pragma once

// Debian's <android/sensor.h> hides the calls of later platform versions unless it is told a
// version, and does not know its own marks of them. Both are set for that header alone: what it
// includes is taken first, and other platform headers would change with the version.
#include <math.h>
#include <stdbool.h>
#include <stdint.h>
#include <sys/types.h>

#include <android/looper.h>

#pragma push_macro("__ANDROID_API__")
#pragma push_macro("__INTRODUCED_IN")
#undef __ANDROID_API__
#undef __INTRODUCED_IN
#define __ANDROID_API__ 29
#define __INTRODUCED_IN(api_level)
#include_next <android/sensor.h>
#pragma pop_macro("__INTRODUCED_IN")
#pragma pop_macro("__ANDROID_API__")
