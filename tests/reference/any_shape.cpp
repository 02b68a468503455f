// SPDX-License-Identifier: Apache-2.0
#include "reference/any_shape.h"

#include <cstdio>
#include <cstdlib>

namespace fp_reference {

using android::fp_utils::Circle;
using android::fp_utils::Ellipse;
using android::fp_utils::IShape;
using android::fp_utils::Rect;

namespace {

constexpr const char* kNames[] = {"circle", "ellipse", "rect"};  // by index of AnyShape

std::vector<float*> Fields(Circle& c) { return {&c.center.x, &c.center.y, &c.radius}; }
std::vector<float*> Fields(Ellipse& e) {
  return {&e.center.x, &e.center.y, &e.major_axis, &e.minor_axis, &e.orientation};
}
std::vector<float*> Fields(Rect& r) {
  return {&r.top_left.x, &r.top_left.y, &r.bottom_right.x, &r.bottom_right.y};
}

}  // namespace

const IShape& AsShape(const AnyShape& shape) {
  return std::visit([](const auto& s) -> const IShape& { return s; }, shape);
}

std::unique_ptr<IShape> AsPlainShape(const AnyShape& shape) {
  return std::visit([](const auto& s) { return std::unique_ptr<IShape>(new PlainShape(s)); },
                    shape);
}

std::vector<float*> FieldsOf(AnyShape& shape) {
  return std::visit([](auto& s) { return Fields(s); }, shape);
}

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

PlainCounts CountIn(const Rect& grid, const IShape& s1, const IShape& s2) {
  PlainCounts counts = {77, 77, 77};  // to be overwritten
  grid.NumOfPointsIn(s1, s2, counts.in_s1, counts.in_s2, counts.in_both);
  return counts;
}

}  // namespace fp_reference
