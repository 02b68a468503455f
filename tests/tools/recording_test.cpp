// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "fp_host/device.h"
#include "fp_host/touch_node.h"

namespace fp_host {
namespace {

using Lines = std::vector<std::string>;

class RecordingTest : public ::testing::Test {
 protected:
  ~RecordingTest() override { close(fd_); }

  // The records of the next `reports` reads, those of a report in one line.
  Lines Read(size_t reports) const {
    constexpr size_t kHeader = 8;
    constexpr size_t kRecord = 88;
    Lines lines(reports);
    for (std::string& line : lines) {
      char buffer[kHeader + 128 * kRecord];
      const ssize_t size = read(fd_, buffer, sizeof buffer);
      for (const char* at = buffer + kHeader; at < buffer + size; at += kRecord) {
        static_assert(sizeof(TouchRecord) == kRecord);
        TouchRecord record;
        memcpy(static_cast<void*>(&record), at, sizeof record);
        line += (line.empty() ? "" : "; ") + std::to_string(record.id) + " type " +
                std::to_string(record.type) + " at " + std::to_string(record.coords[0]) + "," +
                std::to_string(record.coords[1]) + " size " + std::to_string(record.coords[2]) +
                "," + std::to_string(record.coords[3]) + " angle " + std::to_string(record.angle) +
                " us " + std::to_string(record.stamp);
      }
    }
    return lines;
  }

  std::string PlayText(const std::string& text, const TouchPanel& panel = {}) {
    const std::string path = device_.GetRoot() + "/r";
    std::ofstream(path, std::ios::binary) << text;
    const std::string error = node_.Play(path, panel, Pace::kAtOnce);
    return error.substr(0, path.size()) == path ? error.substr(path.size()) : error;
  }

  const ScratchDevice device_{"fp_recording"};
  TouchNode node_;
  const int fd_ = open("/dev/fth_fd", O_RDWR | O_CLOEXEC);
};

TEST_F(RecordingTest, GivesTheReportsThatWereRecorded) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ("", node_.Play(RECORDINGS "/two_fingers.getevent", {2160, 9360}));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::microseconds(91635));
  // Twice as wide and four times as high, so lengths are three times as long; -45 of 90 is an
  // eighth of a turn.
  EXPECT_EQ(Read(4), (Lines{"0 type 0 at 1080,7840 size 372,288 angle -2048 us 48817310482",
                            "0 type 1 at 1084,7840 size 372,288 angle -2048 us 48817318790; "
                            "1 type 0 at 220,208 size 240,240 angle 0 us 48817318790",
                            "1 type 2 at 220,208 size 240,240 angle 0 us 48817381004",
                            "0 type 2 at 1084,7840 size 372,288 angle -2048 us 48817402117"}));
  EXPECT_EQ("", node_.Play(RECORDINGS "/tap.evemu", {}, Pace::kAtOnce));
  // The second contact repeats no position, and the third ends it.
  EXPECT_EQ(Read(4), (Lines{"0 type 0 at 2160,7840 size 200,200 angle 4096 us 1",
                            "0 type 2 at 2160,7840 size 200,200 angle 4096 us 92418",
                            "0 type 0 at 2160,7840 size 200,200 angle 4096 us 300000",
                            "0 type 2 at 2160,7840 size 200,200 angle 4096 us 310000; "
                            "0 type 0 at 2160,7840 size 200,200 angle 4096 us 310000"}));
  // Without a device name, with codes instead of labels, and with CR LF. The contact that was down
  // before is left out.
  EXPECT_EQ("", PlayText("[ 1.000000] 0003 0039 ffffffff\r\n[ 1.000000] 0000 0000 00000000\r\n"
                         "[ 1.000000] EV_ABS ABS_MT_POSITION_X 1\n[ 1.000000] 0003 0036 ffff\n"
                         "[ 1.000000] EV_ABS ABS_MT_TOOL_TYPE MT_TOOL_PEN\n"
                         "[ 1.000000] 0003 0039 1\n[ 1.000000] EV_SYN SYN_REPORT 0\n"));
  EXPECT_EQ(Read(1), Lines{"0 type 0 at 1,65535 size 0,0 angle 0 us 1000000"});
}

TEST_F(RecordingTest, RefusesAWholeRecordingForOneBadLine) {
  const std::string contact =
      "E: 1.000000 0003 0039 1\nE: 1.000000 0003 0035 5\nE: 1.000000 0003 0036 5\n";
  const std::string report = "E: 1.000000 0000 0000 0\n";
  const std::string begin = contact + report;
  const auto many = [](const std::string& line, int times) {
    std::string text;
    for (int i = 0; i < times; ++i) {
      text += line;
    }
    return text;
  };
  const struct {
    std::string text;
    const char* error;
  } kCases[] = {
      {"", ": there is no touch in this file"},
      {begin + "x", ":5: this is not a line of an evemu"},
      {begin + "E: 1.5 0003 0039 1", ":5: the time is not seconds"},
      {begin + "E: nan 0003 0039 1", ":5: the time is not seconds"},
      {begin + "E: -1.000000 0003 0039 1", ":5: the time is not seconds"},
      {begin + "E: 0.999999 0000 0000 0", ":5: the time is before"},
      {begin + "E: 86401.000001 0000 0000 0", ":5: the recording is longer than a day"},
      {begin + "E: 1.000000 0003 00x9 1", ":5: type and code"},
      {begin + "E: 1.000000 0003 0035 2147483648", ":5: the value"},
      {begin + "E: 1.000000 0003 002f 32", ":5: the slot"},
      {begin + "E: 1.000000 0003 002f -1", ":5: the slot"},
      {begin + "E: 1.000000 0000 0003 0", ":5: the kernel dropped events"},
      {begin + "E: 1.000000 0000 0002 0", ":5: the device has no slots"},
      {begin + "E: 1.000000 0003 0035 -5\n" + report, ":6: a position or length"},
      {begin + "E: 1.000000 0003 0030 65536\n" + report, ":6: a position or length"},
      {begin + "E: 1.000000 0003 0034 1\n" + report, ":6: the range of ABS_MT_ORIENTATION"},
      {"A: 34 -9 9 0 0 0\n" + begin + "E: 1.000000 0003 0034 37\n" + report, ":7: the orientation"},
      {begin + "E: 1.000000 0003 002f 1\nE: 1.000000 0003 0039 1\n" + report,
       ":7: a contact begins"},
      {contact + many("E: 1.000000 0003 0039 1\n", 70), ":68: a report has more than 128"},
      {begin + many("E: 1.000000 0003 0030 1\n" + report, 250000),
       ":500004: the recording has more"},
      {"A: 35 9 9 0 0 0", ":1: the maximum of the axis"},
      {begin + std::string(1025, ' '), ":5: the line is longer"},
      {begin + std::string("\0\0", 2), ":5: this is not a line"},
      {"[ 1.000000] EV_ABS ABS_MT_SLOT", ":1: there is not one type"},
      {"[ 1.000000 EV_ABS ABS_MT_SLOT 0", ":1: the time has no ]"},
      {"[ 1.000000] EV_ABS ABS_MT_SLOT 123456789", ":1: the value is not"},
      {"EV_ABS ABS_MT_SLOT 00000000", ":1: the event has no time; record with getevent -lt"},
      {"[ 1.000000] a: 0003 0035 1\n[ 1.000000] b: 0003 0035 1", ":2: a second device"},
      {" ABS_MT_SLOT : value 0, min 0, max", ":1: the axis has no code"},
      {" : value 0, min 0, max 1,", ":1: the axis has no name"},
  };
  for (const auto& [text, error] : kCases) {
    const std::string found = PlayText(text);
    EXPECT_EQ(0U, found.rfind(error, 0)) << found << " instead of " << error;
  }
  EXPECT_NE(std::string::npos, PlayText(begin, {10, 10}).find("begin the file with the output of"));
  EXPECT_NE(std::string::npos, node_.Play("/nonexistent/r").find("No such file"));
  EXPECT_EQ(": Is a directory", node_.Play(device_.GetRoot()).substr(device_.GetRoot().size()));
  // None of them has given the device anything.
  node_.Push({{.id = 7}});
  EXPECT_EQ(Read(1), Lines{"7 type 0 at 0,0 size 0,0 angle 0 us 0"});
  node_.HangUp();
  EXPECT_EQ(": the touch device went away", PlayText(begin));
}

}  // namespace
}  // namespace fp_host
