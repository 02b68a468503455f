// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "model/summary.h"

namespace fp_inspect {

// Compares the parts of a device's dumps with each other. Adds findings where parts contradict each
// other, and notes on causes where one part explains another.
void CrossCheck(const Device& device, Summary* summary);

}  // namespace fp_inspect
