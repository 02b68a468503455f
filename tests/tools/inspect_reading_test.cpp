// SPDX-License-Identifier: Apache-2.0
//
// Dumps and backup files as devices leave them, whole and damaged, compared with what the library
// itself prints and loads.
#include <unistd.h>

#include <algorithm>
#include <random>
#include <thread>

#include "fp_host/testing.h"
#include "fp_utils/auth_stats.h"
#include "fp_utils/critical_errors.h"
#include "fp_utils/dynamic_exposure.h"
#include "fp_utils/enroll_event_container.h"
#include "reading/read.h"
#include "support/history_kinds.h"
#include "tools/random_records.h"

namespace fp_inspect {
namespace {

using android::fp_utils::AuthEvent;
using android::fp_utils::AuthStats;
using android::fp_utils::AuthStatsG7;
using android::fp_utils::CriticalErrors;
using android::fp_utils::EnrollEventContainer;
using android::fp_utils::ErrorEvent;
using fp_test::Frame;
using Texts = std::vector<std::string>;

Contents Read(std::string bytes, InputKind kind = InputKind::kNone, std::string name = "x") {
  fp_host::MuteLog(true);
  ByteWindow input = ByteWindow::OfBytes(std::move(bytes));
  return ReadInput(input, std::move(name), kind);
}

Texts TextsOf(const Contents& contents, RecordKind kind) {
  Texts texts;
  for (const Snapshot& snapshot : contents.snapshots) {
    for (const Record& record : snapshot.records) {
      if (snapshot.kind == kind) {
        texts.push_back(DumpText(record));
      }
    }
  }
  return texts;
}

template <typename Event>
std::string WithoutTime(const Event& event) {
  return event.ToDebugString().substr(event.GetLocalTime().size() + 1);
}

class InspectDump : public fp_host::DeviceTest {
 protected:
  // A service's dump with this many random records of each history.
  std::string Dump(int records, uint64_t seed) {
    RandomRecords random(seed);
    AuthStatsG7 attempts("0", AuthStats::kUnbounded, false);
    EnrollEventContainer enrollments;
    CriticalErrors errors;
    attempts_.clear();
    enrollments_.clear();
    for (int i = 0; i < records; ++i) {
      auto attempt = std::make_shared<AuthEventG7>(random.Attempt());
      attempt->timestamp = 1772600767 + i;
      attempts.AddAttempt(attempt);
      attempts_.push_back(WithoutTime(*attempt));
      auto enrollment = std::make_shared<EnrollEventG7>(random.Enrollment());
      enrollment->timestamp = 1772600767 + i;
      if (i < 50) {
        enrollments.AddEvent(enrollment);
        enrollments_.push_back(WithoutTime(*enrollment));
      }
    }
    errors.AddErrorEvent(std::make_shared<ErrorEvent>("failed to enable lhbm"));
    return fp_host::DumpText([&](int fd) {
      dprintf(fd, "Initialization successful, start_time:2026-03-04 06:30:00.000, latency:0ms\n");
      errors.Dump(fd, nullptr, 0);
      enrollments.Dump(fd, nullptr, 0);
      attempts.Dump(fd, nullptr, 0);
      android::fp_utils::DynamicExposure().Dump(fd);
    });
  }

  void ExpectAll(const Contents& contents, const std::string& why) {
    EXPECT_EQ(attempts_, TextsOf(contents, RecordKind::kAttempt)) << why;
    EXPECT_EQ(enrollments_, TextsOf(contents, RecordKind::kEnrollment)) << why;
    EXPECT_EQ(Texts{"failed to enable lhbm"}, TextsOf(contents, RecordKind::kError)) << why;
    EXPECT_EQ(0u, contents.damage_count) << why;
  }

  Texts attempts_;
  Texts enrollments_;
};

// Passes each line of `text` through `change`.
std::string EachLine(const std::string& text,
                     const std::function<std::string(const std::string&)>& change) {
  std::string out;
  for (size_t begin = 0; begin < text.size();) {
    const size_t end = text.find('\n', begin);
    out += change(text.substr(begin, end - begin)) + "\n";
    begin = end + 1;
  }
  return out;
}

TEST_F(InspectDump, EveryRecordOfTheLibraryReads) {
  fp_host::RunSeeded("dumps", fp_host::Share(20), 1, [&](uint64_t seed) {
    ExpectAll(Read(Dump(200, seed)), "seed " + std::to_string(seed));
  });
}

TEST_F(InspectDump, IsFoundInOtherText) {
  const std::string dump = Dump(60, 7);
  const std::string noise = "  mState: 3\nAuth: x\n\nDUMP OF SERVICE x:\n  #0 y\n";
  std::string far;  // puts the dump across the end of the first buffer
  while (far.size() < ByteWindow::kCapacity - dump.size() / 2) {
    far += noise;
  }
  ExpectAll(Read(far + dump + far), "in a long report, across blocks");
  ExpectAll(Read(EachLine(dump, [](const std::string& line) { return line + "\r"; })), "CR LF");
  ExpectAll(Read(EachLine(dump,
                          [](const std::string& line) {
                            return "03-04 12:00:00.123  1000  1234 I dump: " + line;
                          })),
            "after a log's prefix");
  ExpectAll(Read(EachLine(dump, [](const std::string& line) { return line + "\n\xff\xfe log"; })),
            "between other lines, not UTF-8");
  ExpectAll(Read(std::string(3 << 20, 'x') + "\n" + std::string(9, '\0') + "\n" + dump),
            "after a line longer than the buffer, and NUL bytes");
  const Contents contents = Read("[persist.sys.timezone]: [Europe/Berlin]\n" + dump);
  EXPECT_EQ("Europe/Berlin", contents.time_zone);
  EXPECT_EQ(0u, contents.bring_up.find("Initialization successful"));
}

TEST_F(InspectDump, DamageIsSeenAndNothingIsInvented) {
  const std::string dump = Dump(40, 3);
  const auto begin = dump.find("Auth Events:");
  const auto known = [&](const Contents& contents) {
    const Texts read = TextsOf(contents, RecordKind::kAttempt);
    return std::all_of(read.begin(), read.end(), [&](const std::string& words) {
      return std::find(attempts_.begin(), attempts_.end(), words) != attempts_.end();
    });
  };
  for (size_t cut = begin; cut < dump.find("DynamicExposure"); cut += 7) {
    const Contents contents = Read(dump.substr(0, cut));
    ASSERT_TRUE(known(contents)) << cut;
    ASSERT_EQ(TextsOf(contents, RecordKind::kAttempt).size() < attempts_.size(),
              contents.damage_count > 0)
        << cut;
  }
  std::string broken_off = dump;
  broken_off.insert(broken_off.find(", rc:", begin), "\n");
  EXPECT_EQ("line", Read(broken_off).damage.at(0).check) << "reads as a record of the base class";
  std::string untitled = dump;
  untitled.replace(untitled.find("Enroll Events:"), 6, "~~~~~~");
  ExpectAll(Read(untitled), "after the critical errors");
  const struct {
    const char* why;
    const char* lost;  // is replaced
    const char* check;
    size_t read;
  } kCases[] = {
      {"a line is missing", "  #007", "missing", 39},
      {"the title is missing", "Auth Events:", "", 40},
      {"the title of the statistics is", "Auth Stats:", "", 40},
      {"the last lines are", "  #039", "count", 39},
  };
  for (const auto& test : kCases) {
    std::string damaged = dump;
    const size_t at = damaged.find(test.lost, dump.find("Auth Stats:"));
    damaged.replace(at, damaged.find('\n', at) - at, "~");
    const Contents contents = Read(damaged);
    EXPECT_EQ(test.read, TextsOf(contents, RecordKind::kAttempt).size()) << test.why;
    EXPECT_EQ(test.check, contents.damage.empty() ? "" : contents.damage[0].check) << test.why;
  }
}

TEST_F(InspectDump, SettingsOfTheExposure) {
  const Contents contents = Read(
      "x: DynamicExposure:\nI dump:   kNumberOfAttempts: 12\n  kIqThreshold: -1\n  Stats of last "
      "12 "
      "attempts:\n    FRR: 41.67%\n    Avg IQ: 20.50\n    Avg raw mean: 2600.25\n  \n");
  ASSERT_EQ(1u, contents.exposures.size());
  EXPECT_EQ(12u, contents.exposures[0].settings.at("kNumberOfAttempts"));
  EXPECT_EQ(4294967295u, contents.exposures[0].settings.at("kIqThreshold")) << "printed as signed";
  EXPECT_EQ(12u, contents.exposures[0].sample_size);
  EXPECT_EQ(41.67, contents.exposures[0].frr);
  EXPECT_EQ(2600.25, contents.exposures[0].avg_raw_mean);
}

// Backup files of every history, with a flipped bit, overwritten, missing or repeated bytes, or
// parts of other files.
class InspectBackup : public fp_host::DeviceTest,
                      public ::testing::WithParamInterface<fp_test::HistoryKind> {
 protected:
  InspectBackup() {
    fp_host::MuteLog(true);
    auto history = GetParam().start();
    for (int number = 1; number <= GetParam().capacity; ++number) {
      history->AddAndSave(number);
    }
    texts_ = history->RecordTexts();
    content_ = ReadFile(GetParam().path);
  }

  static std::string TextOf(const Record& record) {
    return std::visit(
        [](const auto& event) -> std::string {
          if constexpr (std::is_same_v<std::decay_t<decltype(event)>, std::string>) {
            return event;
          } else {
            return event.ToBackupString();
          }
        },
        record.value);
  }

  // What the tool says the service loads is what the library loads, and all that is read was once
  // written.
  void ExpectReadAsLoaded(const std::string& content, const Texts& written) {
    WriteFile(GetParam().path, content);
    const Texts loaded = GetParam().start()->RecordTexts();
    const Contents contents = Read(content, InputKind::kBackup, GetParam().path);
    Texts read;
    for (const Snapshot& snapshot : contents.snapshots) {
      for (const Record& record : snapshot.records) {
        if (!record.salvaged) {
          read.push_back(TextOf(record));
        }
        ASSERT_NE(written.end(), std::find(written.begin(), written.end(), TextOf(record)))
            << TextOf(record);
      }
    }
    ASSERT_EQ(contents.loaded, read.size());
    // The history keeps at most as many as its capacity.
    const size_t dropped = read.size() - std::min(read.size(), loaded.size());
    ASSERT_EQ(loaded, Texts(read.begin() + static_cast<ptrdiff_t>(dropped), read.end()));
    ASSERT_LE(dropped, read.size() > texts_.size() ? read.size() - texts_.size() : 0);
  }

  Texts texts_;
  std::string content_;
};

TEST_P(InspectBackup, LoadsWhatTheLibraryLoadsAndInventsNothing) {
  fp_host::RunSeeded("damaged files", fp_host::Share(600), 1, [&](uint64_t seed) {
    std::mt19937_64 random(seed);
    const auto below = [&](size_t limit) { return random() % limit; };
    std::string content = content_;
    switch (below(4)) {
      case 0:
        content[below(content.size())] ^= static_cast<char>(1 << below(8));
        break;
      case 1:
        for (size_t at = below(content.size()), end = at + below(600);
             at < std::min(end, content.size()); ++at) {
          content[at] = static_cast<char>(random());
        }
        break;
      case 2:
        content.erase(below(content.size()), below(400));
        break;
      default:
        content = content.substr(0, below(content.size())) + content.substr(below(content.size()));
    }
    ExpectReadAsLoaded(content, texts_);
  });
}

TEST_P(InspectBackup, SpliceOfTwoHistories) {
  Texts written = texts_;
  std::string others;
  for (const auto& kind : fp_test::AllHistoryKinds()) {
    auto history = kind.start();
    history->AddAndSave(77);
    const Texts texts = history->RecordTexts();
    written.insert(written.end(), texts.begin(), texts.end());
    others += ReadFile(kind.path);
  }
  for (size_t cut = 0; cut < content_.size(); cut += 97) {
    ASSERT_NO_FATAL_FAILURE(
        ExpectReadAsLoaded(content_.substr(0, cut) + others + content_.substr(cut / 2), written))
        << cut;
  }
}

INSTANTIATE_TEST_SUITE_P(Files, InspectBackup, ::testing::ValuesIn(fp_test::AllHistoryKinds()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(InspectSalvage, OneFlippedBitCostsOneRecord) {
  constexpr int kFiles = 400;
  std::mt19937_64 random(1);
  RandomRecords records(1);
  size_t loaded = 0;
  size_t readable = 0;
  for (int file = 0; file < kFiles; ++file) {
    std::string content;
    for (int i = 0; i < 100; ++i) {
      content += Frame(records.Attempt().ToBackupString());
    }
    content[random() % content.size()] ^= static_cast<char>(1 << random() % 8);
    const Contents contents = Read(content, InputKind::kBackup);
    loaded += contents.loaded;
    for (const Snapshot& snapshot : contents.snapshots) {
      readable += snapshot.records.size();
    }
    EXPECT_LE(contents.loaded, 100u);
  }
  EXPECT_NEAR(50, static_cast<double>(loaded) / kFiles, 5) << "the service stops at the damage";
  EXPECT_GE(readable, 99u * kFiles);
}

// A file of several buffers, whole, through a pipe that gives little at a time.
TEST(InspectSalvage, DamageAllOverALargeFile) {
  RandomRecords records(2);
  std::mt19937_64 random(2);
  std::string content;
  std::vector<size_t> begins;
  while (content.size() < 3 * ByteWindow::kCapacity) {
    begins.push_back(content.size());
    content += Frame(records.Attempt().ToBackupString());
  }
  size_t sound = begins.size();
  for (size_t i = 1; i < begins.size(); i += 1 + random() % 40) {
    content[begins[i] + 20] ^= 1;
    --sound;
    i += 1;
  }
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  std::thread writer([&] {
    for (size_t at = 0; at < content.size(); at += 7777) {
      (void)!write(ends[1], content.data() + at, std::min<size_t>(7777, content.size() - at));
    }
    close(ends[1]);
  });
  const Contents contents = ReadInput("/proc/self/fd/" + std::to_string(ends[0]), InputKind::kNone);
  writer.join();
  close(ends[0]);
  EXPECT_EQ(sound, contents.snapshots.at(0).records.size());
  EXPECT_EQ(content.size(), contents.bytes);
}

TEST(InspectSalvage, EmptyFramesAndOtherKindsAreNotRecords) {
  const std::string record = Frame(AuthEventG7().ToBackupString());
  EXPECT_EQ(InputKind::kBackup, Read("garbage" + record).kind);
  const Contents contents = Read(record + "~0x0,0x0,0x0,0x0," + Frame("a,b,c") + record);
  EXPECT_EQ(2u, TextsOf(contents, RecordKind::kAttempt).size());
  EXPECT_EQ(1u, contents.loaded);
  EXPECT_EQ(record.size(), contents.damage.at(0).offset);
  EXPECT_EQ(InputKind::kNone, Read("0").kind);
  EXPECT_EQ(InputKind::kNone, Read("").kind);
  EXPECT_EQ(1u, Read("0x12,0x400,x").damage_count);
}

}  // namespace
}  // namespace fp_inspect
