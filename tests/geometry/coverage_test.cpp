// SPDX-License-Identifier: Apache-2.0
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "fp_host/testing.h"
#include "fp_utils/shapes.h"
#include "reference/coverage_case.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_reference;
using Counts = PlainCounts;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

LogLine CornerLine(int shape, bool inside) {
  return Debug("Geometry", "[NumOfPointsIn] all_points_in_s" + std::to_string(shape) + ':' +
                               std::to_string(inside));
}

// Logs every call of Contains(), so that its order among the library's log lines is visible.
class LoggingShape : public IShape {
 public:
  LoggingShape(std::string name, std::function<bool(const Point&)> contains)
      : name_(std::move(name)), contains_(std::move(contains)) {}
  std::string Print() const override { return name_; }
  bool Contains(const Point& p) const override {
    __android_log_print(ANDROID_LOG_INFO, "user", "%s(%g,%g)", name_.c_str(), p.x, p.y);
    return contains_(p);
  }

 private:
  std::string name_;
  std::function<bool(const Point&)> contains_;
};

// The messages logged since the last time, each with a blank before it.
std::string TakeMessages() {
  std::string messages;
  for (const LogLine& line : TakeLog()) {
    messages += ' ' + line.message;
  }
  return messages;
}

TEST(Coverage, CallsUserShapesInOrder) {
  const LoggingShape a("a", [](const Point& p) { return p.x < 1; });
  const LoggingShape b("b", [](const Point& p) { return p.y > 0; });
  EXPECT_EQ((Counts{2, 2, 1}), CountIn(Rect({0, 0}, {1, 1}), a, b));
  EXPECT_EQ(
      " a(0,0) a(0,1) a(1,0) [NumOfPointsIn] all_points_in_s1:0"
      " b(0,0) [NumOfPointsIn] all_points_in_s2:0"
      " a(0,0) b(0,0) a(1,0) b(1,0) a(0,1) b(0,1) a(1,1) b(1,1)",
      TakeMessages())
      << "corners column by column, samples row by row, b even where a does not contain";
}

TEST(Coverage, DoesNotSampleAShapeThatContainsAllCorners) {
  const LoggingShape all("all", [](const Point&) { return true; });
  const LoggingShape left("left", [](const Point& p) { return p.x < 1; });
  EXPECT_EQ((Counts{4, 2, 2}), CountIn(Rect({0, 0}, {1, 1}), all, left));
  EXPECT_EQ(
      " all(0,0) all(0,1) all(1,0) all(1,1) [NumOfPointsIn] all_points_in_s1:1"
      " left(0,0) left(0,1) left(1,0) [NumOfPointsIn] all_points_in_s2:0"
      " left(0,0) left(1,0) left(0,1) left(1,1)",
      TakeMessages());
  EXPECT_EQ((Counts{4, 4, 4}), CountIn(Rect({0, 0}, {1, 1}), Circle({0, 0}, 9), all));
  EXPECT_EQ(
      " [NumOfPointsIn] all_points_in_s1:1"
      " all(0,0) all(0,1) all(1,0) all(1,1) [NumOfPointsIn] all_points_in_s2:1",
      TakeMessages());
}

TEST(Coverage, CountsAndLogs) {
  const Rect ten({0, 0}, {10, 10});
  const struct {
    const char *x_points, *y_points;
    Counts expected;
    const char* why;
  } rows[] = {
      {"", "", {121, 55, 55}, "a sample per unit, both edges included"},
      {"1", "", {11, 11, 11}, "one column, at the low edge"},
      {"11", "1", {11, 5, 5}, "one row"},
      {"0x15", "", {231, 99, 99}, "half units; the reader takes hexadecimal"},
      {"4294967296", "-1", {121, 55, 55}, "out of range: default"},
      {"ten", "", {121, 55, 55}, "not a number: default"},
  };
  for (const auto& row : rows) {
    TuneScanPoints(row.x_points, row.y_points);
    EXPECT_EQ(row.expected, CountIn(ten, ten, Rect({0, 0}, {4, 10}))) << row.why;
    EXPECT_LOG(CornerLine(1, true), CornerLine(2, false)) << row.why;
  }
  TuneScanPoints("", "");
  EXPECT_EQ(45.454548F, ten.CoverageCoveredBy(Rect({0, 0}, {4, 10})));
}

// The samples of the other axis, up to 4,294,967,295, are not visited.
TEST(Coverage, NoScanPoints) {
  const Rect ten({0, 0}, {10, 10});
  const struct {
    Rect grid;
    const char *x_points, *y_points;
    const char* error;
    const char* why;
  } rows[] = {
      {ten, "0", "", "Invalid scan points(0, 11)", "no columns"},
      {ten, "0", "4294967295", "Invalid scan points(0, 4294967295)", "no columns, most rows"},
      {ten, "4294967295", "0", "Invalid scan points(4294967295, 0)", "no rows, most columns"},
      {Rect({0, 0}, {-1, 3e38F}), "", "", "Invalid scan points(0, 4294967295)", "inverted"},
      {Rect({0, 0}, {kNan, 1}), "", "", "Invalid scan points(0, 2)", "NaN"},
  };
  const LoggingShape user("user", [](const Point&) { return false; });
  for (const auto& row : rows) {
    TuneScanPoints(row.x_points, row.y_points);
    EXPECT_EQ((Counts{0, 0, 0}), CountIn(row.grid, user, Circle({0, 0}, 1))) << row.why;
    EXPECT_LOG(Error("Geometry", std::string("[NumOfPointsIn] ") + row.error),
               Info("user", "user(0,0)"), CornerLine(1, false), CornerLine(2, false))
        << row.why;
    EXPECT_TRUE(std::isnan(row.grid.CoverageCoveredBy(row.grid))) << row.why;
    TakeLog();
  }
}

// Samples that a step no longer changes are not visited one by one either.
TEST(Coverage, EndlessAxes) {
  MuteLog(true);
  const unsigned int all = 4294967295;
  EXPECT_EQ((Counts{all, 1, 1}),
            CountIn(Rect({0, 0}, {kInfinity, 0}), Rect({0, 0}, {kInfinity, 0}), Circle({1, 0}, 2)))
      << "0, then infinity";
  EXPECT_EQ((Counts{all, 3, 3}), CountIn(Rect({0, 0}, {3e38F, 0}), Rect({-1, -1}, {3.4e38F, 1}),
                                         Ellipse({0, 0}, 1, 3e29F, 0)))
      << "steps of 7e28";
  const Rect wide({0x1p32F, 0}, {0x1p33F, 0});
  EXPECT_EQ((Counts{all, 0, 0}), CountIn(wide, wide, Circle({0, 0}, 1)))
      << "2^32 samples do not fit into 32 bits";
  TuneScanPoints("4294967295", "4294967295");
  EXPECT_EQ((Counts{1, 1, 1}),
            CountIn(Rect({0, 0}, {9, 9}), Circle({5, 5}, 99), Circle({4, 4}, 99)))
      << "contained: the product of the numbers, which wraps";
  EXPECT_EQ((Counts{1, 0, 0}),
            CountIn(Rect({1000, 1000}, {1010, 1010}), Circle({1000, 1000}, 1), Circle({9, 9}, 1)))
      << "no step leaves 1000";

  // Starting at 0, sixteen million steps change the value before they become too small.
  TuneScanPoints("4294967295", "1");
  const float step = 10.0F / static_cast<float>(all - 1);
  unsigned int columns = 0;
  float x = 0;
  while (x <= 0.0125F) {
    x += step;
    ++columns;
  }
  EXPECT_EQ((Counts{columns, all, columns}),
            CountIn(Rect({0, 0}, {10, 10}), Circle({0, 0}, 0.0125F), Rect({0, 0}, {10, 10})));
}

TEST(Coverage, AddsUpInACounterThatIsPassedTwice) {
  unsigned int both = 3;
  unsigned int in_s2 = 3;
  Rect({0, 0}, {2, 2}).NumOfPointsIn(Circle({0, 0}, 1), Circle({1, 1}, 1), both, in_s2, both);
  EXPECT_EQ(5u, both) << "3 and 2";
  EXPECT_EQ(5u, in_s2);
}

TEST(Coverage, OfCirclesByGrid) {
  MuteLog(true);
  const Circle three({0, 0}, 3);
  EXPECT_EQ(100.0F, three.CoverageCoveredBy(static_cast<const IShape&>(three)));
  EXPECT_EQ((Counts{29, 29, 29}), CountIn(Rect({-3, -3}, {3, 3}), three, three));
  EXPECT_TRUE(std::isnan(Circle({0, 0}, -1).CoverageCoveredBy(Rect({-9, -9}, {9, 9}))));
  EXPECT_EQ(100.0F, Circle({0, 0}, 0).CoverageCoveredBy(Rect({-9, -9}, {9, 9}))) << "one sample";
}

TEST(Coverage, OfCirclesInClosedForm) {
  const struct {
    Circle self, other;
    float expected;
    const char* why;
  } rows[] = {
      {Circle({7, 7}, 5), Circle({7, 7}, 5), 100, "equal"},
      {Circle({0, 0}, 1), Circle({0, 0}, 2), 100, "inside"},
      {Circle({0, 0}, 2), Circle({0, 0}, 1), 25, "around: the share of this circle"},
      {Circle({0, 0}, 2), Circle({1, 0}, 1), 25, "touching from inside"},
      {Circle({0, 0}, 1), Circle({3, 0}, 2), 0, "touching from outside, by the lens"},
      {Circle({0, 0}, 1), Circle({3.001F, 0}, 2), 0, "apart"},
      {Circle({0, 0}, 1), Circle({1, 0}, 1), 39.100222F, "a lens: 2/3 - sqrt(3) / 2 pi"},
      {Circle({0, 0}, 4), Circle({0, 5}, 3), 13.213192F, "a lens with the smaller one"},
      {Circle({0, 0}, 3), Circle({0, 5}, 4), 23.490119F, "the same lens, of the smaller one"},
      {Circle({540, 1800}, 100), Circle({600, 1720}, 120), 52.912891F, "a lens at an angle"},
      {Circle({0, 0}, 0.1F), Circle({0.3F, 0}, 0.2F), kNan, "touching, a cosine rounds beyond 1"},
      {Circle({0, 0}, 0.1F), Circle({0.6F, 0}, 0.5F), 0, "touching, by the order of its sums"},
      {Circle({0, 0}, 0), Circle({0, 0}, 1), kNan, "nothing to cover"},
      {Circle({0, 0}, kNan), Circle({0, 0}, 1), kNan, "NaN"},
      {Circle({0, 0}, 1), Circle({kNan, 0}, 1), kNan, "NaN"},
      {Circle({0, 0}, -1), Circle({0, 0}, 2), 100, "only the square of the radius is used"},
  };
  for (const auto& row : rows) {
    const float coverage = row.self.CoverageCoveredBy(row.other);
    if (std::isnan(row.expected)) {
      EXPECT_TRUE(std::isnan(coverage)) << row.why;
    } else {
      EXPECT_FLOAT_EQ(row.expected, coverage) << row.why;
    }
  }
  EXPECT_LOG();
}

}  // namespace
}  // namespace android::fp_utils
