// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "fp_utils/shapes.h"
#include "geometry/sample_axis.h"
#include "geometry/shape_rows.h"

namespace android::fp_utils {

// The samples: every x of `columns` for every y of `rows`. Neither axis is empty.
struct Grid {
  SampleAxis columns;
  SampleAxis rows;
};

// Samples in each shape and in both, modulo 2^32 as the callers' counters.
struct Counts {
  uint32_t in_s1 = 0;
  uint32_t in_s2 = 0;
  uint32_t in_both = 0;
};

// For shapes of which the rows are known: counts by rows.
Counts CountRows(Grid grid, const ShapeRows& s1, const ShapeRows& s2);

}  // namespace android::fp_utils
