// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

namespace fp_inspect {

struct Interval {
  double low = 0;
  double high = 1;
};

inline constexpr double kZ95 = 1.959963984540054;   // normal quantile of 0.975
inline constexpr double kZ999 = 3.290526731491926;  // of 0.9995

// The score interval of a share of k in n, within 0 and 1; for n = 0 the whole range. E. B. Wilson,
// "Probable inference, the law of succession, and statistical inference", Journal of the American
// Statistical Association 22 (1927), 209-212.
Interval WilsonInterval(size_t k, size_t n, double z = kZ95);

// The quantile q (0 to 1) of `values`, which it sorts, interpolated linearly between neighbours;
// definition 7 of R. J. Hyndman and Y. Fan, "Sample quantiles in statistical packages", The
// American Statistician 50 (1996), 361-365. NaN without values.
double Quantile(std::vector<double>& values, double q);

// The 95 % interval of a difference of independent shares, k2 in n2 minus k1 in n1; method 10 of R.
// G. Newcombe, "Interval estimation for the difference between independent proportions: comparison
// of eleven methods", Statistics in Medicine 17 (1998), 873-890.
Interval NewcombeInterval(size_t k1, size_t n1, size_t k2, size_t n2);

// The contribution of one burst to a row of a comparison. The records of a burst depend on each
// other, so bursts are compared, not records.
struct BurstSum {
  size_t n = 0;    // records with a value
  double sum = 0;  // of their values
};
using Bursts = std::vector<BurstSum>;
BurstSum Total(std::span<const BurstSum> bursts);

// The 95 % interval of the mean value from burst `split` on minus that before it, with the variance
// of a ratio of sums over clusters; W. G. Cochran, "Sampling Techniques", third edition (1977),
// section 6.3. NaN with fewer than two bursts on a side.
Interval MeanInterval(const Bursts& bursts, size_t split);

// The distance between the means before burst `split` and from it on, divided by its standard
// error, up to a factor that is the same for all orders of the bursts.
double Distance(std::span<const BurstSum> bursts, size_t split);

// The largest distance over the splits with 20 records or more on each side, and that split; 0
// without such a split.
struct BestSplit {
  double distance = 0;
  size_t split = 0;
};
BestSplit LargestDistance(std::span<const BurstSum> bursts);

// The splits, from first to last, that fit the data almost as well as `best`: those whose
// likelihood ratio lies below the quantile 0.99 of chi squared, with the variance between bursts;
// after K. J. Worsley, "Confidence regions and tests for a change-point in a sequence of
// exponential family random variables", Biometrika 73 (1986), 91-104.
struct SplitRange {
  size_t first = 0;
  size_t last = 0;
};
SplitRange RangeOf(const BestSplit& best, std::span<const BurstSum> bursts);

// For each row, the probability that a random order of its bursts gives a statistic at least as
// large as the actual one: (c + 1) / (n + 1) of n = 1,999 random orders, the same in each run; B.
// Phipson and G. K. Smyth, "Permutation p-values should never be zero", Statistical Applications in
// Genetics and Molecular Biology 9 (2010), article 39. All rows have the same bursts.
std::vector<double> PermutationTest(
    const std::vector<Bursts>& rows,
    const std::function<double(std::span<const BurstSum>)>& statistic);

// The smallest p that such a test can give if the first `split` of `bursts` bursts are on one side.
double SmallestP(size_t bursts, size_t split);

// Corrects for the number of tests; S. Holm, "A simple sequentially rejective multiple test
// procedure", Scandinavian Journal of Statistics 6 (1979), 65-70.
std::vector<double> Holm(const std::vector<double>& p);

}  // namespace fp_inspect
