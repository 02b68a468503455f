// SPDX-License-Identifier: Apache-2.0
#include <benchmark/benchmark.h>

#include <vector>

#include "fp_utils/crc32.h"
#include "history/plain_crc32.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

template <typename Checksum>
void Run(benchmark::State& state, Checksum checksum) {
  std::vector<uint8_t> data(static_cast<size_t>(state.range(0)));
  for (size_t i = 0; i < data.size(); ++i) {
    data[i] = static_cast<uint8_t>(i * 31);
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(data.data());
    benchmark::DoNotOptimize(checksum(data.data(), data.size()));
  }
}

void Crc32(benchmark::State& state) { Run(state, android::fp_utils::crc32); }
void Crc32ByteByByte(benchmark::State& state) { Run(state, PlainCrc32); }
BENCHMARK(Crc32)->Arg(31)->Arg(130)->Arg(250)->Arg(1024);
BENCHMARK(Crc32ByteByByte)->Arg(31)->Arg(130)->Arg(250)->Arg(1024);

const bool kClaims[] = {
    Claim("crc32_31_bytes", "Crc32ByteByByte/31", "Crc32/31", Goal::kAtLeast, 2.5),
    Claim("crc32_130_bytes", "Crc32ByteByByte/130", "Crc32/130", Goal::kAtLeast, 5),
    Claim("crc32_250_bytes", "Crc32ByteByByte/250", "Crc32/250", Goal::kAtLeast, 5),
    Claim("crc32_1024_bytes", "Crc32ByteByByte/1024", "Crc32/1024", Goal::kAtLeast, 5),
};

}  // namespace
}  // namespace fp_bench
