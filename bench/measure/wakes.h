// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <vector>

namespace fp_bench {

// Measures how long another thread takes to wake, as the median of many calls of `wake`. Each call
// makes that thread store the argument in `seen`. A pause before each call lets the thread sleep.
template <typename Wake>
void MeasureWakes(benchmark::State& state, std::atomic<uint32_t>& seen, Wake wake) {
  using Clock = std::chrono::steady_clock;
  constexpr int kWakes = 301;
  constexpr std::chrono::microseconds kPause(30);
  uint32_t turn = 0;
  for (auto _ : state) {
    std::vector<double> seconds;
    for (int i = 0; i < kWakes; ++i) {
      const auto rested = Clock::now() + kPause;
      while (Clock::now() < rested) {
      }
      ++turn;
      const auto begin = Clock::now();
      wake(turn);
      while (seen != turn) {
      }
      seconds.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
    }
    std::nth_element(seconds.begin(), seconds.begin() + kWakes / 2, seconds.end());
    state.SetIterationTime(seconds[kWakes / 2]);
  }
}

}  // namespace fp_bench
