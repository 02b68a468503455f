// SPDX-License-Identifier: Apache-2.0
//
// What the histories with a backup file have in common.
#include <cerrno>
#include <limits>
#include <random>
#include <thread>

#include "fp_host/testing.h"
#include "support/history_kinds.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

class Histories : public DeviceTest, public ::testing::WithParamInterface<HistoryKind> {
 protected:
  // Creates a history as a service does at its start, and discards the log lines.
  static std::unique_ptr<HistoryUnderTest> Start() {
    auto history = GetParam().start();
    TakeLog();
    return history;
  }

  static std::string Saved() { return ReadFile(GetParam().path); }

  static LogLine LineAbout(const std::string& message) { return Error(GetParam().name, message); }
  static LogLine OpenFailure(const char* operation, int error) {
    return LineAbout("[" + std::string(operation) + "] Failed to open \"" + GetParam().path +
                     "\" with error " + std::to_string(error) + ".");
  }
};

TEST_P(Histories, KeepTheNewestAndLoadThemAgain) {
  auto history = Start();
  std::vector<std::string> texts;
  for (int number = 1; number <= GetParam().capacity + 3; ++number) {
    history->AddAndSave(number);
    texts.push_back(history->RecordTexts().back());
  }
  texts.erase(texts.begin(), texts.begin() + 3);
  EXPECT_EQ(texts, history->RecordTexts());
  const std::string saved = Saved();
  EXPECT_EQ(FramesOf(texts), saved);
  EXPECT_EQ(texts, Start()->RecordTexts());
  EXPECT_EQ(saved, Saved()) << "loading does not save";

  // A file from a build with a larger capacity: the newest records are loaded.
  WriteFile(GetParam().path, saved + saved);
  EXPECT_EQ(texts, GetParam().start()->RecordTexts());
  EXPECT_LOG();
}

TEST_P(Histories, LogUnderTheirOwnNames) {
  const HistoryKind& kind = GetParam();
  Remove("/data/vendor/fingerprint");
  kind.start();
  EXPECT_EQ(0600u, ModeOf("/data/vendor/fingerprint"));
  EXPECT_LOG(OpenFailure(kind.load_operation, ENOENT));

  SetFault({.function = "mkdir", .error = EROFS});
  SetFault({.function = "fopen", .error = EACCES});
  SetFault({.function = "open", .error = EACCES});
  auto history = kind.start();
  history->AddAndSave(1);
  ClearFaults();
  history->AddNull();
  EXPECT_LOG(LineAbout("[" + std::string(kind.create_operation) +
                       "] Failed to create directory \"/data/vendor/fingerprint/\" with error "
                       "30."),
             OpenFailure(kind.load_operation, EACCES), OpenFailure(kind.save_operation, EACCES),
             LineAbout(kind.null_message));
  EXPECT_EQ(1u, history->RecordTexts().size());

  WriteFile(kind.path, "0x1,0x1,x");
  kind.start();
  EXPECT_LOG(LineAbout(kind.damage_prefix + std::string(" Crc checksum didn't match!")));
}

// Most frames of a save are reused from the one before. The file must be the same as if every
// record were composed again, whatever happened to the records in between.
TEST_P(Histories, SaveWhatComposingEveryRecordWouldSave) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  constexpr float kFloats[] = {0.0F, -0.0F, kNan, -kNan, 1.5F, -1e30F};
  MuteLog(true);
  std::mt19937 random(9);
  auto history = Start();
  auto other = Start();
  const int rounds = Share(20000);
  for (int number = 1; number <= rounds; ++number) {
    HistoryUnderTest& changed = random() % 4 == 0 ? *other : *history;
    for (unsigned left = random() % 3; left > 0 && !changed.RecordTexts().empty(); --left) {
      changed.SetFloat(random() % changed.RecordTexts().size(), kFloats[random() % 6]);
    }
    if (random() % 3 == 0 && !other->RecordTexts().empty()) {
      history->ShareRecordOf(*other, random() % other->RecordTexts().size());
    } else {
      history->AddAndSave(number);
    }
    ASSERT_EQ(FramesOf(history->RecordTexts()), Saved()) << number;
    if (random() % 8 == 0) {
      other->AddAndSave(-number);
      ASSERT_EQ(FramesOf(other->RecordTexts()), Saved()) << number;
    }
    if (random() % 100 == 0) {
      history = Start();
    }
  }
}

TEST_P(Histories, AcceptRecordsFromAnyThread) {
  auto history = Start();
  const auto add = [&history](int first) {
    for (int number = first; number < first + GetParam().capacity; ++number) {
      history->AddAndSave(number);
    }
  };
  std::thread another(add, 1000);
  add(1);
  another.join();
  EXPECT_EQ(FramesOf(history->RecordTexts()), Saved());
  EXPECT_EQ(static_cast<size_t>(GetParam().capacity), history->RecordTexts().size());
}

INSTANTIATE_TEST_SUITE_P(All, Histories, ::testing::ValuesIn(AllHistoryKinds()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace android::fp_utils
