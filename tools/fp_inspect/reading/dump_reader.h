// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "reading/input.h"
#include "reading/record.h"

namespace fp_inspect {

// Finds the library's dump sections in any amount of other text, in one pass over its lines. Lines
// may have a prefix, such as that of a log, may end in CR LF and may be interleaved with other
// lines. A record line that cannot be read is noted as damage.
void ReadDump(ByteWindow& input, Contents* contents);

}  // namespace fp_inspect
