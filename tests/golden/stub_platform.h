// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace fp_golden {

// From now on, the log of the stub platform prints nothing.
void MuteLog();

}  // namespace fp_golden
