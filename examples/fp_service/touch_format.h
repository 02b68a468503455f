// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

// The format of the reports of this phone's touch controller.

namespace fp_service::touch_format {

// Values of `type`.
constexpr int32_t kDown = 0;
constexpr int32_t kUp = 2;

// Indices into `coords`.
constexpr size_t kX = 0;
constexpr size_t kY = 1;
constexpr size_t kMajor = 2;  // full lengths of the contact's axes
constexpr size_t kMinor = 3;

}  // namespace fp_service::touch_format
