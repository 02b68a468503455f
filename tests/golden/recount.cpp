// SPDX-License-Identifier: Apache-2.0
#include "golden/recount.h"

#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "fp_utils/shapes.h"
#include "golden/bare_platform.h"
#include "reference/plain_geometry.h"

using namespace android::fp_utils;
using fp_reference::PlainCounts;

namespace {

// A shape as the library's class, which it counts by rows, and as one that it does not know.
struct ShapeOfCase {
  std::unique_ptr<IShape> known, plain;
};

template <typename Plain, typename Shape>
ShapeOfCase Both(const Shape& shape) {
  return {std::make_unique<Shape>(shape), std::make_unique<Plain>(shape)};
}

std::string Word(std::istream& in) {
  std::string word;
  in >> word;
  return word;
}

// Streams read no hexadecimal floats.
float Float(std::istream& in) { return strtof(Word(in).c_str(), nullptr); }

// Braces keep the order of the fields.
Rect ReadRect(std::istream& in) {
  return Rect{Point{Float(in), Float(in)}, Point{Float(in), Float(in)}};
}

ShapeOfCase ReadShape(std::istream& in) {
  const std::string name = Word(in);
  if (name == "circle") {
    return Both<fp_reference::PlainCircle>(Circle{Point{Float(in), Float(in)}, Float(in)});
  }
  if (name == "ellipse") {
    return Both<fp_reference::PlainEllipse>(
        Ellipse{Point{Float(in), Float(in)}, Float(in), Float(in), Float(in)});
  }
  return Both<fp_reference::PlainRect>(ReadRect(in));
}

// Sets the property of an axis to what the case asks for; a dash leaves the samples to the grid.
uint32_t ReadScanPoints(std::istream& in, const std::string& axis, float low, float high) {
  const std::string property = "persist.vendor.udfps.geometry.rect." + axis + "_axis_scan_points";
  fp_golden::properties.erase(property);
  const std::string points = Word(in);
  if (points == "-") {
    return fp_reference::PlainScanPoints(low, high);
  }
  return fp_golden::properties[property] =
             static_cast<uint32_t>(strtoul(points.c_str(), nullptr, 10));
}

PlainCounts CountIn(const Rect& grid, const IShape& s1, const IShape& s2) {
  PlainCounts counts = {77, 77, 77};
  grid.NumOfPointsIn(s1, s2, counts.in_s1, counts.in_s2, counts.in_both);
  return counts;
}

bool RecountCase(const std::string& line) {
  std::istringstream in(line);
  Word(in);  // the grid is a rect
  const Rect grid = ReadRect(in);
  const uint32_t nx = ReadScanPoints(in, "x", grid.top_left.x, grid.bottom_right.x);
  const uint32_t ny = ReadScanPoints(in, "y", grid.top_left.y, grid.bottom_right.y);
  const ShapeOfCase s1 = ReadShape(in);
  const ShapeOfCase s2 = ReadShape(in);
  const std::string text = line.substr(0, static_cast<size_t>(in.tellg()));

  const PlainCounts by_rows = CountIn(grid, *s1.known, *s2.known);
  const PlainCounts asked = CountIn(grid, *s1.plain, *s2.plain);
  const PlainCounts plain = fp_reference::PlainScan(grid, nx, ny, *s1.plain, *s2.plain);
  std::cout << text << ' ' << by_rows << '\n';
  if (by_rows == plain && asked == plain) {
    return true;
  }
  std::cerr << text << ": by rows " << by_rows << ", each sample asked " << asked << ", plain scan "
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
