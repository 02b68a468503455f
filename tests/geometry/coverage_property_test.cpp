// SPDX-License-Identifier: Apache-2.0
//
// Counting by rows gives the counts of a scan that calls Contains() at every sample.
#include "fp_host/testing.h"
#include "fp_utils/shapes.h"
#include "geometry/grid_count.h"
#include "reference/plain_geometry.h"
#include "support/coverage_case_generator.h"

namespace android::fp_utils {
namespace {

using fp_host::MuteLog;
using fp_host::Share;
using fp_test::CoverageCaseGenerator;
using namespace fp_reference;

// Checks `count` random cases of a numbered stream.
void ExpectScanCounts(uint64_t stream, int count) {
  MuteLog(true);
  CoverageCaseGenerator cases(stream);
  uint64_t partly_covered = 0;
  for (int i = 0; i < count; ++i) {
    const CoverageCase c = cases.Next();
    const PlainCounts expected = c.Scan();
    ASSERT_EQ(expected, c.CountByRows()) << c.ToString();
    ASSERT_EQ(expected, i % 4 == 0 ? c.CountBySamples() : expected) << c.ToString();
    partly_covered += expected.in_both != 0 && expected.in_both != c.nx * c.ny ? 1 : 0;
  }
  EXPECT_GT(partly_covered, static_cast<uint64_t>(count) / 10) << "too few cases with an edge";
}

TEST(CoverageProperty, RowsCountWhatTheScanCounts) { ExpectScanCounts(1, Share(200000)); }

TEST(LongCoverageProperty, RowsCountWhatTheScanCounts) {
  for (uint64_t stream = 2; stream < 102; ++stream) {
    ASSERT_NO_FATAL_FAILURE(ExpectScanCounts(stream, Share(200000))) << stream;
  }
}

// Whether the rows of every random ellipse, found with this multiple of the bound, have the right
// count. `change` is applied to each case first.
bool IsExactWith(
    double bound_factor, int count,
    void (*change)(const Ellipse&, CoverageCase*) = [](auto&, auto*) {}) {
  CoverageCaseGenerator cases(1);
  for (int i = 0; i < count; ++i) {
    CoverageCase c = cases.Next();
    const auto* ellipse = std::get_if<Ellipse>(&c.s1);
    if (ellipse == nullptr || c.nx == 0 || c.ny == 0) {
      continue;
    }
    change(*ellipse, &c);
    const Grid grid = {SampleAxis(c.grid.top_left.x, c.grid.bottom_right.x, c.nx),
                       SampleAxis(c.grid.top_left.y, c.grid.bottom_right.y, c.ny)};
    const uint32_t counted = CountRows(grid, EllipseRows(*ellipse, bound_factor), FullRows()).in_s1;
    const PlainCounts scanned = PlainScan(c.grid, c.nx, c.ny, *ellipse, *ellipse);
    // If the ellipse contains all corners, the scan does not test the samples.
    if (counted != scanned.in_s1 && scanned.in_s1 != c.nx * c.ny) {
      return false;
    }
  }
  return true;
}

// With a bound that is too small, some of the cases are counted wrongly. kBoundFactor
// is twice the proven bound.
TEST(CoverageProperty, HalfTheBoundIsNoticed) {
  EXPECT_TRUE(IsExactWith(EllipseRows::kBoundFactor, Share(200000)));
  EXPECT_FALSE(IsExactWith(EllipseRows::kBoundFactor / 4, 200000)) << "half the bound";
}

// The bound depends on the largest offset from the centre's column, even if that of the first
// column is 0.
TEST(CoverageProperty, LargestOffsetDeterminesTheBound) {
  EXPECT_TRUE(IsExactWith(EllipseRows::kBoundFactor, 200000, [](const Ellipse& e, CoverageCase* c) {
    c->grid.top_left.x = e.center.x;
    c->nx = 2;
  }));
}

}  // namespace
}  // namespace android::fp_utils
