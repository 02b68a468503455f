// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/fps_init_info.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

#include <android-base/properties.h>

#include "fp_host/clock.h"
#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using State = FpsInitInfo::State;

constexpr char kFolder[] = "/data/vendor/tombstones/fingerprint";
constexpr char kErrorFile[] = "/data/vendor/tombstones/fingerprint/init_error.txt";
constexpr char kLogCopy[] = "/data/vendor/tombstones/fingerprint/init_trusty_log.txt";
constexpr char kNow[] = "2026-03-04 05:06:07";

class FpsInitInfoTest : public DeviceTest {
 protected:
  FpsInitInfoTest() {
    setenv("TZ", "UTC", 1);
    StopWallClock(1772600767, 999);
  }

  std::string Dump() {
    return DumpText([this](int fd) { bytes_ = info_.Dump(fd); });
  }

  FpsInitInfo info_;
  int bytes_ = 0;
};

TEST_F(FpsInitInfoTest, DumpSaysHowTheInitialisationWent) {
  EXPECT_EQ("Unexpected state:0\n", Dump());
  EXPECT_EQ(0, info_.GetErrorCode());
  EXPECT_EQ(19, bytes_);
  info_.SetState(State::kStarted);
  EXPECT_EQ("Unexpected state:1\n", Dump());
  EXPECT_EQ(State::kStarted, info_.GetState());
  info_.SetState(static_cast<State>(-7));
  EXPECT_EQ("Unexpected state:-7\n", Dump());
  StopWallClock(1772600769, 233);
  info_.SetState(State::kFinished);
  EXPECT_EQ("Initialization successful, start_time:2026-03-04 05:06:07.999, latency:1234ms\n",
            Dump());
  EXPECT_LOG();
  info_.SetError(1, "late");
  info_.SetState(State::kFinished);
  EXPECT_EQ("Error:2026-03-04 05:06:09 late\n", Dump()) << "an error always wins";
}

TEST_F(FpsInitInfoTest, ErrorsArePublishedEverywhere) {
  WriteFile("/dev/trusty-log0", "secure world says no\n");
  info_.SetError(-5, "A");
  WriteFile("/dev/trusty-log0", "again\n");
  StopWallClock(1772600768);
  info_.SetError(-6, "B, 'C' $(touch /data/vendor/owned) %s");
  const std::string text =
      "2026-03-04 05:06:07 A,2026-03-04 05:06:08 B, 'C' $(touch /data/vendor/owned) %s";
  EXPECT_EQ(text, info_.GetErrorStr());
  EXPECT_EQ(-6, info_.GetErrorCode());
  EXPECT_EQ(text, base::GetProperty("vendor.fingerprint.init.error", ""));
  EXPECT_EQ(text, ReadFile(kErrorFile));
  EXPECT_EQ("again\n", ReadFile(kLogCopy));
  EXPECT_EQ("Error:" + text + "\n", Dump());
  EXPECT_FALSE(Exists("/data/vendor/owned")) << "the message must not reach the shell";
  EXPECT_LOG(Error("FpsInitInfo", "SetError: error_str_:2026-03-04 05:06:07 A"),
             Error("FpsInitInfo", "SetError: error_str_:" + text));
  info_.SetError(2, std::string(100000, 'x'));
  EXPECT_EQ(info_.GetErrorStr(), ReadFile(kErrorFile)) << "a text too long for a property";
}

TEST_F(FpsInitInfoTest, KeepsTheRecordWhenNothingCanBeWritten) {
  const struct {
    const char* why;
    std::function<void()> arrange;
  } kCases[] = {
      {"no folder", [] { Remove(kFolder); }},
      {"a link at the file",
       [] {
         std::filesystem::create_symlink(HostPath("/data/vendor/elsewhere"), HostPath(kErrorFile));
       }},
      {"no permission", [] { SetFault({.function = "open", .error = EACCES}); }},
      {"no space", [] { SetFault({.function = "write", .error = ENOSPC}); }},
  };
  for (const auto& test : kCases) {
    Remove(kFolder);
    BootDevice();
    test.arrange();
    info_.SetError(1, test.why);
    ClearFaults();
    EXPECT_LOG(Error("FpsInitInfo", "SetError: error_str_:" + info_.GetErrorStr()),
               Error("FpsInitInfo", "SetError: failed to write '" + std::string(kErrorFile) + "'"));
    EXPECT_NE(std::string::npos, Dump().find(test.why));
  }
  EXPECT_FALSE(Exists("/data/vendor/elsewhere"));
}

TEST_F(FpsInitInfoTest, DumpDoesNotWaitForTheCopyOfTheLog) {
  ASSERT_EQ(0, mkfifo(HostPath("/dev/trusty-log0").c_str(), 0600));
  std::thread reporter([this] { info_.SetError(1, "slow"); });
  EXPECT_TRUE(Eventually([this] { return !info_.GetErrorStr().empty(); }));
  EXPECT_EQ("Error:" + std::string(kNow) + " slow\n", Dump());
  WriteFile("/dev/trusty-log0", "at last\n");  // opens the other end of the pipe
  reporter.join();
  EXPECT_EQ("at last\n", ReadFile(kLogCopy));
}

TEST_F(FpsInitInfoTest, SlowReaderOfADumpDelaysNothing) {
  info_.SetError(1, std::string(1 << 20, 'x'));
  int ends[2] = {};
  ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
  std::thread dumper([&] {
    info_.Dump(ends[1]);
    close(ends[1]);
  });
  char bytes[4096];
  EXPECT_EQ(1, read(ends[0], bytes, 1)) << "the rest does not fit into the pipe";
  RunBounded("a state during a dump", [this] { info_.SetState(State::kStarted); });
  while (read(ends[0], bytes, sizeof bytes) > 0) {
  }
  dumper.join();
  close(ends[0]);
}

TEST_F(FpsInitInfoTest, ReportsFromManyThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([this, i] {
      info_.SetState(State::kStarted);
      info_.SetError(i, "x");
      DumpText([this](int fd) { info_.Dump(fd); });
      EXPECT_EQ(State::kStarted, info_.GetState());
      EXPECT_LE(0, info_.GetErrorCode());
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const std::string entry = std::string(kNow) + " x";
  EXPECT_EQ(entry + "," + entry + "," + entry + "," + entry, info_.GetErrorStr());
}

}  // namespace
}  // namespace android::fp_utils
