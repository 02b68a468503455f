// SPDX-License-Identifier: Apache-2.0
#pragma once

// Annotations for clang's -Wthread-safety. The analysis needs an annotated std::mutex, which only
// libc++ provides, and only if the program asks for it. Otherwise these macros are empty.
#include <mutex>

#if defined(__clang__) && defined(_LIBCPP_VERSION) && \
    defined(_LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS)
#define FP_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define FP_THREAD_ANNOTATION(x)
#endif

#define FP_GUARDED_BY(x) FP_THREAD_ANNOTATION(guarded_by(x))
#define FP_REQUIRES(...) FP_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define FP_TRY_ACQUIRE(...) FP_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define FP_ACQUIRED_BEFORE(...) FP_THREAD_ANNOTATION(acquired_before(__VA_ARGS__))
#define FP_NO_THREAD_SAFETY_ANALYSIS FP_THREAD_ANNOTATION(no_thread_safety_analysis)
