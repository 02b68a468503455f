// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <limits>
#include <string>
#include <vector>

#include "output/html.h"

// The part of SVG that the report needs. Coordinates are in units of a figure that is kWide units
// wide and that a page scales. Colours are left to the classes in the page's style.

namespace fp_inspect {

inline constexpr double kWide = 400;

// Maps values to coordinates. Values outside of the axis, and NaN, are drawn at its ends.
struct Axis {
  double At(double value) const;
  std::vector<double> Ticks() const;  // about five round values

  double low = 0;
  double high = 1;
  double from = 0;  // the coordinates of both ends
  double to = kWide;
  double most = 90'000;  // a damaged value does not stretch the axis beyond it
};

// The smallest axis values that leave out at most one value in two hundred at each end, and cover
// all of `wanted`, within -most to most.
void FitAxis(std::vector<double> values, const std::vector<double>& wanted, Axis* axis);

// The shapes of marks differ, so that they can be told apart without colours.
enum class Mark { kRing, kCross, kTriangle, kTriangleDown, kDiamond };
std::string MarkPath(Mark mark, double x, double y, double radius);

Html Path(const std::string& classes, const std::string& path, const std::string& title = "");
Html Line(const std::string& classes, double x1, double y1, double x2, double y2);
Html Rect(const std::string& classes, double x, double y, double width, double height);
Html Label(const std::string& classes, double x, double y, const std::string& text);

// An image with a title and a description for screen readers. `id` is unique in the page.
Html Svg(const std::string& id, const std::string& title, const std::string& description,
         double height, const Html& body);

// A drawing of a number that is next to it as text, hidden from screen readers.
Html SmallSvg(const std::string& classes, double width, double height, const Html& body);

// Points of one kind. Points that lie close together become one mark, whose size shows their
// number, so that a drawing of any number of points stays small.
struct Cloud {
  Mark mark;
  std::string classes;
  std::vector<std::pair<double, double>> points = {};
};
Html DrawClouds(const Axis& x, const Axis& y, const std::vector<Cloud>& clouds);

// Both axes with their ticks and names.
Html DrawAxes(const Axis& x, const Axis& y, const std::string& x_name, const std::string& y_name);

}  // namespace fp_inspect
