// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/critical_errors.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

std::string Dump() {
  return fp_host::DumpText([](int fd) { CriticalErrors::GetInstance().Dump(fd, nullptr, 0); });
}

TEST(CriticalErrors, KeepTheNewestHundred) {
  std::string expected = "Critical Errors:\n";
  EXPECT_EQ(expected, Dump());
  for (int i = 0; i <= 100; ++i) {
    const auto event = std::make_shared<ErrorEvent>("error " + std::to_string(i));
    CriticalErrors::GetInstance().AddErrorEvent(event);
    char number[16];
    snprintf(number, sizeof number, "  #%03d ", i - 1);
    expected += i == 0 ? "" : number + event->ToDebugString() + '\n';
  }
  EXPECT_EQ(expected, Dump());
  CriticalErrors::GetInstance().AddErrorEvent(nullptr);
  EXPECT_LOG(fp_host::Error("CriticalErrors", "[AddErrorEvent] ErrorEvent is null, ignored"));
  EXPECT_EQ(expected, Dump());
}

TEST(CriticalErrors, HaveTheirTimeAndAreCut) {
  const time_t before = time(nullptr);
  ErrorEvent event("100%s");
  EXPECT_LE(before, event.timestamp);
  EXPECT_GE(time(nullptr), event.timestamp);
  setenv("TZ", "UTC", 1);
  event.timestamp = 1772600767;
  EXPECT_EQ("2026-03-04 05:06:07 100%s", event.ToDebugString()) << "data, not a format";
  ErrorEvent long_event(std::string(1000, 'x'));
  long_event.timestamp = event.timestamp;
  EXPECT_EQ("2026-03-04 05:06:07 " + std::string(107, 'x'), long_event.ToDebugString());
}

}  // namespace
}  // namespace android::fp_utils
