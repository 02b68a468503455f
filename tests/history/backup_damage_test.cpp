// SPDX-License-Identifier: Apache-2.0
//
// Damaged backup files of every kind of history. A load must not crash, hang or return a wrong
// record. It keeps the records before the damage and logs at most one line. The history can still
// save.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <random>

#include "fp_host/testing.h"
#include "support/history_kinds.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;
using Texts = std::vector<std::string>;

class BackupDamage : public DeviceTest, public ::testing::WithParamInterface<HistoryKind> {
 protected:
  BackupDamage() {
    auto history = GetParam().start();
    for (int number = 1; number <= GetParam().capacity; ++number) {
      history->AddAndSave(number);
    }
    texts_ = history->RecordTexts();
    content_ = ReadFile(GetParam().path);
    for (size_t end = 0; const std::string& text : texts_) {
      end += Frame(text).size();
      frame_ends_.push_back(end);
    }
    TakeLog();
  }

  static Texts Load(const std::string& content) {
    WriteFile(GetParam().path, content);
    return GetParam().start()->RecordTexts();
  }

  // Expects a file that is damaged from `first_damaged` on to give all records before that, and no
  // wrong one.
  void ExpectSoundPrefix(const std::string& content, size_t first_damaged) {
    const auto intact = std::upper_bound(frame_ends_.begin(), frame_ends_.end(), first_damaged);
    ExpectPrefix(Load(content), static_cast<size_t>(intact - frame_ends_.begin()), 1);
  }

  void ExpectPrefix(const Texts& loaded, size_t fewest, size_t most_log_lines) {
    ASSERT_GE(loaded.size(), fewest);
    ASSERT_LE(loaded.size(), texts_.size());
    ASSERT_TRUE(std::equal(loaded.begin(), loaded.end(), texts_.begin()));
    ASSERT_LE(TakeLog().size(), most_log_lines);
  }

  Texts texts_;
  std::string content_;
  std::vector<size_t> frame_ends_;
};

TEST_P(BackupDamage, EveryTruncation) {
  for (size_t length = 0; length <= content_.size(); ++length) {
    ASSERT_NO_FATAL_FAILURE(ExpectSoundPrefix(content_.substr(0, length), length)) << length;
  }
}

TEST_P(BackupDamage, EverySingleBit) {
  const size_t step = static_cast<size_t>(std::max(1, 1000 / std::max(1, Share(1000))));
  for (size_t bit = 0; bit < content_.size() * 8; bit += step) {
    std::string damaged = content_;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ 1 << bit % 8);
    ASSERT_NO_FATAL_FAILURE(ExpectSoundPrefix(damaged, bit / 8)) << bit;
  }
}

TEST_P(BackupDamage, RandomBursts) {
  std::mt19937 random(3);
  for (int i = 0; i < Share(100000); ++i) {
    std::string damaged = content_;
    const size_t at = random() % damaged.size();
    const size_t length = std::min<size_t>(1 + random() % 64, damaged.size() - at);
    for (size_t k = at; k < at + length; ++k) {
      damaged[k] = static_cast<char>(random());
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSoundPrefix(damaged, at)) << i;
  }
}

TEST_P(BackupDamage, OddLengths) {
  const std::string first = Frame(texts_[0]);
  const std::string long_text(1024, 'x');
  std::string ends_in_zero = long_text;
  ends_in_zero.back() = '\0';
  const struct {
    const char* why;
    std::string frame;
    const char* log;  // part of one line, or empty if there is no line
    bool continues;   // the load, with the next frame
  } kCases[] = {
      {"empty text: its CRC holds, the record does not parse", Frame(""), "failed to parse", true},
      {"1023 bytes", Frame(long_text.substr(1)), "failed to parse", true},
      {"1024 bytes: the buffer's final NUL is in the CRC", Frame(long_text), "Crc checksum", false},
      {"1024 bytes that end in NUL", Frame(ends_in_zero), "failed to parse", true},
      {"1025 bytes", Frame(long_text + "x"), "1025 bytes is too long", false},
      {"4 GiB", Frame("x", 1UL << 32), "4294967296 bytes is too long", false},
      {"all ones", Frame("x", ~0UL), "18446744073709551615 bytes is too long", false},
      {"more digits than a length has", "0x1,0x11111111111111111,x", "is too long", false},
      {"a negative length", "0x1,0x-1,x", "is too long", false},
      {"no header", "hello", "", false},
      {"half a header", "0x12", "", false},
      {"no comma after the length of an empty text", "0x0,0x0;", "failed to parse", false},
  };
  for (const auto& test : kCases) {
    const Texts loaded = Load(first + test.frame + Frame(texts_[1]));
    EXPECT_EQ(test.continues ? 2u : 1u, loaded.size()) << test.why;
    EXPECT_EQ(texts_[0], loaded[0]) << test.why;
    const std::vector<LogLine> log = TakeLog();
    for (const LogLine& line : log) {
      EXPECT_EQ(ANDROID_LOG_ERROR, line.priority);
    }
    EXPECT_EQ(*test.log == '\0' ? 0u : 1u, CountLinesWith(log, test.log)) << test.why;
  }
}

TEST_P(BackupDamage, OddFiles) {
  std::mt19937 random(4);
  std::string binary(100000, '\0');
  std::generate(binary.begin(), binary.end(), random);
  for (const std::string& content :
       {std::string(), std::string("\n"), binary, std::string("hello")}) {
    EXPECT_TRUE(Load(content).empty());
    EXPECT_LOG();
  }
  const std::string path = HostPath(GetParam().path);
  Load("");
  ASSERT_EQ(0, truncate(path.c_str(), 1L << 30));
  EXPECT_TRUE(GetParam().start()->RecordTexts().empty());
  EXPECT_LOG() << "a gigabyte of zeros is not a header";

  Remove(GetParam().path);
  std::filesystem::create_directory(path);
  GetParam().start()->AddAndSave(1);
  EXPECT_EQ(2u, TakeLog().size()) << "a directory can be neither read nor written";
}

// Each call of a function fails in turn. The records that were read before are kept.
TEST_P(BackupDamage, FailingSystemCalls) {
  const Fault kFaults[] = {
      {.function = "fopen", .error = EACCES},
      {.function = "fopen", .error = EMFILE},
      {.function = "read", .error = EIO},
      {.function = "read", .error = EINTR},
      {.function = "read", .calls = Fault::kForever, .shorten_to = 1},
      {.function = "read", .calls = Fault::kForever, .shorten_to = 37},
  };
  WriteFile(GetParam().path, content_);
  for (Fault fault : kFaults) {
    for (bool is_reached = true; is_reached; ++fault.first_call) {
      SetFault(fault);
      const Texts loaded = GetParam().start()->RecordTexts();
      is_reached = CallsSinceFaultSet(fault.function) >= fault.first_call;
      ClearFaults();
      const bool fails = is_reached && fault.error != 0;
      ASSERT_NO_FATAL_FAILURE(ExpectPrefix(loaded, fails ? 0 : texts_.size(), fails ? 1 : 0))
          << fault.function << ' ' << fault.error << " at call " << fault.first_call;
    }
  }
}

TEST_P(BackupDamage, ContinuesAndSavesAgain) {
  const struct {
    const char* why;
    Fault fault;
  } kCases[] = {
      {"permission denied", {.function = "open", .error = EACCES}},
      {"no space at all", {.function = "write", .calls = Fault::kForever, .error = ENOSPC}},
      {"no space after a page", {.function = "write", .first_call = 2, .error = ENOSPC}},
      {"short writes", {.function = "write", .calls = Fault::kForever, .shorten_to = 7}},
  };
  int number = GetParam().capacity;
  for (const auto& test : kCases) {
    WriteFile(GetParam().path, content_);
    auto history = GetParam().start();
    {
      const ScopedFault fault(test.fault);
      history->AddAndSave(++number);
    }
    EXPECT_EQ(texts_.size(), history->RecordTexts().size()) << test.why;
    EXPECT_NE("", ReadFile(GetParam().path)) << test.why;
    history->AddAndSave(++number);
    EXPECT_EQ(history->RecordTexts(), GetParam().start()->RecordTexts()) << test.why;
  }
  WriteFile(GetParam().path, content_.substr(0, content_.size() / 2) + "damaged");
  auto history = GetParam().start();
  history->AddAndSave(++number);
  EXPECT_EQ(history->RecordTexts(), GetParam().start()->RecordTexts());
}

INSTANTIATE_TEST_SUITE_P(Files, BackupDamage, ::testing::ValuesIn(AllHistoryKinds()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace android::fp_utils
