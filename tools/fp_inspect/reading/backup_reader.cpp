// SPDX-License-Identifier: Apache-2.0
#include "reading/backup_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>

#include "fp_utils/crc32.h"

namespace fp_inspect {
namespace {

using android::fp_utils::AuthEvent;
using android::fp_utils::EnrollEvent;

// The library reads a record text into a buffer of this size and terminates it with a zero byte.
constexpr size_t kMaxRecordText = 1024;
constexpr size_t kMaxHeader = 64;
constexpr size_t kMaxFrame = kMaxRecordText + kMaxHeader;  // bytes, with its header

struct Header {
  uint32_t crc = 0;
  uint64_t length = 0;
  size_t size = 0;  // of the header itself
};

// Accepts what the library accepts: signs, blanks, leading zeros and a missing last comma.
std::optional<Header> ScanHeader(std::string_view at) {
  char text[kMaxHeader + 1] = {};
  memcpy(text, at.data(), std::min(at.size(), kMaxHeader));
  Header header;
  unsigned long length = 0;
  int size = 0;
  if (sscanf(text, "0x%x,0x%lx%n", &header.crc, &length, &size) != 2) {
    return std::nullopt;
  }
  header.length = length;
  header.size = static_cast<size_t>(size) + (text[size] == ',' ? 1 : 0);
  return header;
}

bool ConsumeHex(std::string_view* at, size_t max_digits, uint64_t* value) {
  if (!at->starts_with("0x")) {
    return false;
  }
  size_t digits = 0;
  for (*value = 0; digits < max_digits && at->size() > 2 + digits; ++digits) {
    const char c = (*at)[2 + digits];
    if (isxdigit(static_cast<unsigned char>(c)) == 0) {
      break;
    }
    *value = *value << 4 | static_cast<uint64_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
  }
  const bool is_complete = digits > 0 && at->size() > 2 + digits && (*at)[2 + digits] == ',';
  at->remove_prefix(is_complete ? 3 + digits : 0);
  return is_complete;
}

// Accepts only what the library writes, with a length that a record can have.
std::optional<Header> ParseExactHeader(std::string_view at) {
  const size_t before = at.size();
  uint64_t crc = 0;
  Header header;
  if (!ConsumeHex(&at, 8, &crc) || !ConsumeHex(&at, 3, &header.length) || header.length == 0 ||
      header.length > kMaxRecordText) {
    return std::nullopt;
  }
  header.crc = static_cast<uint32_t>(crc);
  header.size = before - at.size();
  return header;
}

template <typename Base, typename Event>
bool Load(Record* record, std::string text, bool g7) {
  Event event;
  const bool loaded =
      g7 ? event.LoadFromBackupString(text) : event.Base::LoadFromBackupString(text);
  record->g7 = g7;
  if constexpr (!std::is_same_v<Event, FingerSize>) {
    record->time = event.timestamp;
  }
  record->value = event;
  return loaded;
}

// Parses a record text. The number of fields determines the class of the record.
std::optional<Record> ReadRecord(std::string_view view) {
  const std::string text(view);
  Record record;
  record.whole = true;
  bool loaded = false;
  const auto fields = 1 + std::count(text.begin(), text.end(), ',');
  switch (fields) {
    case 3:
      loaded = Load<FingerSize, FingerSize>(&record, text, true);
      break;
    case 6:
    case 27:
      loaded = Load<AuthEvent, AuthEventG7>(&record, text, fields > 6);
      break;
    case 8:
    case 20:
      loaded = Load<EnrollEvent, EnrollEventG7>(&record, text, fields > 8);
      break;
    default:
      break;
  }
  return loaded ? std::optional(std::move(record)) : std::nullopt;
}

// The record of the frame at the front, if the frame is intact and exactly as the library writes
// it.
std::optional<Record> ReadIntactFrame(std::string_view at, size_t* frame_size) {
  const auto header = ParseExactHeader(at);
  if (!header || header->size + header->length > at.size()) {
    return std::nullopt;
  }
  const std::string_view text = at.substr(header->size, header->length);
  *frame_size = header->size + header->length;
  if (android::fp_utils::crc32(text.data(), text.size()) != header->crc) {
    return std::nullopt;
  }
  return ReadRecord(text);
}

// The kind of history, by the name of its file. For other names, the first record determines it.
std::optional<RecordKind> KindFromPath(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1);
  return name.starts_with("AuthStats.")             ? std::optional(RecordKind::kAttempt)
         : name.starts_with("EnrollEventContainer") ? std::optional(RecordKind::kEnrollment)
         : name.starts_with("FingerSizes.")         ? std::optional(RecordKind::kFingerSize)
                                                    : std::nullopt;
}

class BackupReader {
 public:
  BackupReader(ByteWindow& input, Contents* contents)
      : input_(input), contents_(*contents), kind_(KindFromPath(contents->name)) {}

  void Run() {
    contents_.kind = InputKind::kBackup;
    while (ReadFrame()) {
    }
    if (!input_.Fill(1).empty()) {
      Salvage();
    }
    contents_.bytes = input_.GetOffset();
    for (Snapshot& snapshot : snapshots_) {
      if (!snapshot.records.empty()) {
        contents_.snapshots.push_back(std::move(snapshot));
      }
    }
  }

 private:
  // One iteration of the loop with which the library loads a file; false where that loop stops.
  bool ReadFrame() {
    const std::string_view at = input_.Fill(kMaxFrame);
    if (at.empty()) {
      return false;
    }
    const auto header = ScanHeader(at);
    if (!header) {
      return Stop("header", "no valid frame header");
    }
    if (header->length > kMaxRecordText) {
      return Stop("length", fmt::format("frame of {} bytes is too long", header->length));
    }
    const size_t available = std::min<size_t>(header->length, at.size() - header->size);
    memcpy(buffer_, at.data() + header->size, available);
    // If the file ends too early, the buffer keeps bytes of the previous record, as in the library.
    buffer_[std::min<size_t>(header->length, kMaxRecordText - 1)] = '\0';
    const bool cut = available < header->length;
    if (android::fp_utils::crc32(buffer_, header->length) != header->crc) {
      return cut ? Stop("cut", "the file ends inside this frame")
                 : Stop("crc", "checksum mismatch");
    }
    AddFrame({buffer_, header->length});
    input_.Drop(header->size + available);
    return true;
  }

  bool Stop(const char* check, std::string text) {
    contents_.AddDamage(input_.GetOffset(), check, std::move(text));
    return false;
  }

  // The class of the history loads only records of its own kind.
  void AddFrame(std::string_view text) {
    auto record = ReadRecord(text);
    if (record && !kind_) {
      kind_ = record->GetKind();
    }
    const bool is_accepted =
        record && record->GetKind() == kind_ && (kind_ != RecordKind::kEnrollment || record->g7);
    if (!is_accepted) {
      contents_.AddDamage(input_.GetOffset(), "record", "cannot parse the record in this frame");
    }
    contents_.loaded += is_accepted ? 1 : 0;
    if (record) {
      Keep(std::move(*record), !is_accepted);
    }
  }

  void Keep(Record record, bool salvaged) {
    record.offset = input_.GetOffset();
    record.salvaged = salvaged;
    Snapshot& snapshot = snapshots_[static_cast<size_t>(record.GetKind())];
    snapshot.kind = record.GetKind();
    snapshot.records.push_back(std::move(record));
  }

  // Looks for intact frames after the damage. It accepts only frames exactly as the library writes
  // them, so that other data is not mistaken for a record.
  void Salvage() {
    bool intact = false;
    for (std::string_view at; !(at = input_.Fill(kMaxFrame)).empty();) {
      size_t size = 0;
      if (auto record = ReadIntactFrame(at, &size)) {
        Keep(std::move(*record), true);
        input_.Drop(size);
        intact = true;
        continue;
      }
      if (intact) {
        contents_.AddDamage(input_.GetOffset(), "frame", "damaged frame");
      }
      intact = false;
      const size_t next = at.find("0x", 1);
      // The last byte in the window may be the first of a frame.
      input_.Drop(next != at.npos ? next : std::max<size_t>(1, at.size() - 1));
    }
  }

  ByteWindow& input_;
  Contents& contents_;
  std::optional<RecordKind> kind_;  // of the history's own records
  Snapshot snapshots_[kRecordKinds];
  char buffer_[kMaxRecordText] = {};
};

}  // namespace

bool LooksLikeBackup(std::string_view beginning) {
  if (ScanHeader(beginning)) {
    return true;
  }
  for (size_t at = 0; (at = beginning.find("0x", at)) != beginning.npos; ++at) {
    size_t size = 0;
    if (ReadIntactFrame(beginning.substr(at), &size)) {
      return true;
    }
  }
  return false;
}

void ReadBackup(ByteWindow& input, Contents* contents) { BackupReader(input, contents).Run(); }

}  // namespace fp_inspect
