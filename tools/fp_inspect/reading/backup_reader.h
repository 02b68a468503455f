// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "reading/input.h"
#include "reading/record.h"

namespace fp_inspect {

// Whether an input with this beginning is a backup file, possibly a damaged one.
bool LooksLikeBackup(std::string_view beginning);

// Reads the frames of a backup file: the records that the service would load, where the damage is,
// and, marked as salvaged, the records after it that are still readable. Sets Contents::bytes.
void ReadBackup(ByteWindow& input, Contents* contents);

}  // namespace fp_inspect
