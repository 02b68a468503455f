// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace fp_bench {

enum class Goal { kAtLeast, kAtMost };

// States a goal for the ratio of the times of two benchmarks, `numerator` to `denominator`, which
// are given by their names. Call it at namespace scope:
//   const bool kClaim = Claim("save_100", "PlainSave/100", "Save/100", Goal::kAtLeast, 8);
bool Claim(const std::string& name, const std::string& numerator, const std::string& denominator,
           Goal goal, double value);

// Reports the ratio of the times without a goal.
bool ReportRatio(const std::string& name, const std::string& numerator,
                 const std::string& denominator);

}  // namespace fp_bench
