// SPDX-License-Identifier: Apache-2.0
#include "reading/dump_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <utility>

#include "reading/dump_line.h"

namespace fp_inspect {
namespace {

// The longest line that is read whole. Each piece of a longer one is read as a line.
constexpr size_t kMaxLine = 1 << 16;

// After this many lines without a record a section has ended, and a bring-up line no longer belongs
// to the next dump.
constexpr size_t kMaxLinesBetweenRecords = 256;

enum class Section { kNone, kStats, kAttempts, kErrors, kEnrollments, kExposure };

struct Title {
  std::string_view words;
  Section section;
};
constexpr Title kTitles[] = {
    {"Auth Stats:", Section::kStats},         {"Auth Events:", Section::kAttempts},
    {"Critical Errors:", Section::kErrors},   {"Enroll Events:", Section::kEnrollments},
    {"DynamicExposure:", Section::kExposure},
};

constexpr std::string_view kZoneProperty = "[persist.sys.timezone]: [";

RecordKind KindOf(Section section) {
  return section == Section::kErrors        ? RecordKind::kError
         : section == Section::kEnrollments ? RecordKind::kEnrollment
                                            : RecordKind::kAttempt;
}

// Reads the number that follows `name` anywhere in the line.
bool ParseNumberAfter(std::string_view line, std::string_view name, auto* value) {
  const size_t at = line.find(name);
  if (at == line.npos) {
    return false;
  }
  const std::string_view number = line.substr(at + name.size());
  return std::from_chars(number.data(), number.data() + number.size(), *value).ec == std::errc();
}

class DumpReader {
 public:
  explicit DumpReader(Contents* contents) : contents_(*contents) {}

  // Few lines of a bug report come from the library. The last and first characters of a line
  // suffice to skip most of the others.
  void ReadLine(std::string_view line, uint64_t offset, bool complete) {
    ++line_number_;
    if (line.ends_with('\r')) {
      line.remove_suffix(1);
    }
    if (line.empty()) {
      return;
    }
    if (line.back() == ':' && ReadTitle(line)) {
      return;
    }
    if (line.front() == 'I' || line.front() == 'E' || line.front() == 'U') {
      ReadBringUp(line);
    } else if (line.starts_with(kZoneProperty)) {
      contents_.time_zone = line.substr(
          kZoneProperty.size(), line.find(']', kZoneProperty.size()) - kZoneProperty.size());
    }
    if (section_ != Section::kNone || line.starts_with("  #")) {
      ReadInSection(line, offset, complete);
    }
  }

  void Finish() { EndSection(); }

 private:
  bool ReadTitle(std::string_view line) {
    for (const Title& title : kTitles) {
      if (line.ends_with(title.words)) {
        BeginSection(title.section);
        return true;
      }
    }
    return false;
  }

  void BeginSection(Section section) {
    // Auth Events that follow Auth Stats belong to them.
    if (section_ != Section::kStats || section != Section::kAttempts) {
      EndSection();
      expected_records_.reset();
      only_g7_ = false;
    }
    section_ = section;
    last_record_line_ = line_number_;
    ++contents_.sections;
    contents_.kind = InputKind::kDump;
    if (!last_bring_up_.empty() && line_number_ - last_bring_up_line_ < kMaxLinesBetweenRecords) {
      contents_.bring_up = std::exchange(last_bring_up_, {});
    }
    if (section == Section::kExposure) {
      BeginExposure();
    }
  }

  void BeginExposure() {
    constexpr size_t kBringUpKept = 80;  // bytes, enough to include its time
    if (!contents_.exposures.empty() && !contents_.exposures.back().whole) {
      contents_.exposures.pop_back();
    }
    contents_.exposures.push_back({.bring_up = contents_.bring_up.substr(0, kBringUpKept),
                                   .snapshots = contents_.snapshots.size()});
  }

  void ReadBringUp(std::string_view line) {
    constexpr std::string_view kError = "Error:";
    if (line.starts_with("Initialization successful, start_time:") ||
        line.starts_with("Unexpected state:") ||
        (line.starts_with(kError) && ReadWallTime(line.substr(kError.size())))) {
      last_bring_up_ = line;
      last_bring_up_line_ = line_number_;
    }
  }

  void ReadInSection(std::string_view line, uint64_t offset, bool complete) {
    if (const auto found = FindDumpLine(line)) {
      AddRecord(*found, offset, complete);
    } else if (section_ == Section::kStats) {
      ReadStats(line);
    } else if (section_ == Section::kExposure) {
      ReadExposure(line);
    }
    if (line_number_ - last_record_line_ > kMaxLinesBetweenRecords) {
      EndSection();
      section_ = Section::kNone;
    }
  }

  void ReadStats(std::string_view line) {
    size_t total = 0;
    if (ParseNumberAfter(line, "total_attempts:", &total)) {
      expected_records_ = total;
      only_g7_ = line.find(", avg_rawmean_delta:") != line.npos;
    }
  }

  void ReadExposure(std::string_view line) {
    Exposure& exposure = contents_.exposures.back();
    if (const size_t name = line.find("  k"); name != line.npos) {
      const std::string_view setting = line.substr(name + 2);
      int64_t value = 0;
      if (ParseNumberAfter(setting, ": ", &value)) {
        // The dump prints the unsigned value as a signed number.
        exposure.settings[std::string(setting.substr(0, setting.find(':')))] =
            static_cast<uint32_t>(value);
      }
    }
    ParseNumberAfter(line, "Stats of last ", &exposure.sample_size);
    ParseNumberAfter(line, "    FRR: ", &exposure.frr);
    ParseNumberAfter(line, "    Avg IQ: ", &exposure.avg_iq);
    exposure.whole |= ParseNumberAfter(line, "    Avg raw mean: ", &exposure.avg_raw_mean);
  }

  static std::optional<Record> ParseRecord(RecordKind kind, std::string_view words) {
    if (kind == RecordKind::kAttempt) {
      return ReadAttempt(words);
    }
    if (kind == RecordKind::kEnrollment) {
      return ReadEnrollment(words);
    }
    Record record;
    record.value = std::string(words);
    return record;
  }

  // If the title of a section is lost, the words still identify attempts and enrollments.
  RecordKind KindOfLine(std::string_view words) const {
    for (const std::string_view begin : {"op:ADD, ", "op:DEL, ", ", rc:"}) {
      if (words.starts_with(begin)) {
        return RecordKind::kEnrollment;
      }
    }
    return words.starts_with("auth_successful:") || words.starts_with("acquisition_error:")
               ? RecordKind::kAttempt
               : KindOf(section_);
  }

  void AddRecord(const DumpLine& line, uint64_t offset, bool complete) {
    const RecordKind kind = KindOfLine(line.words);
    auto record = complete ? ParseRecord(kind, line.words) : std::nullopt;
    if (section_ == Section::kNone && !record) {
      return;  // another program's list
    }
    if (record && only_g7_ && kind == RecordKind::kAttempt && !record->g7) {
      record.reset();  // cut after the fields of the base class
    }
    if (line.index < next_index_ || kind != snapshot_.kind) {
      EndSnapshot();
      snapshot_.kind = kind;
    }
    if (line.index > next_index_) {
      contents_.AddDamage(
          offset, "missing",
          fmt::format("records #{:03} to #{:03} are missing", next_index_, line.index - 1));
    }
    next_index_ = line.index + 1;
    last_record_line_ = line_number_;
    last_offset_ = offset;
    if (!record) {
      contents_.AddDamage(offset, complete ? "line" : "cut",
                          fmt::format("cannot parse record #{:03}", line.index));
      return;
    }
    record->time = line.time;
    record->offset = offset;
    snapshot_.records.push_back(std::move(*record));
  }

  void EndSnapshot() {
    next_index_ = 0;
    if (!snapshot_.records.empty()) {
      snapshot_.times_are_local = true;
      snapshot_.records.shrink_to_fit();
      contents_.kind = InputKind::kDump;
      contents_.snapshots.push_back(std::exchange(snapshot_, {}));
    }
  }

  void EndSection() {
    const bool counted = section_ == Section::kAttempts || section_ == Section::kStats;
    if (counted && expected_records_ && next_index_ < *expected_records_) {
      contents_.AddDamage(
          last_offset_, "count",
          fmt::format("the statistics count {} attempts, but the list ends after {}",
                      *expected_records_, next_index_));
    }
    expected_records_.reset();
    EndSnapshot();
  }

  Contents& contents_;
  Section section_ = Section::kNone;
  Snapshot snapshot_;
  uint64_t next_index_ = 0;
  std::optional<size_t> expected_records_;  // number of attempts, from the line of statistics
  bool only_g7_ = false;                    // every attempt of the history has the matcher's fields
  std::string last_bring_up_;
  size_t line_number_ = 0;
  size_t last_bring_up_line_ = 0;
  size_t last_record_line_ = 0;
  uint64_t last_offset_ = 0;
};

}  // namespace

void ReadDump(ByteWindow& input, Contents* contents) {
  DumpReader reader(contents);
  size_t known = 0;  // bytes at the front of the window that have no newline
  for (;;) {
    const uint64_t offset = input.GetOffset();
    std::string_view window = input.Fill(known + 1);
    if (window.empty()) {
      break;
    }
    size_t begin = 0;
    const char* newline;
    while ((newline = static_cast<const char*>(memchr(window.data() + begin + known, '\n',
                                                      window.size() - begin - known))) != nullptr) {
      const auto end = static_cast<size_t>(newline - window.data());
      reader.ReadLine(window.substr(begin, end - begin), offset + begin, true);
      begin = end + 1;
      known = 0;
    }
    known = window.size() - begin;
    input.Drop(begin);
    const bool ends_here = begin == 0 && input.Fill(known + 1).size() == known;
    if (known >= kMaxLine || (ends_here && known > 0)) {
      window = input.Fill(known);
      reader.ReadLine(window.substr(0, known), input.GetOffset(), false);
      input.Drop(known);
      known = 0;
    }
  }
  reader.Finish();
}

}  // namespace fp_inspect
