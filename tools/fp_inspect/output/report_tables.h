// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/html.h"
#include "output/report.h"

namespace fp_inspect {

// The parts of the report that are tables and text, with the wording of the other formats.
Html SummaryTable(const ReportSide& side);
Html CauseTable(const ReportSide& side);
Html ComparisonTable(const Report& report);
Html DamageTable(const ReportSide& side);

}  // namespace fp_inspect
