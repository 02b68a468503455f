// SPDX-License-Identifier: Apache-2.0
//
// Compiled without run-time types, as services usually are.
#include <gtest/gtest.h>

#include "fp_utils/shapes.h"

namespace android::fp_utils {
namespace {

class LeftHalf : public IShape {
 public:
  std::string Print() const override { return "LeftHalf"; }
  bool Contains(Point const& p) const override { return p.x < 5; }
};

struct WideCircle : Circle {
  bool Contains(Point const& p) const override { return p.x < 5; }
};

TEST(CoverageWithoutRtti, OfShapesFromTheService) {
  const Rect ten({0, 0}, {9, 9});
  EXPECT_EQ(50.0F, ten.CoverageCoveredBy(LeftHalf()));
  EXPECT_EQ(50.0F, ten.CoverageCoveredBy(WideCircle()));
  EXPECT_EQ(1.0F, ten.CoverageCoveredBy(static_cast<const IShape&>(Circle({5, 5}, 0.5F))));
}

}  // namespace
}  // namespace android::fp_utils
