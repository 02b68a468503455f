// SPDX-License-Identifier: Apache-2.0
//
// Counts that must not change, whatever compiles them and where it runs. FP_WRITE_GOLDEN=<file>
// writes the counts of the plain scan for the same cases there.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "support/coverage_case.h"
#include "support/device_test.h"

namespace {

using fp_reference::PlainCounts;
using fp_test::AsPlainShape;
using fp_test::AsShape;
using fp_test::CountIn;
using fp_test::CoverageCase;

std::string Line(const CoverageCase& c, const PlainCounts& counts) {
  return c.ToString() + ' ' + std::to_string(counts.in_s1) + ' ' + std::to_string(counts.in_s2) +
         ' ' + std::to_string(counts.in_both);
}

void ExpectCounts(const std::string& line) {
  const CoverageCase c = CoverageCase::FromString(line);
  fp_test::TuneScanPoints(c);
  EXPECT_EQ(line, Line(c, c.Scan())) << "plain scan";
  EXPECT_EQ(line, Line(c, CountIn(c.grid, AsShape(c.s1), AsShape(c.s2)))) << "by rows";
  EXPECT_EQ(line, Line(c, CountIn(c.grid, *AsPlainShape(c.s1), *AsPlainShape(c.s2)))) << "scan";
}

TEST(CoverageGolden, CountsStay) {
  fp_test::MuteLog(true);
  const char* const rewritten = getenv("FP_WRITE_GOLDEN");
  std::ofstream out(rewritten != nullptr ? rewritten : "/dev/null");
  std::ifstream in(GEOMETRY_TESTS "/coverage_golden.txt");
  std::string line;
  int cases = 0;
  while (std::getline(in, line)) {
    if (!line.empty() && line[0] != '#') {
      ++cases;
      ExpectCounts(line);
      const CoverageCase c = CoverageCase::FromString(line);
      line = Line(c, c.Scan());
    }
    out << line << '\n';
  }
  EXPECT_EQ(80, cases);
}

}  // namespace
