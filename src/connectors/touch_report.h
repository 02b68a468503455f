// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "fp_utils/fps_touch_handler.h"

// The touch-handler device's binary interface, little-endian like every CPU that it runs on.

namespace android::fp_utils::touch_device {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);

// Requests are plain numbers, not encoded with direction and size.
inline constexpr unsigned kEnableLptw = 102;
inline constexpr unsigned kDisableLptw = 103;
inline constexpr unsigned kSetSensingArea = 115;

// The argument of kSetSensingArea.
struct Configuration {
  uint32_t kind = 6;  // identifies this block
  uint8_t enabled = 1;
  uint8_t padding[3] = {};
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
  uint8_t reserved[8] = {};
};
static_assert(sizeof(Configuration) == 32);
static_assert(offsetof(Configuration, enabled) == 4);
static_assert(offsetof(Configuration, left) == 8);
static_assert(offsetof(Configuration, bottom) == 20);

#pragma pack(push, 1)
struct Record {
  uint64_t stamp;
  uint16_t coords[20];
  int32_t signed_coords[2];
  int32_t angle;  // 8192 is pi
  int32_t id;
  uint32_t type;
  uint32_t info;
  uint8_t valid;  // bit 0
  uint8_t flags[10];
  uint8_t padding[5];
};
#pragma pack(pop)
static_assert(sizeof(Record) == 88);
static_assert(offsetof(Record, coords) == 8);
static_assert(offsetof(Record, signed_coords) == 48);
static_assert(offsetof(Record, angle) == 56);
static_assert(offsetof(Record, type) == 64);
static_assert(offsetof(Record, valid) == 72);
static_assert(offsetof(Record, flags) == 73);

inline constexpr uint32_t kMaxRecords = 128;

// What one read returns.
struct Reports {
  uint32_t count;  // of the records that follow; can be larger than kMaxRecords
  uint32_t reserved;
  std::array<Record, kMaxRecords> records;
};
static_assert(sizeof(Reports) == 11272);
static_assert(offsetof(Reports, records) == 8);

// Sets to zero what a read of `bytes` did not fill of the count and of the records that it counts,
// so that missing records are invalid. Returns the number of records to look at.
uint32_t ZeroFillShortRead(Reports& reports, size_t bytes);

inline bool IsValid(const Record& record) { return (record.valid & 1) != 0; }

// The report in display coordinates; a pixel is `scaling_factor` device units.
TouchEvent Decode(const Record& record, uint32_t scaling_factor);

}  // namespace android::fp_utils::touch_device
