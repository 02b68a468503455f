// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "model/compare.h"
#include "model/replay.h"
#include "model/summary.h"

// Wording that the human-readable formats share.

namespace fp_inspect {

inline constexpr const char* kMinute = "%Y-%m-%d %H:%M";

std::string Percent(double share);
std::string RangeText(const Share& share);

// With few records no percentage is shown.
std::string ShareText(const Share& share);

// With few records no mean is shown, only their number.
std::string SideText(const CompareRow& row, const BurstSum& side);
std::string DifferenceText(const CompareRow& row);
std::string PText(const CompareRow& row);
std::string CompareNote(const Comparison& comparison);

std::string StepText(const Run& run, const ExposureStep& step, const Zone& zone);

}  // namespace fp_inspect
