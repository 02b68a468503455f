// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace fp_bench {

enum class Goal { kAtLeast, kAtMost };

// States a claim about two benchmarks of this run, by their names: how often the time of
// `numerator` holds that of `denominator`. Call it at namespace scope:
//   const bool kClaim = Claim("save_100", "PlainSave/100", "Save/100", Goal::kAtLeast, 8);
bool Claim(const std::string& name, const std::string& numerator, const std::string& denominator,
           Goal goal, double value);

// A comparison for the record, without a goal.
bool Peer(const std::string& name, const std::string& numerator, const std::string& denominator);

}  // namespace fp_bench
