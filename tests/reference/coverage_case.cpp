// SPDX-License-Identifier: Apache-2.0
#include "reference/coverage_case.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

#include <android-base/properties.h>

namespace fp_reference {

using android::fp_utils::Circle;
using android::fp_utils::Ellipse;
using android::fp_utils::IShape;
using android::fp_utils::Rect;

namespace {

constexpr const char* kNames[] = {"circle", "ellipse", "rect"};  // by index of AnyShape

// Every float of a shape, in the order of its constructor.
std::vector<float*> FieldsOf(Circle& c) { return {&c.center.x, &c.center.y, &c.radius}; }
std::vector<float*> FieldsOf(Ellipse& e) {
  return {&e.center.x, &e.center.y, &e.major_axis, &e.minor_axis, &e.orientation};
}
std::vector<float*> FieldsOf(Rect& r) {
  return {&r.top_left.x, &r.top_left.y, &r.bottom_right.x, &r.bottom_right.y};
}
std::vector<float*> FieldsOf(AnyShape& shape) {
  return std::visit([](auto& s) { return FieldsOf(s); }, shape);
}

// The name of a shape and its fields in hexadecimal.
std::string TextOf(AnyShape shape) {
  std::string text = kNames[shape.index()];
  for (const float* field : FieldsOf(shape)) {
    char number[32];
    snprintf(number, sizeof number, " %a", *field);
    text += number;
  }
  return text;
}

AnyShape ReadShape(std::istream& in) {
  std::string word;
  in >> word;
  AnyShape shape;
  if (word == kNames[1]) {
    shape = Ellipse();
  } else if (word == kNames[2]) {
    shape = Rect();
  }
  for (float* field : FieldsOf(shape)) {
    in >> word;
    *field = strtof(word.c_str(), nullptr);  // streams read no hexadecimal floats
  }
  return shape;
}

}  // namespace

const IShape& AsShape(const AnyShape& shape) {
  return std::visit([](const auto& s) -> const IShape& { return s; }, shape);
}

std::unique_ptr<IShape> AsPlainShape(const AnyShape& shape) {
  return std::visit([](const auto& s) { return std::unique_ptr<IShape>(new PlainShape(s)); },
                    shape);
}

PlainCounts CountIn(const Rect& grid, const IShape& s1, const IShape& s2) {
  PlainCounts counts = {77, 77, 77};  // to be overwritten
  grid.NumOfPointsIn(s1, s2, counts.in_s1, counts.in_s2, counts.in_both);
  return counts;
}

void TuneScanPoints(const std::string& x, const std::string& y) {
  android::base::SetProperty("persist.vendor.udfps.geometry.rect.x_axis_scan_points", x);
  android::base::SetProperty("persist.vendor.udfps.geometry.rect.y_axis_scan_points", y);
}

void CoverageCase::SetDefaultScanPoints() {
  is_tuned = false;
  nx = PlainScanPoints(grid.top_left.x, grid.bottom_right.x);
  ny = PlainScanPoints(grid.top_left.y, grid.bottom_right.y);
}

std::vector<float*> CoverageCase::Fields() {
  std::vector<float*> fields = FieldsOf(grid);
  for (AnyShape* shape : {&s1, &s2}) {
    const std::vector<float*> more = FieldsOf(*shape);
    fields.insert(fields.end(), more.begin(), more.end());
  }
  return fields;
}

CoverageCase CoverageCase::Read(const std::string& line) {
  std::istringstream in(line);
  CoverageCase read;
  read.grid = std::get<Rect>(ReadShape(in));
  std::string x;
  std::string y;
  in >> x >> y;
  read.SetDefaultScanPoints();
  if (x != "-") {
    read.is_tuned = true;
    read.nx = static_cast<uint32_t>(std::stoul(x));
    read.ny = static_cast<uint32_t>(std::stoul(y));
  }
  read.s1 = ReadShape(in);
  read.s2 = ReadShape(in);
  return read;
}

std::string CoverageCase::ToString() const {
  const std::string points = is_tuned ? std::to_string(nx) + ' ' + std::to_string(ny) : "- -";
  return TextOf(grid) + ' ' + points + ' ' + TextOf(s1) + ' ' + TextOf(s2);
}

PlainCounts CoverageCase::Scan() const {
  return PlainScan(grid, nx, ny, *AsPlainShape(s1), *AsPlainShape(s2));
}

PlainCounts CoverageCase::CountByRows() const {
  Tune();
  return CountIn(grid, AsShape(s1), AsShape(s2));
}

PlainCounts CoverageCase::CountBySamples() const {
  Tune();
  return CountIn(grid, *AsPlainShape(s1), *AsPlainShape(s2));
}

void CoverageCase::Tune() const {
  TuneScanPoints(is_tuned ? std::to_string(nx) : "", is_tuned ? std::to_string(ny) : "");
}

}  // namespace fp_reference
