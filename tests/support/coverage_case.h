// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fp_utils/shapes.h"
#include "reference/any_shape.h"
#include "reference/plain_geometry.h"

namespace fp_test {

using fp_reference::AnyShape;
using fp_reference::AsPlainShape;
using fp_reference::AsShape;
using fp_reference::CountIn;
using fp_reference::FieldsOf;
using fp_reference::TextOf;

// Two shapes and the grid that samples them.
struct CoverageCase {
  android::fp_utils::Rect grid;
  AnyShape s1, s2;
  uint32_t nx = 0, ny = 0;
  bool is_tuned = false;  // nx and ny come from the properties

  // Takes nx and ny from the grid.
  void SetDefaultScanPoints();

  // Pointers to every float of the case.
  std::vector<float*> Fields();

  // One line in the form of golden/coverage.txt, without its counts; floats in hexadecimal.
  std::string ToString() const;

  // Counts with the plain scan.
  fp_reference::PlainCounts Scan() const;
};

// Sets the scan point properties of the case.
void TuneScanPoints(const CoverageCase& c);

}  // namespace fp_test
