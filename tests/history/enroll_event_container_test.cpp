// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event_container.h"

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;

constexpr char kFile[] = "/data/vendor/fingerprint/EnrollEventContainer";

std::shared_ptr<EnrollEventG7> Event(int32_t fid) {
  auto event = std::make_shared<EnrollEventG7>();
  event->fid = fid;
  return event;
}

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

TEST_F(EnrollEventContainerTest, UnknownTypeLoadsNothingAndStillSaves) {
  Started()->AddEvent(Event(1));
  Started()->AddEvent(Event(2));
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
  Started("?")->AddEvent(Event(3));
  EXPECT_EQ(1u, Started()->GetEvents().size());
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
