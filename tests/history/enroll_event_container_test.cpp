// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event_container.h"

#include "support/device_test.h"
#include "support/history_kinds.h"

namespace android::fp_utils {
namespace {

using namespace fp_test;

constexpr char kFile[] = "/data/vendor/fingerprint/EnrollEventContainer";

std::shared_ptr<EnrollEventG7> Event(int32_t fid) {
  auto event = std::make_shared<EnrollEventG7>();
  event->fid = fid;
  return event;
}

class EnrollEventContainerTest : public DeviceTest {
 protected:
  // A container as at the service's start.
  static std::unique_ptr<EnrollEventContainer> Started(const char* event_type = "EnrollEventG7") {
    auto container = std::make_unique<EnrollEventContainer>();
    container->Init(event_type);
    return container;
  }
};

TEST_F(EnrollEventContainerTest, KeepsAndSavesTheNewestFifty) {
  auto container = Started();
  TakeLog();
  for (int32_t fid = 0; fid <= 50; ++fid) {
    container->AddEvent(Event(fid));
  }
  ASSERT_EQ(50u, container->GetEvents().size());
  EXPECT_EQ(1, container->GetEvents().front()->fid);

  const auto again = Started();
  ASSERT_EQ(50u, again->GetEvents().size());
  EXPECT_EQ(1, again->GetEvents().front()->fid);
  EXPECT_EQ(50, again->GetEvents().back()->fid);

  // A file from a build that kept more: the last fifty are loaded.
  WriteFile(kFile, ReadFile(kFile) + ReadFile(kFile));
  EXPECT_EQ(50u, Started()->GetEvents().size());
  EXPECT_LOG();
}

TEST_F(EnrollEventContainerTest, SavesEveryEventOnceInitialised) {
  EnrollEventContainer container;
  container.AddEvent(Event(1));
  EXPECT_FALSE(Exists(kFile)) << "nothing is written before Init";
  container.Init("EnrollEventG7");
  EXPECT_EQ(kFile, container.GetBackupPath());
  EXPECT_FALSE(Exists(kFile)) << "nor by Init";
  container.AddEvent(Event(2));
  EXPECT_EQ(2u, Started()->GetEvents().size()) << "one file for every container";
  const std::string saved = ReadFile(kFile);
  container.Init("EnrollEventG7");
  EXPECT_EQ(saved, ReadFile(kFile)) << "nor by another one";
}

TEST_F(EnrollEventContainerTest, SavesEachRecordWithItsOwnText) {
  struct ServiceEvent : EnrollEventG7 {
    std::string ToBackupString() const override { return "own"; }
  };
  auto container = Started();
  auto plain = std::make_shared<EnrollEvent>();
  plain->timestamp = 0x10;
  container->AddEvent(plain);
  container->AddEvent(std::make_shared<ServiceEvent>());
  EXPECT_EQ(Frame("0x10,0,0x0,0x0,0x0,0x0,0.00,0x0") + Frame("own"), ReadFile(kFile));
}

TEST_F(EnrollEventContainerTest, UnknownTypeLoadsNothingAndStillSaves) {
  Started()->AddEvent(Event(1));
  Started()->AddEvent(Event(2));
  TakeLog();
  for (const char* type :
       {"EnrollEvent", "EnrollEventG70", "", static_cast<const char*>(nullptr)}) {
    EXPECT_TRUE(Started(type)->GetEvents().empty());
    const std::string name = type == nullptr ? "" : type;
    const LogLine unknown = Error(
        "EnrollEventContainer",
        "[std::shared_ptr<EnrollEvent> android::fp_utils::EnrollEventContainer::CreateEvent()] "
        "Unknown event_type:" +
            name);
    const LogLine failed = Error(
        "EnrollEventContainer",
        "[void android::fp_utils::EnrollEventContainer::LoadEventsFromBackupFile()] Failed to "
        "create event!");
    EXPECT_LOG(unknown, failed, unknown, failed);
  }
  Started("?")->AddEvent(Event(3));
  EXPECT_EQ(1u, Started()->GetEvents().size());
}

TEST_F(EnrollEventContainerTest, LogsUnderItsOwnName) {
  fp_host::SetFault({.function = "mkdir", .error = EROFS});
  auto container = Started();
  fp_host::SetFault({.function = "open", .error = EACCES});
  container->AddEvent(Event(1));
  fp_host::ClearFaults();
  WriteFile(kFile, "0x1,0x1,x");
  container->LoadEventsFromBackupFile();
  container->AddEvent(nullptr);
  const std::string path = kFile;
  EXPECT_LOG(
      Error("EnrollEventContainer",
            "[Init] Failed to create directory \"/data/vendor/fingerprint/\" with error 30."),
      Error("EnrollEventContainer",
            "[LoadEventsFromBackupFile] Failed to open \"" + path + "\" with error 2."),
      Error("EnrollEventContainer",
            "[SaveEventsToBackupFile] Failed to open \"" + path + "\" with error 13."),
      Error("EnrollEventContainer",
            "[void android::fp_utils::EnrollEventContainer::LoadEventsFromBackupFile()] Crc "
            "checksum didn't match!"),
      Error("EnrollEventContainer", "[AddEvent] EnrollEvent is null, ignored"));
}

TEST_F(EnrollEventContainerTest, Dumps) {
  auto container = Started();
  const auto dump = [&container](int fd) { container->Dump(fd, nullptr, 0); };
  EXPECT_EQ("Enroll Events:\n", DumpText(dump));
  const auto event = Event(1);
  container->AddEvent(event);
  EXPECT_EQ("Enroll Events:\n  #000 " + event->ToDebugString() + "\n", DumpText(dump));
}

}  // namespace
}  // namespace android::fp_utils
