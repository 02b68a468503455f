// SPDX-License-Identifier: Apache-2.0
#include "fp_host/testing.h"
#include "fp_utils/shapes.h"
#include "support/allocations.h"

namespace android::fp_utils {
namespace {

using fp_test::Allocations;

TEST(CoverageAllocation, EstimatesDoNotAllocate) {
  fp_host::MuteLog(true);
  const Circle sensor({540, 1800}, 100);
  const Ellipse touch({560, 1790}, 220, 160, 0.4F);
  const Rect area({400, 1700}, {3000, 1900});
  EXPECT_LT(0, sensor.CoverageCoveredBy(touch));
  const uint64_t before = Allocations();
  EXPECT_LT(0u, before) << "they are counted";
  EXPECT_LT(0, sensor.CoverageCoveredBy(touch));
  EXPECT_LT(0, area.CoverageCoveredBy(touch));
  EXPECT_EQ(before, Allocations());
}

}  // namespace
}  // namespace android::fp_utils
