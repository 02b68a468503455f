// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/shapes.h"

#include <cmath>
#include <limits>
#include <string>

#include "fp_host/testing.h"
#include "support/coverage_case_generator.h"

namespace android::fp_utils {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

TEST(Shapes, Print) {
  EXPECT_EQ("Point(1.50, -2.00)", Point(1.5F, -2).Print());
  EXPECT_EQ("Circle(x:1.00, y:2.01, r:-0.00)", Circle({1, 2.0051F}, -0.0F).Print());
  EXPECT_EQ("Ellipse(x:540.00, y:1800.25, M:20.00, m:nan, o:1.57)",
            Ellipse({540, 1800.25F}, 20, kNan, 1.5707964F).Print());
  EXPECT_EQ("Rect(0.00, 0.00 - 10.00, inf)", Rect({0, 0}, {10, INFINITY}).Print());
  EXPECT_EQ("Point(0.00, 0.00) Circle(x:0.00, y:0.00, r:0.00) Rect(0.00, 0.00 - 0.00, 0.00)",
            Point().Print() + ' ' + Circle().Print() + ' ' + Rect().Print());
  EXPECT_EQ("Ellipse(x:0.00, y:0.00, M:0.00, m:0.00, o:0.00)", Ellipse().Print());
}

TEST(Shapes, PrintIsCutAt127Characters) {
  const float large = std::numeric_limits<float>::max();
  const std::string text = Rect({large, large}, {large, large}).Print();
  EXPECT_EQ(127u, text.size());
  EXPECT_EQ("Rect(340282346638528859811704183484516925440.00, ", text.substr(0, 49));
}

TEST(Shapes, Contain) {
  const float up = 1.0F + std::numeric_limits<float>::epsilon();
  const Circle circle({0, 0}, 5);
  const Rect rect({0, 0}, {10, 20});
  const Ellipse upright({0, 0}, 20, 10, 0);
  const Ellipse lying({0, 0}, 20, 10, 1.5707964F);
  const Ellipse tilted({0, 0}, 20, 2, 0.7853982F);
  const struct {
    const IShape& shape;
    Point p;
    bool inside;
    const char* why;
  } rows[] = {
      {circle, {3, 4}, true, "on the edge"},
      {circle, {3, 4.01F}, false, "just outside"},
      {circle, {kNan, 0}, false, "NaN lies in no shape"},
      {Circle({1, 2}, 0), {1, 2}, true, "a radius of 0 contains the centre"},
      {Circle({1, 2}, -0.0F), {1, 2}, true, "as does -0"},
      {Circle({1, 2}, -1), {1, 2}, false, "a negative radius contains nothing"},
      {Circle({0, 0}, 1), {up, 0}, false, "one ulp beyond"},
      {Circle({0, 0}, 1), {0x1p-12F, 1}, true, "the square is beyond, its root rounds to 1"},
      {Circle({0, 0}, INFINITY),
       {1e38F, 1e38F},
       true,
       "overflows to infinity, which is the radius"},
      {rect, {0, 0}, true, "corners belong to it"},
      {rect, {10, 20}, true, "corners belong to it"},
      {rect, {10, 0}, true, "corners belong to it"},
      {rect, {10.001F, 5}, false, "right of it"},
      {rect, {5, -0.001F}, false, "above it"},
      {Rect({10, 10}, {0, 0}), {5, 5}, false, "swapped corners contain nothing"},
      {Rect({0, 0}, {kNan, 20}), {5, 5}, false, "NaN corner"},
      {upright, {0, 10}, true, "lower end of the major axis"},
      {upright, {0, -10}, true, "upper end of the major axis"},
      {upright, {5, 0}, true, "end of the minor axis"},
      {upright, {6, 0}, false, "beyond the minor axis"},
      {upright, {0, 10.1F}, false, "beyond the major axis"},
      {upright, {0, 10 * up}, false, "one ulp beyond"},
      {lying, {10, 0}, true, "turned to the right"},
      {lying, {0, 6}, false, "turned to the right"},
      {tilted, {6, -6}, true, "turned up and to the right, y points down"},
      {tilted, {6, 6}, false, "turned up and to the right, y points down"},
      {Ellipse({0, 0}, -20, 10, 0), {0, 9}, true, "axes count by their squares"},
      {Ellipse({0, 0}, 0, 10, 0), {0, 0}, false, "0/0 at the centre of a flat one"},
      {Ellipse({0, 0}, 0, 10, 0), {1, 0}, false, "0/0 on the axis of a flat one"},
      {Ellipse({0, 0}, INFINITY, 10, 0), {5, 1e30F}, true, "an infinite strip"},
      {Ellipse({0, 0}, 20, 10, INFINITY), {0, 0}, false, "no orientation"},
      {Ellipse({kNan, 0}, 20, 10, 0), {0, 0}, false, "no centre"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.inside, row.shape.Contains(row.p))
        << row.shape.Print() << row.p.Print() << row.why;
  }
}

// Tests the rounding of each step with samples near edges.
TEST(Shapes, ContainToTheLastBit) {
  fp_test::CoverageCaseGenerator cases(11);
  int inside = 0;
  const int count = fp_host::Share(300000);
  for (int i = 0; i < count; ++i) {
    const fp_reference::CoverageCase c = cases.Next();
    const bool expected = fp_reference::AsPlainShape(c.s1)->Contains(c.grid.top_left);
    ASSERT_EQ(expected, fp_reference::AsShape(c.s1).Contains(c.grid.top_left)) << c.ToString();
    inside += expected ? 1 : 0;
  }
  EXPECT_GT(inside, count / 10);
  EXPECT_LT(inside, count * 9 / 10);
}

}  // namespace
}  // namespace android::fp_utils
