// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "model/summary.h"

namespace fp_inspect {

// Lays the parts of a device's dumps side by side and adds what does not fit together, or what one
// part explains in another: findings, and notes on causes.
void CrossCheck(const Device& device, Summary* summary);

}  // namespace fp_inspect
