// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/zone.h"
#include "reading/record.h"

namespace fp_inspect {

// A gap between two histories of a device that have no record in common: the records in between are
// lost.
struct Gap {
  int64_t from = 0;        // seconds since the epoch, the last record before the gap
  int64_t to = 0;          // the first record after it
  bool lost_past = false;  // the later history was not full, so it should have the missing records
};

// All records of one kind from all inputs of a device, in their order.
struct Timeline {
  std::vector<Record> records;
  std::vector<Gap> gaps;
  size_t dropped = 0;  // records missing from a history that should still have them
  size_t largest = 0;  // records in the longest history that was read
  bool full = false;   // the first history was probably full, so that earlier records are gone
};

// The exposure controller as a dump shows it, and the time to which this applies.
struct ControllerDump {
  Exposure exposure;
  uint32_t source = 0;               // number of the input
  int64_t begin = 0;                 // of the bring-up, seconds since the epoch
  std::optional<int64_t> last = {};  // time of the newest attempt in it
  size_t in_last_second = 0;         // attempts in it that have this time
};

struct Device {
  const Timeline& Of(RecordKind kind) const { return timelines[static_cast<size_t>(kind)]; }
  Timeline& Of(RecordKind kind) { return timelines[static_cast<size_t>(kind)]; }

  std::array<Timeline, kRecordKinds> timelines;
  std::vector<std::string> sources;
  std::vector<Damage> damage;  // the first ones, each text with its input
  size_t damage_count = 0;
  std::optional<Exposure> exposure;   // of the newest dump that has it
  std::vector<ControllerDump> dumps;  // those that show a bring-up without an error
  std::string bring_up;
  std::string zone;  // used to read local times; "" is the machine's
};

// Merges a device's inputs as they arrive. Histories that overlap are aligned: the records that the
// end of one and the beginning of the next have in common, in the same order, are the same records.
// Equal records that follow each other stay separate, and no record is counted twice. A history
// that lost records in a restart is still aligned after the lost ones.
class DeviceBuilder {
 public:
  // `zone` overrides the zone that the inputs name. Salvaged records are left out unless asked for.
  DeviceBuilder(std::string zone, bool salvage) : zone_(std::move(zone)), salvage_(salvage) {}

  void Add(Contents contents);
  Device Finish();

 private:
  void AddDumps(const Contents& contents, const Zone& zone);

  std::string zone_;
  bool salvage_;
  Device device_;
  int64_t newest_ = INT64_MIN;  // last record of the dump that gave exposure and bring_up
  std::vector<Snapshot> snapshots_;
};

// A longer pause begins a new burst. The attempts of a burst share finger, light and place.
inline constexpr int64_t kBurstPause = 600;  // seconds

// The positions in `records` at which bursts begin.
std::vector<size_t> BurstStarts(const std::vector<Record>& records);

}  // namespace fp_inspect
