// SPDX-License-Identifier: Apache-2.0
#include "model/statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <utility>

namespace fp_inspect {
namespace {

constexpr size_t kPermutations = 1999;
constexpr size_t kMinRecords = 20;       // on each side of a change
constexpr double kChiSquared99 = 6.635;  // one degree of freedom
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double MeanOf(const BurstSum& total) { return total.sum / static_cast<double>(total.n); }

double DistanceOf(const BurstSum& before, const BurstSum& after) {
  if (before.n == 0 || after.n == 0) {
    return 0;
  }
  return std::abs(MeanOf(before) - MeanOf(after)) /
         std::sqrt(1 / static_cast<double>(before.n) + 1 / static_cast<double>(after.n));
}

// Sum of the squared deviations of bursts from the mean of their side.
double SquaresWithin(std::span<const BurstSum> side) {
  const double mean = MeanOf(Total(side));
  return std::accumulate(side.begin(), side.end(), 0.0, [&](double sum, const BurstSum& burst) {
    const double deviation = burst.sum - mean * static_cast<double>(burst.n);
    return sum + deviation * deviation;
  });
}

double VarianceOfMean(std::span<const BurstSum> side) {
  const auto count = static_cast<double>(side.size());
  const auto n = static_cast<double>(Total(side).n);
  return side.size() < 2 ? kNan : SquaresWithin(side) * count / (count - 1) / (n * n);
}

template <typename Visit>
void ForEachSplit(std::span<const BurstSum> bursts, Visit visit) {
  BurstSum before;
  BurstSum after = Total(bursts);
  for (size_t split = 1; split < bursts.size(); ++split) {
    const BurstSum& burst = bursts[split - 1];
    before = {before.n + burst.n, before.sum + burst.sum};
    after = {after.n - burst.n, after.sum - burst.sum};
    if (before.n >= kMinRecords && after.n >= kMinRecords) {
      visit(split, DistanceOf(before, after));
    }
  }
}

}  // namespace

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

Interval NewcombeInterval(size_t k1, size_t n1, size_t k2, size_t n2) {
  const auto share = [](size_t k, size_t n) {
    return static_cast<double>(k) / static_cast<double>(std::max<size_t>(n, 1));
  };
  const Interval first = WilsonInterval(k1, n1);
  const Interval second = WilsonInterval(k2, n2);
  const double p1 = share(k1, n1);
  const double p2 = share(k2, n2);
  return {p2 - p1 - std::hypot(p2 - second.low, first.high - p1),
          p2 - p1 + std::hypot(second.high - p2, p1 - first.low)};
}

BurstSum Total(std::span<const BurstSum> bursts) {
  BurstSum total;
  for (const BurstSum& burst : bursts) {
    total.n += burst.n;
    total.sum += burst.sum;
  }
  return total;
}

Interval MeanInterval(const Bursts& bursts, size_t split) {
  const std::span all(bursts);
  const auto before = all.first(split);
  const auto after = all.subspan(split);
  const double centre = MeanOf(Total(after)) - MeanOf(Total(before));
  const double half = kZ95 * std::sqrt(VarianceOfMean(before) + VarianceOfMean(after));
  return {centre - half, centre + half};
}

double Distance(std::span<const BurstSum> bursts, size_t split) {
  return DistanceOf(Total(bursts.first(split)), Total(bursts.subspan(split)));
}

BestSplit LargestDistance(std::span<const BurstSum> bursts) {
  BestSplit best;
  ForEachSplit(bursts, [&](size_t split, double distance) {
    if (distance > best.distance) {
      best = {distance, split};
    }
  });
  return best;
}

SplitRange RangeOf(const BestSplit& best, std::span<const BurstSum> bursts) {
  const double variance =
      (SquaresWithin(bursts.first(best.split)) + SquaresWithin(bursts.subspan(best.split))) /
      static_cast<double>(Total(bursts).n);
  SplitRange range = {best.split, best.split};
  ForEachSplit(bursts, [&](size_t split, double distance) {
    if (best.distance * best.distance - distance * distance < kChiSquared99 * variance) {
      range = {std::min(range.first, split), std::max(range.last, split)};
    }
  });
  return range;
}

std::vector<double> PermutationTest(
    const std::vector<Bursts>& rows,
    const std::function<double(std::span<const BurstSum>)>& statistic) {
  std::vector<Bursts> shuffled = rows;
  std::vector<double> actual;
  actual.reserve(rows.size());
  for (const Bursts& row : rows) {
    actual.push_back(statistic(row) *
                     (1 - 1e-9));  // sums in another order differ in the last digits
  }
  std::vector<size_t> as_large(rows.size(), 1);
  std::mt19937_64 random(1);
  for (size_t i = 0; i < kPermutations; ++i) {
    // std::shuffle differs between standard libraries.
    for (size_t end = rows.empty() ? 0 : rows.front().size(); end > 1; --end) {
      const size_t at = random() % end;
      for (Bursts& row : shuffled) {
        std::swap(row[end - 1], row[at]);
      }
    }
    for (size_t row = 0; row < rows.size(); ++row) {
      as_large[row] += statistic(shuffled[row]) >= actual[row] ? 1 : 0;
    }
  }
  std::vector<double> p;
  p.reserve(rows.size());
  for (const size_t count : as_large) {
    p.push_back(static_cast<double>(count) / (kPermutations + 1));
  }
  return p;
}

double SmallestP(size_t bursts, size_t split) {
  // If the sides have the same size, exchanging them gives the same distance.
  double p = 2 * split == bursts ? 2 : 1;
  for (size_t i = 1; i <= split; ++i) {
    p *= static_cast<double>(i) / static_cast<double>(bursts - split + i);
  }
  return std::max(p, 1.0 / (kPermutations + 1));
}

std::vector<double> Holm(const std::vector<double>& p) {
  std::vector<size_t> order(p.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return p[a] < p[b]; });
  std::vector<double> corrected(p.size());
  double largest = 0;
  for (size_t i = 0; i < order.size(); ++i) {
    const double scaled = p[order[i]] * static_cast<double>(p.size() - i);
    largest = std::min(1.0, std::max(largest, scaled));
    corrected[order[i]] = largest;
  }
  return corrected;
}

}  // namespace fp_inspect
