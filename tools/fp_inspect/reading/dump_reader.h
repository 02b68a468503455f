// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "reading/input.h"
#include "reading/record.h"

namespace fp_inspect {

// Finds the library's dump sections in any amount of other text, in one pass over its lines. Lines
// may carry a prefix, as of a log, end in CR LF and stand between others; what does not read is
// noted as damage.
void ReadDump(ByteWindow& input, Contents* contents);

}  // namespace fp_inspect
