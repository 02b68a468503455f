// SPDX-License-Identifier: Apache-2.0
//
// Compares a percentile of N finger sizes with copying and sorting them. Uses many different
// histories, so that the branch predictor cannot learn one of them.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "fp_utils/finger_sizes.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using android::fp_utils::FingerSize;
using android::fp_utils::FingerSizes;

constexpr size_t kTotalSamples = 200000;

std::vector<std::unique_ptr<FingerSizes>> Histories(int64_t samples) {
  std::mt19937 random(1);
  std::vector<std::unique_ptr<FingerSizes>> histories;
  for (size_t left = kTotalSamples; left >= static_cast<size_t>(samples);
       left -= static_cast<size_t>(samples)) {
    histories.push_back(std::make_unique<FingerSizes>("bench", FingerSizes::kUnbounded, false));
    for (int64_t i = 0; i < samples; ++i) {
      const float size = 40 + static_cast<float>(random() % 600000) / 10000;
      histories.back()->PushFinger(std::make_shared<FingerSize>(1, size, size * 0.8F));
    }
  }
  return histories;
}

float SortedPercentile(const FingerSizes& sizes, FingerSize::Axis axis, float percentile) {
  std::vector<float> values;
  for (const auto& finger : sizes.GetFingers()) {
    values.push_back(finger->GetValue(axis));
  }
  std::sort(values.begin(), values.end());
  const float position = percentile / 100.0F * static_cast<float>(values.size() - 1);
  const auto index = static_cast<size_t>(position);
  const float low = values[index];
  const float high = values[std::min(index + 1, values.size() - 1)];
  return low + (position - static_cast<float>(index)) * (high - low);
}

template <typename Query>
void Run(benchmark::State& state, Query query) {
  const auto histories = Histories(state.range(0));
  constexpr float kPercentiles[] = {5, 50, 95, 99};
  size_t turn = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        query(*histories[turn % histories.size()], kPercentiles[turn / histories.size() % 4]));
    ++turn;
  }
}

void Percentile(benchmark::State& state) {
  Run(state, [](FingerSizes& sizes, float percentile) {
    return sizes.GetPercentileValue(FingerSize::kMajor, percentile);
  });
}

void PercentileBySorting(benchmark::State& state) {
  Run(state, [](FingerSizes& sizes, float percentile) {
    return SortedPercentile(sizes, FingerSize::kMajor, percentile);
  });
}

BENCHMARK(Percentile)->Arg(100)->Arg(10000);
BENCHMARK(PercentileBySorting)->Arg(100)->Arg(10000);

const bool kClaims[] = {
    Claim("percentile_100", "PercentileBySorting/100", "Percentile/100", Goal::kAtLeast, 2),
    Claim("percentile_10000", "PercentileBySorting/10000", "Percentile/10000", Goal::kAtLeast, 5),
};

}  // namespace
}  // namespace fp_bench
