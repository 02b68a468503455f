// SPDX-License-Identifier: Apache-2.0
//
// Measures the time from a report to the callback, and compares it with the time that a byte in a
// pipe takes to wake a plain thread from poll(). Also compares reading and decoding full buffers of
// reports with only reading them.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "fp_host/touch_node.h"
#include "fp_utils/fps_touch_handler.h"
#include "measure/ratios.h"
#include "measure/wakes.h"
#include "support/allocations.h"

namespace fp_bench {
namespace {

using android::fp_utils::FpsTouchHandler;
using android::fp_utils::TouchEvent;
using fp_host::TouchNode;
using fp_host::TouchRecord;
using fp_test::Allocations;

constexpr FpsTouchHandler::TouchConfig kArea = {.left = 0, .top = 0, .right = 200, .bottom = 200};

constexpr size_t kInfoOffset = 8 + 68;  // of `info` in the first record of the buffer

void ReportToCallback(benchmark::State& state) {
  TouchNode node;
  std::atomic<uint32_t> seen = 0;
  FpsTouchHandler handler;
  handler.touch_event_callback_ = [&seen](const TouchEvent& event) { seen = event.info; };
  handler.Configure(kArea);
  handler.Start();
  std::string buffer = fp_host::EncodeTouchRecords({TouchRecord()});
  MeasureWakes(state, seen, [&](uint32_t turn) {
    memcpy(&buffer[kInfoOffset], &turn, sizeof turn);
    node.PushBytes(buffer);
  });
  handler.Stop();
}

void PipeByteToPoll(benchmark::State& state) {
  int fds[2];
  if (pipe2(fds, O_CLOEXEC) != 0) {
    state.SkipWithError("no pipe");
    return;
  }
  std::atomic<uint32_t> seen = 0;
  std::thread poller([&] {
    pollfd ready = {.fd = fds[0], .events = POLLIN, .revents = 0};
    uint32_t turn = 0;
    while (poll(&ready, 1, -1) == 1 && read(fds[0], &turn, sizeof turn) == sizeof turn) {
      seen = turn;
    }
  });
  MeasureWakes(state, seen, [&fds](uint32_t turn) { (void)!write(fds[1], &turn, sizeof turn); });
  close(fds[1]);
  poller.join();
  close(fds[0]);
}

// Sends a full buffer to the device and reads it back, both on this thread.
template <typename Take>
void TakeBuffers(benchmark::State& state, TouchNode& node, Take take) {
  const std::string buffer = fp_host::EncodeTouchRecords(std::vector<TouchRecord>(128));
  const uint64_t before = Allocations();
  for (auto _ : state) {
    node.PushBytes(buffer);
    take();
  }
  state.counters["reports"] = benchmark::Counter(static_cast<double>(128 * state.iterations()),
                                                 benchmark::Counter::kIsRate);
  state.counters["allocations/report"] =
      static_cast<double>(Allocations() - before) / static_cast<double>(128 * state.iterations());
}

void FullBuffer(benchmark::State& state) {
  TouchNode node;
  FpsTouchHandler handler;
  handler.touch_event_callback_ = [](const TouchEvent& event) {
    benchmark::DoNotOptimize(event.stamp);
  };
  handler.Configure(kArea);
  TakeBuffers(state, node, [&handler] { handler.ReadTouchEvent(); });
}

void FullBufferUndecoded(benchmark::State& state) {
  TouchNode node;
  const int fd = open("/dev/fth_fd", O_RDWR | O_CLOEXEC);
  TakeBuffers(state, node, [fd] {
    char buffer[11272];
    benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer));
  });
  close(fd);
}

BENCHMARK(ReportToCallback)->Iterations(5)->UseManualTime();
BENCHMARK(PipeByteToPoll)->Iterations(5)->UseManualTime();
BENCHMARK(FullBuffer);
BENCHMARK(FullBufferUndecoded);

const bool kClaims[] = {
    Claim("touch_report_to_callback", "ReportToCallback/iterations:5/manual_time",
          "PipeByteToPoll/iterations:5/manual_time", Goal::kAtMost, 1.3),
    ReportRatio("touch_full_buffer_over_bare_read", "FullBuffer", "FullBufferUndecoded"),
};

}  // namespace
}  // namespace fp_bench
