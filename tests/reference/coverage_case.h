// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "fp_utils/shapes.h"
#include "reference/plain_geometry.h"

namespace fp_reference {

using AnyShape =
    std::variant<android::fp_utils::Circle, android::fp_utils::Ellipse, android::fp_utils::Rect>;

const android::fp_utils::IShape& AsShape(const AnyShape& shape);

// The same shape as a class that the library does not know.
std::unique_ptr<android::fp_utils::IShape> AsPlainShape(const AnyShape& shape);

// Counts with the library.
PlainCounts CountIn(const android::fp_utils::Rect& grid, const android::fp_utils::IShape& s1,
                    const android::fp_utils::IShape& s2);

// Sets the properties with the numbers of samples; an empty text clears one.
void TuneScanPoints(const std::string& x, const std::string& y);

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

  // A line of golden/coverage.txt. ToString() leaves out its counts.
  static CoverageCase Read(const std::string& line);
  std::string ToString() const;

  // Counts with the plain scan, and with the library by rows and by samples.
  PlainCounts Scan() const;
  PlainCounts CountByRows() const;
  PlainCounts CountBySamples() const;

 private:
  void Tune() const;
};

}  // namespace fp_reference
