// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "fp_utils/shapes.h"
#include "geometry/sample_axis.h"
#include "geometry/shape_rows.h"

namespace android::fp_utils {

// The samples are all pairs of an x of `columns` and a y of `rows`. Neither axis is empty.
struct Grid {
  SampleAxis columns;
  SampleAxis rows;
};

// Samples in each shape and in both, modulo 2^32 like the caller's counters.
struct Counts {
  uint32_t in_s1 = 0;
  uint32_t in_s2 = 0;
  uint32_t in_both = 0;
};

// Counts the samples row by row, without calling Contains() for each.
Counts CountRows(Grid grid, const ShapeRows& s1, const ShapeRows& s2);

}  // namespace android::fp_utils
