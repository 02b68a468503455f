// SPDX-License-Identifier: Apache-2.0
#include "golden/recount.h"

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

#include "fp_utils/shapes.h"
#include "golden/stub_platform.h"
#include "reference/any_shape.h"
#include "reference/plain_geometry.h"

using namespace android::fp_utils;
using namespace fp_reference;

namespace {

// Sets the property of an axis to the number in the case, or clears it for a dash. Returns the
// number of samples.
uint32_t ReadScanPoints(std::istream& in, const std::string& axis, float low, float high) {
  const std::string property = "persist.vendor.udfps.geometry.rect." + axis + "_axis_scan_points";
  fp_golden::properties.erase(property);
  std::string points;
  in >> points;
  if (points == "-") {
    return PlainScanPoints(low, high);
  }
  return fp_golden::properties[property] =
             static_cast<uint32_t>(strtoul(points.c_str(), nullptr, 10));
}

bool RecountCase(const std::string& line) {
  std::istringstream in(line);
  const auto grid = std::get<Rect>(ReadShape(in));
  const uint32_t nx = ReadScanPoints(in, "x", grid.top_left.x, grid.bottom_right.x);
  const uint32_t ny = ReadScanPoints(in, "y", grid.top_left.y, grid.bottom_right.y);
  const AnyShape s1 = ReadShape(in);
  const AnyShape s2 = ReadShape(in);
  const std::string text = line.substr(0, static_cast<size_t>(in.tellg()));

  const auto plain1 = AsPlainShape(s1);
  const auto plain2 = AsPlainShape(s2);
  const PlainCounts by_rows = CountIn(grid, AsShape(s1), AsShape(s2));
  const PlainCounts by_samples = CountIn(grid, *plain1, *plain2);
  const PlainCounts plain = PlainScan(grid, nx, ny, *plain1, *plain2);
  std::cout << text << ' ' << by_rows << '\n';
  if (by_rows == plain && by_samples == plain) {
    return true;
  }
  std::cerr << text << ": by rows " << by_rows << ", by samples " << by_samples << ", plain scan "
            << plain << '\n';
  return false;
}

}  // namespace

bool fp_golden::Recount(std::istream& file) {
  bool agrees = true;
  int cases = 0;
  std::string line;
  while (std::getline(file, line)) {
    if (line.empty() || line[0] == '#') {
      std::cout << line << '\n';
    } else {
      agrees = RecountCase(line) && agrees;
      ++cases;
    }
  }
  return agrees && cases > 0;
}
