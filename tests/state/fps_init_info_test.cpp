// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fps_init_info.h"

#include <filesystem>
#include <regex>
#include <thread>

#include <android-base/properties.h>

#include "control/clock.h"
#include "support/device_test.h"
#include "support/recorder.h"

namespace android::fp_utils {
namespace {

using fp_test::DumpText;
using fp_test::TakeLog;
using State = FpsInitInfo::State;

constexpr char kFolder[] = "/data/vendor/tombstones/fingerprint";
constexpr char kErrorFile[] = "/data/vendor/tombstones/fingerprint/init_error.txt";
constexpr char kLogCopy[] = "/data/vendor/tombstones/fingerprint/init_trusty_log.txt";
const std::string kTime = "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d";

bool Matches(const std::string& text, const std::string& pattern) {
  return std::regex_match(text, std::regex(pattern));
}

class FpsInitInfoTest : public fp_test::DeviceTest {
 protected:
  std::string Dump() {
    return DumpText([this](int fd) { bytes_ = info_.Dump(fd); });
  }

  FpsInitInfo info_;
  int bytes_ = 0;
};

TEST_F(FpsInitInfoTest, DumpSaysHowTheBringUpWent) {
  EXPECT_EQ("Unexpected state:0\n", Dump());
  EXPECT_EQ(19, bytes_);
  setenv("TZ", "UTC", 1);
  fp_host::StopWallClock(1772600767, 89);
  info_.SetState(State::kStarted);
  EXPECT_EQ("Unexpected state:1\n", Dump());
  EXPECT_EQ(State::kStarted, info_.GetState());
  info_.SetState(static_cast<State>(-7));
  EXPECT_EQ("Unexpected state:-7\n", Dump());
  fp_host::StopWallClock(1772600768, 323);
  info_.SetState(State::kFinished);
  EXPECT_EQ("Initialization successful, start_time:2026-03-04 05:06:07.089, latency:1234ms\n",
            Dump());
  EXPECT_LOG();
  info_.SetError(1, "late");
  info_.SetState(State::kFinished);
  EXPECT_TRUE(Matches(Dump(), "Error:" + kTime + " late\n")) << "an error always wins";
}

TEST_F(FpsInitInfoTest, ErrorsArePublishedEverywhere) {
  WriteFile("/dev/trusty-log0", "secure world says no\n");
  info_.SetError(-5, "A");
  WriteFile("/dev/trusty-log0", "again\n");
  info_.SetError(-6, "B, 'C' $(touch /data/vendor/owned) %s");
  const std::string text = info_.GetErrorStr();
  EXPECT_TRUE(Matches(text, kTime + " A," + kTime + " B, 'C' \\$\\(touch .*\\) %s"));
  EXPECT_EQ(-6, info_.GetErrorCode());
  EXPECT_EQ(text, base::GetProperty("vendor.fingerprint.init.error", ""));
  EXPECT_EQ(text, ReadFile(kErrorFile));
  EXPECT_EQ("again\n", ReadFile(kLogCopy));
  EXPECT_EQ("Error:" + text + "\n", Dump());
  EXPECT_FALSE(Exists("/data/vendor/owned")) << "the message never reaches the shell";
  const auto log = TakeLog();
  ASSERT_EQ(2u, log.size());
  EXPECT_EQ(fp_test::Error("FpsInitInfo", "SetError: error_str_:" + text), log[1]);
}

// What can go wrong outside; the caller goes on, and what was recorded is in the dump.
TEST_F(FpsInitInfoTest, NothingOutsideStopsTheCaller) {
  const struct {
    const char* why;
    std::function<void()> arrange;
    bool file_fails;
  } kCases[] = {
      {"no log device", [] {}, false},
      {"no folder", [] { Remove(kFolder); }, true},
      {"a link at the file",
       [] {
         std::filesystem::create_symlink(fp_host::HostPath("/data/vendor/elsewhere"),
                                         fp_host::HostPath(kErrorFile));
       },
       true},
      {"a folder at the file",
       [] { std::filesystem::create_directory(fp_host::HostPath(kErrorFile)); }, true},
      {"no rights", [] { fp_host::SetFault({.function = "open", .error = EACCES}); }, true},
      {"no space", [] { fp_host::SetFault({.function = "write", .error = ENOSPC}); }, true},
  };
  const std::string failed = "SetError: failed to write '" + std::string(kErrorFile) + "'";
  for (const auto& test : kCases) {
    Remove(kFolder);
    fp_host::BootDevice();
    TakeLog();
    test.arrange();
    info_.SetError(1, test.why);
    fp_host::ClearFaults();
    const auto log = TakeLog();
    ASSERT_EQ(test.file_fails ? 2u : 1u, log.size()) << test.why;
    if (test.file_fails) {
      EXPECT_EQ(fp_test::Error("FpsInitInfo", failed), log[1]);
    }
    EXPECT_NE(std::string::npos, Dump().find(test.why));
  }
  EXPECT_FALSE(Exists("/data/vendor/elsewhere"));

  const std::string long_message(100000, 'x');
  info_.SetError(2, long_message);
  EXPECT_NE(std::string::npos, Dump().find(" " + long_message + "\n"));
  EXPECT_EQ(info_.GetErrorStr(), ReadFile(kErrorFile));
}

// The copy of the log may take long: a dump does not wait for it, another error does.
TEST_F(FpsInitInfoTest, DumpDoesNotWaitForTheCopy) {
  ASSERT_EQ(0, mkfifo(fp_host::HostPath("/dev/trusty-log0").c_str(), 0600));
  std::thread reporter([this] { info_.SetError(1, "slow"); });
  EXPECT_TRUE(fp_test::Eventually([this] { return !info_.GetErrorStr().empty(); }));
  EXPECT_TRUE(Matches(Dump(), "Error:" + kTime + " slow\n"));
  WriteFile("/dev/trusty-log0", "at last\n");  // opens the other end of the pipe
  reporter.join();
  EXPECT_EQ("at last\n", ReadFile(kLogCopy));
}

TEST_F(FpsInitInfoTest, ReportsFromManyThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this, i] {
      info_.SetState(State::kStarted);
      info_.SetError(i, "x");
      DumpText([this](int fd) { info_.Dump(fd); });
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(Matches(info_.GetErrorStr(), "(" + kTime + " x,){3}" + kTime + " x"));
}

}  // namespace
}  // namespace android::fp_utils
