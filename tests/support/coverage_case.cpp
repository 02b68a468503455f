// SPDX-License-Identifier: Apache-2.0
#include "support/coverage_case.h"

#include <android-base/properties.h>

namespace fp_test {

void CoverageCase::SetDefaultScanPoints() {
  is_tuned = false;
  nx = fp_reference::PlainScanPoints(grid.top_left.x, grid.bottom_right.x);
  ny = fp_reference::PlainScanPoints(grid.top_left.y, grid.bottom_right.y);
}

std::vector<float*> CoverageCase::Fields() {
  std::vector<float*> fields = {&grid.top_left.x, &grid.top_left.y, &grid.bottom_right.x,
                                &grid.bottom_right.y};
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

}  // namespace fp_test
