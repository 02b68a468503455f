// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event.h"

#include <cstdlib>
#include <map>

#include "fp_host/testing.h"
#include "fp_utils/enroll_event_container.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;

const std::string kG7Signature =
    "[virtual bool android::fp_utils::EnrollEventG7::LoadFromBackupString(std::string &)] ";

const std::string kBaseText = "0x69a7bdbf,0,0x1,0xffffffff,0x3,0x11,41.26,0x2";
const std::string kText =
    kBaseText + ",0xfffffff9,-12.50,0x1,0x2,0x3,0x4,0xfffffffb,0xa,0x14,0x1e,0x28,0x32";

class EnrollEventTest : public ::testing::Test {
 protected:
  EnrollEventTest() {
    setenv("TZ", "UTC", 1);
    std::string text = kText;
    EXPECT_TRUE(event_.LoadFromBackupString(text));
  }

  EnrollEventG7 event_;
};

TEST_F(EnrollEventTest, DebugTextFollowsTheOperation) {
  const std::string quality =
      ", rawmean_delta:-12.50, stitch_img_num_:1_2_3_4_-5, stitch_img_area_:10_20_30_40_50";
  EXPECT_EQ(
      "2026-03-04 05:06:07 op:ADD, enroll_successful:1, gid:-1, fid:3, capture_count:17, "
      "iq_avg:41.26, enrolled_fingers_count:2",
      event_.EnrollEvent::ToDebugString());
  EXPECT_EQ(event_.EnrollEvent::ToDebugString() + ", rc:-7" + quality, event_.ToDebugString());
  const std::map<int32_t, std::string> kReasons = {{0, "Unknown"},        {1, "Area Small"},
                                                   {2, "Foreign Matter"}, {3, "Low Image Quality"},
                                                   {4, "Unknown"},        {-2, "Unknown"}};
  event_.enroll_successful = false;
  for (const auto& [rc, reason] : kReasons) {
    event_.rc = rc;
    EXPECT_EQ(event_.EnrollEvent::ToDebugString() + ", rc:" + std::to_string(rc) + quality +
                  ", reason:" + reason,
              event_.ToDebugString());
  }
  event_.op = 1;
  EXPECT_EQ("2026-03-04 05:06:07 op:DEL, gid:-1, fid:3, rc:4", event_.ToDebugString());
  event_.op = 2;
  EXPECT_EQ("2026-03-04 05:06:07 , rc:4" + quality + ", reason:Unknown", event_.ToDebugString());
}

TEST_F(EnrollEventTest, BackupTexts) {
  EnrollEventG7 empty;
  empty.timestamp = 0;
  EXPECT_EQ("0x0,0,0x0,0x0,0x0,0x0,0.00,0x0,0x0,0.00,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0",
            empty.ToBackupString());
  EXPECT_EQ(kBaseText, event_.EnrollEvent::ToBackupString());
  EXPECT_EQ(kText, event_.ToBackupString());
  event_.stitch_img_num_.fill(-1);
  event_.stitch_img_area_.fill(-1);
  EXPECT_EQ(127u, event_.ToBackupString().size() - event_.EnrollEvent::ToBackupString().size())
      << "the tail is cut, in the middle of the last number";
  event_.op = 0xFFFFFFFF;
  EXPECT_EQ(0u, event_.ToBackupString().find("0x69a7bdbf,-1,")) << "op is printed signed";
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

constexpr char kFile[] = "/data/vendor/fingerprint/EnrollEventContainer";

class EnrollEventContainerTest : public DeviceTest {
 protected:
  // Creates a container as a service does at its start.
  static std::unique_ptr<EnrollEventContainer> Started(const char* event_type = "EnrollEventG7") {
    auto container = std::make_unique<EnrollEventContainer>();
    container->Init(event_type);
    return container;
  }
};

TEST_F(EnrollEventContainerTest, SavesEveryEventOnceInitialised) {
  EnrollEventContainer container;
  container.AddEvent(std::make_shared<EnrollEventG7>());
  EXPECT_FALSE(Exists(kFile)) << "nothing is written before Init";
  container.Init("EnrollEventG7");
  EXPECT_EQ(kFile, container.GetBackupPath());
  EXPECT_FALSE(Exists(kFile)) << "nor by Init";
  container.AddEvent(std::make_shared<EnrollEventG7>());
  EXPECT_EQ(2u, Started()->GetEvents().size()) << "one file for every container";
  const std::string saved = ReadFile(kFile);
  container.Init("EnrollEventG7");
  EXPECT_EQ(saved, ReadFile(kFile)) << "nor by another one";
}

TEST_F(EnrollEventContainerTest, UnknownTypeLoadsNothingAndStillSaves) {
  Started()->AddEvent(std::make_shared<EnrollEventG7>());
  Started()->AddEvent(std::make_shared<EnrollEventG7>());
  TakeLog();
  for (const char* type :
       {"EnrollEvent", "EnrollEventG70", "", static_cast<const char*>(nullptr)}) {
    EXPECT_TRUE(Started(type)->GetEvents().empty());
    const LogLine unknown = Error(
        "EnrollEventContainer",
        "[std::shared_ptr<EnrollEvent> android::fp_utils::EnrollEventContainer::CreateEvent()] "
        "Unknown event_type:" +
            std::string(type == nullptr ? "" : type));
    const LogLine failed = Error(
        "EnrollEventContainer",
        "[void android::fp_utils::EnrollEventContainer::LoadEventsFromBackupFile()] Failed to "
        "create event!");
    EXPECT_LOG(unknown, failed, unknown, failed);
  }
  Started("?")->AddEvent(std::make_shared<EnrollEventG7>());
  EXPECT_EQ(1u, Started()->GetEvents().size());
}

TEST_F(EnrollEventContainerTest, Dumps) {
  auto container = Started();
  const auto dump = [&container](int fd) { container->Dump(fd, nullptr, 0); };
  EXPECT_EQ("Enroll Events:\n", DumpText(dump));
  const auto event = std::make_shared<EnrollEventG7>();
  container->AddEvent(event);
  EXPECT_EQ("Enroll Events:\n  #000 " + event->ToDebugString() + "\n", DumpText(dump));
}

}  // namespace
}  // namespace android::fp_utils
