// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <random>

namespace fp_service {

// Random numbers that depend only on the seed. The distributions of <random> differ between
// standard libraries.
class Random {
 public:
  explicit Random(uint64_t seed) : engine_(seed) {}

  // In [0, 1).
  double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1p-53; }

  // From 0 to limit - 1.
  int32_t UniformInt(int32_t limit) { return static_cast<int32_t>(Uniform() * limit); }

  // Close to a normal distribution: the sum of twelve uniform numbers has the deviation 1.
  double Noise(double deviation) {
    double sum = -6;
    for (int i = 0; i < 12; ++i) {
      sum += Uniform();
    }
    return sum * deviation;
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace fp_service
