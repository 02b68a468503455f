// SPDX-License-Identifier: Apache-2.0
#include "model/statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace fp_inspect {

Interval WilsonInterval(size_t k, size_t n, double z) {
  if (n == 0) {
    return {};
  }
  const auto trials = static_cast<double>(n);
  const double share = static_cast<double>(k) / trials;
  const double centre = share + z * z / (2 * trials);
  const double half = z * std::sqrt(share * (1 - share) / trials + z * z / (4 * trials * trials));
  const double scale = 1 + z * z / trials;
  return {std::max(0.0, (centre - half) / scale), std::min(1.0, (centre + half) / scale)};
}

double Quantile(std::vector<double>& values, double q) {
  if (values.empty()) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  std::sort(values.begin(), values.end());
  const double at = q * static_cast<double>(values.size() - 1);
  const auto below = static_cast<size_t>(at);
  const size_t above = std::min(below + 1, values.size() - 1);
  return values[below] + (at - static_cast<double>(below)) * (values[above] - values[below]);
}

}  // namespace fp_inspect
