// SPDX-License-Identifier: Apache-2.0
#pragma once

// Debian's <android/sensor.h> declares the calls of later platform versions only if
// __ANDROID_API__ is set, and uses __INTRODUCED_IN without a definition. Both are defined for that
// header alone, because other platform headers depend on them too. So the headers that it includes
// are included before.
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
