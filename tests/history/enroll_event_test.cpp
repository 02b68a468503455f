// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using fp_host::Error;
using fp_host::TakeLog;

const std::string kG7Signature =
    "[virtual bool android::fp_utils::EnrollEventG7::LoadFromBackupString(std::string &)] ";

class EnrollEventTest : public ::testing::Test {
 protected:
  EnrollEventTest() { setenv("TZ", "UTC", 1); }

  static EnrollEventG7 AddedFinger() {
    EnrollEventG7 event;
    event.timestamp = 1772600767;  // 2026-03-04 05:06:07 in UTC
    event.enroll_successful = true;
    event.gid = -1;
    event.fid = 3;
    event.capture_count = 17;
    event.iq_avg = 41.256F;
    event.enrolled_fingers_count = 2;
    event.rc = -7;
    event.rawmean_delta = -12.5F;
    event.stitch_img_num_ = {1, 2, 3, 4, -5};
    event.stitch_img_area_ = {10, 20, 30, 40, 50};
    return event;
  }
};

TEST_F(EnrollEventTest, DebugTextFollowsTheOperation) {
  const std::string quality =
      ", rawmean_delta:-12.50, stitch_img_num_:1_2_3_4_-5, stitch_img_area_:10_20_30_40_50";
  EnrollEventG7 event = AddedFinger();
  EXPECT_EQ(
      "2026-03-04 05:06:07 op:ADD, enroll_successful:1, gid:-1, fid:3, capture_count:17, "
      "iq_avg:41.26, enrolled_fingers_count:2",
      event.EnrollEvent::ToDebugString());
  EXPECT_EQ(event.EnrollEvent::ToDebugString() + ", rc:-7" + quality, event.ToDebugString());
  const struct {
    int32_t rc;
    const char* reason;
  } kReasons[] = {{0, "Unknown"},           {1, "Area Small"}, {2, "Foreign Matter"},
                  {3, "Low Image Quality"}, {4, "Unknown"},    {-1, "Unknown"}};
  event.enroll_successful = false;
  for (const auto& test : kReasons) {
    event.rc = test.rc;
    EXPECT_EQ(event.EnrollEvent::ToDebugString() + ", rc:" + std::to_string(test.rc) + quality +
                  ", reason:" + test.reason,
              event.ToDebugString());
  }
  event.op = 1;
  EXPECT_EQ("2026-03-04 05:06:07 op:DEL, gid:-1, fid:3, rc:-1", event.ToDebugString());
  event.op = 2;
  EXPECT_EQ("2026-03-04 05:06:07 , rc:-1" + quality + ", reason:Unknown", event.ToDebugString());
}

TEST_F(EnrollEventTest, BackupTexts) {
  EnrollEventG7 empty;
  empty.timestamp = 0;
  EXPECT_EQ("0x0,0,0x0,0x0,0x0,0x0,0.00,0x0,0x0,0.00,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0",
            empty.ToBackupString());
  EnrollEventG7 event = AddedFinger();
  EXPECT_EQ("0x69a7bdbf,0,0x1,0xffffffff,0x3,0x11,41.26,0x2", event.EnrollEvent::ToBackupString());
  EXPECT_EQ(
      "0x69a7bdbf,0,0x1,0xffffffff,0x3,0x11,41.26,0x2,0xfffffff9,-12.50,0x1,0x2,0x3,0x4,"
      "0xfffffffb,0xa,0x14,0x1e,0x28,0x32",
      event.ToBackupString());
  event.stitch_img_num_ = {-1, -1, -1, -1, -1};
  event.stitch_img_area_ = {-1, -1, -1, -1, -1};
  EXPECT_EQ(127u, event.ToBackupString().size() - event.EnrollEvent::ToBackupString().size())
      << "the tail is cut, in the middle of the last number";
  event.op = 0xFFFFFFFF;
  EXPECT_EQ(0u, event.ToBackupString().find("0x69a7bdbf,-1,")) << "op is printed signed";
}

TEST_F(EnrollEventTest, FailedLoadsLog) {
  EnrollEventG7 event;
  std::string text = "0x10,1,0x0,0x1";
  errno = 0;
  EXPECT_FALSE(event.LoadFromBackupString(text));
  text = "0x10,1,0x0,0x1,0x2,0x3,1.50,0x4";
  EXPECT_FALSE(event.LoadFromBackupString(text)) << "a base text alone";
  EXPECT_LOG(Error("EnrollEvent",
                   "[virtual bool android::fp_utils::EnrollEvent::LoadFromBackupString(std::string "
                   "&)] failed to parse str:'0x10,1,0x0,0x1' with error 0"),
             Error("EnrollEventG7", kG7Signature + "EnrollEvent failed to load '0x10,1,0x0,0x1'"),
             Error("EnrollEventG7", kG7Signature + "failed to parse str:'' with error 0"));
}

}  // namespace
}  // namespace android::fp_utils
