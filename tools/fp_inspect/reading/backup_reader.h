// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "reading/input.h"
#include "reading/record.h"

namespace fp_inspect {

// Whether the beginning of an input is one of a backup file, possibly damaged.
bool LooksLikeBackup(std::string_view beginning);

// Reads the frames of a backup file: what the service would load, where the damage is, and, marked
// as salvaged, what still reads behind it. Contents::bytes is set.
void ReadBackup(ByteWindow& input, Contents* contents);

}  // namespace fp_inspect
