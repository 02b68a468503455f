// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "output/html.h"
#include "output/report.h"
#include "output/svg.h"

namespace fp_inspect {

// The figures of the report, each with a table of its numbers.

// Attempts in rows of whole days, with service starts, exposure steps and critical errors.
Html TimeFigure(const ReportSide& side);

// The axes that hold all sides, so that figures side by side can be compared.
struct PlotAxes {
  Axis x = {.from = 54, .to = kWide - 16};
  Axis y = {.from = 240, .to = 22, .most = 9'000};
};
PlotAxes QualityAxes(const Report& report);
PlotAxes SizeAxes(const Report& report);

// Quality against raw mean, by outcome, with the thresholds.
Html QualityFigure(const ReportSide& side, const PlotAxes& axes);

Html SizeFigure(const ReportSide& side, const PlotAxes& axes);

// How many images had which coverage, by outcome.
Html CoverageFigure(const ReportSide& side);

}  // namespace fp_inspect
