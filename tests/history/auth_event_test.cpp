// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/auth_event.h"

#include <cstdlib>
#include <limits>
#include <map>

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using fp_host::Error;
using fp_host::TakeLog;

const std::string kBaseSignature =
    "[virtual bool android::fp_utils::AuthEvent::LoadFromBackupString(std::string &)] ";
const std::string kG7Signature =
    "[virtual bool android::fp_utils::AuthEventG7::LoadFromBackupString(std::string &)] ";

// 2026-03-04 05:06:07 in UTC.
constexpr time_t kTime = 1772600767;

class AuthEventTest : public ::testing::Test {
 protected:
  AuthEventTest() {
    setenv("TZ", "UTC", 1);
    std::string text =
        "0x69a7bdbf,0x1,0x0,0x3,0xfa,0x50,87.50,1.25,4000000000,0x0,0x7d0,0x0,0x0,0x0,0xfffffffe,"
        "0x0,0xfffffffb,0x1,0x2,0x3,0x4,0x5,0xffffffff,0x14,0x1e,0x28,0x32";
    EXPECT_TRUE(matched_.LoadFromBackupString(text));
  }

  AuthEventG7 matched_;
};

TEST_F(AuthEventTest, StartsEmptyAtTheCurrentTime) {
  const time_t before = time(nullptr);
  const AuthEventG7 event;
  EXPECT_LE(before, event.timestamp);
  EXPECT_GE(time(nullptr), event.timestamp);
  EXPECT_EQ(event.GetLocalTime() + " acquisition_error:UNKNOWN, rc:0, lptw:0",
            event.ToDebugString());
  const std::string text = event.ToBackupString();
  EXPECT_EQ(
      ",0x0,0x0,0x0,0x0,0x0,0.00,0.00,0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,"
      "0x0,0x0,0x0,0x0",
      text.substr(text.find(',')));
}

TEST_F(AuthEventTest, LocalTimeFollowsTheProcessZone) {
  AuthEvent event;
  event.timestamp = kTime;
  EXPECT_EQ("2026-03-04 05:06:07", event.GetLocalTime());
  setenv("TZ", "XYZ-05:30", 1);
  EXPECT_EQ("2026-03-04 10:36:07", event.GetLocalTime());
  event.timestamp = -1;
  EXPECT_EQ("1970-01-01 05:29:59", event.GetLocalTime());
  event.timestamp = std::numeric_limits<time_t>::max();
  EXPECT_EQ("9223372036854775807", event.GetLocalTime()) << "beyond the calendar";
}

TEST_F(AuthEventTest, DebugTextNamesTheOutcome) {
  const std::map<int, std::string> kErrors = {
      {0, "UNKNOWN"},  {2, "PARTIAL"},           {3, "INSUFFICIENT"},   {4, "SENSOR_DIRTY"},
      {5, "TOO_SLOW"}, {6, "TOO_FAST"},          {7, "VENDOR"},         {8, "START"},
      {9, "TOO_DARK"}, {10, "TOO_BRIGHT"},       {11, "IMMOBILE"},      {14, "POWER_PRESS"},
      {-1, "-1"},      {12, "RETRYING_CAPTURE"}, {13, "LIFT_TOO_SOON"}, {15, "15"},
      {-128, "-128"},
  };
  matched_.auth_successful = true;
  EXPECT_EQ("2026-03-04 05:06:07 auth_successful:1, fid:3, latency:250, iq:80",
            matched_.AuthEvent::ToDebugString());
  for (const auto& [acquired_info, name] : kErrors) {
    matched_.acquired_info = static_cast<int8_t>(acquired_info);
    EXPECT_EQ("2026-03-04 05:06:07 acquisition_error:" + name, matched_.AuthEvent::ToDebugString());
  }
}

TEST_F(AuthEventTest, G7DebugTextAddsTheDiagnosticsOfTheOutcome) {
  const std::string lptw = ", lptw:4000000000";
  const std::string touch = ", t_cov:88%, t_dist:1.2mm";
  const std::string match = touch + ", rawmean_delta:2000, match_score:-5";
  const auto expect_added = [&](const std::string& text) {
    EXPECT_EQ(matched_.AuthEvent::ToDebugString() + text, matched_.ToDebugString());
  };
  expect_added(", rc:0" + lptw + match +
               ", stitch_img_num_:1_2_3_4_5, stitch_img_area_:-1_20_30_40_50");
  matched_.rc = 1013;
  expect_added(", rc:1013" + lptw + match + ", reason:Image Partial");
  matched_.acquired_info = 2;
  expect_added(", rc:1013" + lptw + touch);
  matched_.acquired_info = 3;
  expect_added(", rc:1013" + lptw);
}

TEST_F(AuthEventTest, FailureReasons) {
  constexpr int32_t kGood1 = 225220215;
  constexpr int32_t kGood2 = 83205205;
  const struct {
    uint32_t rc;
    int32_t rawmean_delta, metric_1, metric_2, metric_3, foreign_matter;
    const char* reason;
    const char* why;
  } kCases[] = {
      {1164, 0, 0, 0, 0, 0, "Too Dark", "by code"},
      {0, -1001, 0, 0, 0, 0, "Too Dark", "by raw mean"},
      {1013, -1001, 0, 0, 0, 0, "Too Dark", "raw mean before code"},
      {1013, -1000, 0, 0, 0, 0, "Image Partial", "raw mean just bright enough"},
      {1014, 0, 0, 0, 0, 0, "Low quality", ""},
      {1137, 0, 0, 0, 0, 0, "Spoof", ""},
      {1138, 0, 0, 0, 0, 0, "Residual", ""},
      {1513, 0, 0, 0, 0, 0, "Too bright", ""},
      {1, 0, kGood1, kGood2, 119000000, 0, "Partial off target", "all at their limits"},
      {1, 0, kGood1, kGood2, 119999999, 0, "Partial off target", "only the A part counts"},
      {1, 0, kGood1, kGood2, 120000000, 0, "Unknown", ""},
      {1, 0, kGood1, kGood2, -1000000, 0, "Unknown", "a negative part is a large one"},
      {1, 0, kGood1, kGood2, 0, 1, "Foreign matter", ""},
      {1, 0, kGood1, kGood2, 0, -1, "Partial off target", "the count is signed"},
      {1, 0, 224220215, kGood2, 0, 0, "Off target", "A1"},
      {1, 0, 225219215, kGood2, 0, 0, "Off target", "B1"},
      {1, 0, 225220214, kGood2, 0, 0, "Off target", "C1"},
      {1, 0, kGood1, 82205205, 0, 1, "Off target", "A2, before foreign matter"},
      {1, 0, kGood1, 83204205, 0, 0, "Off target", "B2"},
      {1, 0, kGood1, 83205204, 0, 0, "Off target", "C2"},
      {0, 0, 0, 0, 0, 0, "Off target", "a success has a reason too"},
      {1, 0, -225220215, -83205205, 0, 0, "Partial off target", "negative parts pass"},
      {1, 0, -225220215, -83000205, 0, 0, "Off target", "a zero part does not"},
  };
  for (const auto& test : kCases) {
    AuthEventG7 event;
    event.rc = test.rc;
    event.rawmean_delta = test.rawmean_delta;
    event.packed_metric_1 = test.metric_1;
    event.packed_metric_2 = test.metric_2;
    event.packed_metric_3 = test.metric_3;
    event.foreign_matter_count = test.foreign_matter;
    EXPECT_EQ(std::string("reason:") + test.reason, event.GetAuthFailureReason())
        << test.rc << ' ' << test.why;
  }
}

TEST_F(AuthEventTest, BackupTextsOfKnownRecords) {
  matched_.acquired_info = -1;
  matched_.auth_successful = true;
  matched_.rc = 0xABCDEF01;
  EXPECT_EQ(-2, matched_.extra_metric);
  EXPECT_EQ("0x69a7bdbf,0xffffffff,0x1,0x3,0xfa,0x50", matched_.AuthEvent::ToBackupString());
  EXPECT_EQ(
      "0x69a7bdbf,0xffffffff,0x1,0x3,0xfa,0x50,87.50,1.25,4000000000,0xabcdef01,0x7d0,0x0,"
      "0x0,0x0,0xfffffffe,0x0,0xfffffffb,0x1,0x2,0x3,0x4,0x5,0xffffffff,0x14,0x1e,0x28,0x32",
      matched_.ToBackupString());
  matched_.timestamp = -2;
  EXPECT_EQ(0u, matched_.ToBackupString().find("0xfffffffffffffffe,"));
}

TEST_F(AuthEventTest, LoadTakesItsPartOutOfTheText) {
  std::string text = "0x10,0xff,0x2,0x3,0x4,0x5,the rest";
  AuthEvent event;
  EXPECT_TRUE(event.LoadFromBackupString(text));
  EXPECT_EQ(",the rest", text);
  EXPECT_EQ(16, event.timestamp);
  EXPECT_EQ(-1, event.acquired_info) << "the low eight bits, signed";
  EXPECT_TRUE(event.auth_successful) << "any value but 0";
}

TEST_F(AuthEventTest, FailedLoadsLogAndKeepWhatWasReadable) {
  std::string text = "0x10,0x2,0x1,0x7,0x8";
  errno = EIO;  // which the scan leaves alone
  EXPECT_FALSE(matched_.LoadFromBackupString(text));
  EXPECT_EQ("0x10,0x2,0x1,0x7,0x8", text);
  EXPECT_EQ(kTime, matched_.timestamp);
  EXPECT_EQ(1, matched_.acquired_info);
  EXPECT_EQ(7, matched_.fid) << "scanned straight into the record";
  EXPECT_EQ(8, matched_.latency);
  EXPECT_EQ(80, matched_.iq);
  EXPECT_LOG(
      Error("AuthEvent",
            kBaseSignature + "failed to parse str:'0x10,0x2,0x1,0x7,0x8' with error -5"),
      Error("AuthEventG7", kG7Signature + "AuthEvent failed to load '0x10,0x2,0x1,0x7,0x8'"));

  text = "0x10,0x2,0x1,0x7,0x8,0x9,1.50,2.50,7,0x";
  errno = 0;
  EXPECT_FALSE(matched_.LoadFromBackupString(text));
  EXPECT_EQ(",1.50,2.50,7,0x", text);
  EXPECT_EQ(1.5F, matched_.t_cov);
  EXPECT_EQ(7u, matched_.lptw);
  EXPECT_EQ(2000, matched_.rawmean_delta);
  EXPECT_LOG(
      Error("AuthEventG7", kG7Signature + "failed to parse str:',1.50,2.50,7,0x' with error 0"));
}

}  // namespace
}  // namespace android::fp_utils
