// SPDX-License-Identifier: Apache-2.0
#include "support/coverage_case.h"

#include <android-base/properties.h>
#include <android-base/stringprintf.h>

namespace fp_test {

using android::base::StringAppendF;
using android::fp_utils::Circle;
using android::fp_utils::Ellipse;
using android::fp_utils::IShape;
using android::fp_utils::Rect;

namespace {

const char* NameOf(const Circle& /*shape*/) { return "circle"; }
const char* NameOf(const Ellipse& /*shape*/) { return "ellipse"; }
const char* NameOf(const Rect& /*shape*/) { return "rect"; }

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

std::unique_ptr<IShape> Plain(const Circle& circle) {
  return std::make_unique<fp_reference::PlainCircle>(circle);
}
std::unique_ptr<IShape> Plain(const Ellipse& ellipse) {
  return std::make_unique<fp_reference::PlainEllipse>(ellipse);
}
std::unique_ptr<IShape> Plain(const Rect& rect) {
  return std::make_unique<fp_reference::PlainRect>(rect);
}

std::string TextOf(AnyShape shape) {
  std::string text = std::visit([](const auto& s) { return NameOf(s); }, shape);
  for (const float* field : FieldsOf(shape)) {
    StringAppendF(&text, " %a", *field);
  }
  return text;
}

}  // namespace

const IShape& AsShape(const AnyShape& shape) {
  return std::visit([](const auto& s) -> const IShape& { return s; }, shape);
}

std::unique_ptr<IShape> AsPlainShape(const AnyShape& shape) {
  return std::visit([](const auto& s) { return Plain(s); }, shape);
}

void CoverageCase::SetDefaultScanPoints() {
  is_tuned = false;
  nx = fp_reference::PlainScanPoints(grid.top_left.x, grid.bottom_right.x);
  ny = fp_reference::PlainScanPoints(grid.top_left.y, grid.bottom_right.y);
}

std::vector<float*> CoverageCase::Fields() {
  std::vector<float*> fields = FieldsOf(grid);
  for (AnyShape* shape : {&s1, &s2}) {
    const std::vector<float*> more = FieldsOf(*shape);
    fields.insert(fields.end(), more.begin(), more.end());
  }
  return fields;
}

std::string CoverageCase::ToString() const {
  const std::string points = is_tuned ? std::to_string(nx) + ' ' + std::to_string(ny) : "- -";
  return TextOf(grid) + ' ' + points + ' ' + TextOf(s1) + ' ' + TextOf(s2);
}

fp_reference::PlainCounts CoverageCase::Scan() const {
  return fp_reference::PlainScan(grid, nx, ny, *AsPlainShape(s1), *AsPlainShape(s2));
}

void TuneScanPoints(const CoverageCase& c) {
  const std::string prefix = "persist.vendor.udfps.geometry.rect.";
  android::base::SetProperty(prefix + "x_axis_scan_points", c.is_tuned ? std::to_string(c.nx) : "");
  android::base::SetProperty(prefix + "y_axis_scan_points", c.is_tuned ? std::to_string(c.ny) : "");
}

fp_reference::PlainCounts CountIn(const Rect& grid, const IShape& s1, const IShape& s2) {
  fp_reference::PlainCounts counts = {77, 77, 77};
  grid.NumOfPointsIn(s1, s2, counts.in_s1, counts.in_s2, counts.in_both);
  return counts;
}

}  // namespace fp_test
