// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/critical_errors.h"

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using fp_host::DumpText;

// 2026-03-04 05:06:07 in UTC.
constexpr time_t kTime = 1772600767;

std::shared_ptr<ErrorEvent> Event(const std::string& message) {
  auto event = std::make_shared<ErrorEvent>(message);
  event->timestamp = kTime;
  return event;
}

class CriticalErrorsTest : public ::testing::Test {
 protected:
  CriticalErrorsTest() { setenv("TZ", "UTC", 1); }
};

std::string Dump() {
  return DumpText([](int fd) { CriticalErrors::GetInstance().Dump(fd, nullptr, 0); });
}

TEST_F(CriticalErrorsTest, KeepsTheNewestHundred) {
  EXPECT_EQ("Critical Errors:\n", Dump());
  std::string expected = "Critical Errors:\n";
  for (int i = 0; i <= 100; ++i) {
    CriticalErrors::GetInstance().AddErrorEvent(Event("error " + std::to_string(i)));
    if (i > 0) {
      char line[64];
      snprintf(line, sizeof line, "  #%03d 2026-03-04 05:06:07 error %d\n", i - 1, i);
      expected += line;
    }
  }
  EXPECT_EQ(expected, Dump());
}

TEST_F(CriticalErrorsTest, EventsHaveTheirTimeAndAreCut) {
  const time_t before = time(nullptr);
  const ErrorEvent now("x");
  EXPECT_LE(before, now.timestamp);
  EXPECT_GE(time(nullptr), now.timestamp);
  const std::string text = Event(std::string(1000, 'x'))->ToDebugString();
  EXPECT_EQ("2026-03-04 05:06:07 " + std::string(107, 'x'), text);
  EXPECT_EQ("2026-03-04 05:06:07 100%s", Event("100%s")->ToDebugString()) << "data, not a format";
}

TEST_F(CriticalErrorsTest, AddsAndDumpsFromAnyThread) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int k = 0; k < 200; ++k) {
        CriticalErrors::GetInstance().AddErrorEvent(Event("x"));
        if (k % 50 == 0) {
          Dump();
        }
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const std::string dump = Dump();
  EXPECT_EQ(101, std::count(dump.begin(), dump.end(), '\n'));
  CriticalErrors::GetInstance().AddErrorEvent(nullptr);
  EXPECT_EQ(1u, fp_host::TakeLog().size());
}

}  // namespace
}  // namespace android::fp_utils
