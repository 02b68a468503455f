// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"
#include "fp_utils/finger_sizes.h"

// The result of reading an input: its records and where in the input each was found.

namespace fp_inspect {

using android::fp_utils::AuthEventG7;
using android::fp_utils::EnrollEventG7;
using android::fp_utils::FingerSize;

enum class RecordKind { kAttempt, kEnrollment, kFingerSize, kError };
inline constexpr size_t kRecordKinds = 4;

struct Record {
  RecordKind GetKind() const { return static_cast<RecordKind>(value.index()); }
  const AuthEventG7* Attempt() const { return std::get_if<AuthEventG7>(&value); }
  const EnrollEventG7* Enrollment() const { return std::get_if<EnrollEventG7>(&value); }

  // The alternatives have the order of RecordKind. The string is the message of a critical error.
  std::variant<AuthEventG7, EnrollEventG7, FingerSize, std::string> value;
  int64_t time = 0;     // seconds since the epoch, of the device's wall clock while times_are_local
  uint64_t offset = 0;  // in the input, bytes
  uint32_t source = 0;  // number of the input
  bool g7 = false;      // has the fields of the G7 classes
  bool whole = false;   // has all stored fields: from a backup file, not from a dump
  bool salvaged = false;  // follows a damaged part: the service would not load it
};

// The record as the dump prints it, without its time.
std::string DumpText(const Record& record);

// The content of a history at one time, oldest record first.
struct Snapshot {
  RecordKind kind = RecordKind::kAttempt;
  bool times_are_local = false;  // wall clock of the device, as dumps print it
  std::vector<Record> records;
};

// `offset` is in bytes. `check` is the id of the failed check, as listed in docs/fp_inspect.md.
struct Damage {
  uint64_t offset = 0;
  std::string check;
  std::string text;
};

// The exposure controller as a dump shows it: its settings, by their names in the dump, and the
// sample on which it decides.
struct Exposure {
  std::map<std::string, uint32_t> settings = {};
  uint32_t sample_size = 0;
  double frr = 0;  // percent
  double avg_iq = 0;
  double avg_raw_mean = 0;
  std::string bring_up;  // the line about it in the same dump
  size_t snapshots = 0;  // how many snapshots of the input precede it
  bool whole = false;    // its last line was read
};

enum class InputKind { kNone, kDump, kBackup };

struct Contents {
  // Counts every damaged place and keeps the first ones.
  void AddDamage(uint64_t offset, std::string check, std::string text);

  std::string name;
  InputKind kind = InputKind::kNone;
  uint64_t bytes = 0;
  std::vector<Snapshot> snapshots;  // without empty ones
  size_t sections = 0;              // of dumps, empty ones too
  size_t loaded = 0;                // records of a backup file that the service would load
  std::vector<Exposure> exposures;  // one per dump
  std::string bring_up;             // the newest line about it
  std::string time_zone;            // of the device, where a bug report names it
  std::vector<Damage> damage;
  size_t damage_count = 0;
};

}  // namespace fp_inspect
