// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "reading/input.h"
#include "reading/record.h"

namespace fp_inspect {

// Reads an input. With kNone, its beginning determines its kind. Throws InputError.
Contents ReadInput(const std::string& path, InputKind kind);
Contents ReadInput(ByteWindow& input, std::string name, InputKind kind);

}  // namespace fp_inspect
