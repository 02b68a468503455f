// SPDX-License-Identifier: Apache-2.0
#pragma once

// Marks a class or function as part of the library's interface. Everything else is built with
// hidden visibility and does not leave the shared library.
#define FP_UTILS_EXPORT __attribute__((visibility("default")))
