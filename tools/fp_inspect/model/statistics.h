// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <vector>

namespace fp_inspect {

struct Interval {
  double low = 0;
  double high = 1;
};

inline constexpr double kZ95 = 1.959963984540054;   // normal quantile of 0.975
inline constexpr double kZ999 = 3.290526731491926;  // of 0.9995

// The score interval of a share of k in n, both ends within 0 and 1; of n = 0 all of it.
// E. B. Wilson, "Probable inference, the law of succession, and statistical inference", Journal of
// the American Statistical Association 22 (1927), 209-212.
Interval WilsonInterval(size_t k, size_t n, double z = kZ95);

// The quantile q (0 to 1) of `values`, which it sorts, interpolated linearly between neighbours;
// definition 7 of R. J. Hyndman and Y. Fan, "Sample quantiles in statistical packages", The
// American Statistician 50 (1996), 361-365. NaN without values.
double Quantile(std::vector<double>& values, double q);

}  // namespace fp_inspect
