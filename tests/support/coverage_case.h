// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "fp_utils/shapes.h"
#include "reference/plain_geometry.h"

namespace fp_test {

using AnyShape =
    std::variant<android::fp_utils::Circle, android::fp_utils::Ellipse, android::fp_utils::Rect>;

const android::fp_utils::IShape& AsShape(const AnyShape& shape);

// The same shape as a class that the library does not know.
std::unique_ptr<android::fp_utils::IShape> AsPlainShape(const AnyShape& shape);

// Two shapes and the grid that samples them.
struct CoverageCase {
  android::fp_utils::Rect grid;
  AnyShape s1, s2;
  uint32_t nx = 0, ny = 0;
  bool is_tuned = false;  // nx and ny come from the properties

  // Takes nx and ny from the grid.
  void SetDefaultScanPoints();

  // Every float of the case.
  std::vector<float*> Fields();

  // One line in the form of golden/coverage.txt, without its counts; floats in hexadecimal.
  std::string ToString() const;

  // By the plain scan.
  fp_reference::PlainCounts Scan() const;
};

// Sets the properties to what the case asks for.
void TuneScanPoints(const CoverageCase& c);

// By the library.
fp_reference::PlainCounts CountIn(const android::fp_utils::Rect& grid,
                                  const android::fp_utils::IShape& s1,
                                  const android::fp_utils::IShape& s2);

}  // namespace fp_test
