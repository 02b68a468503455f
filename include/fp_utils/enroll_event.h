// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "fp_utils/export.h"

namespace android::fp_utils {

// One enrollment operation of the service: an attempt to add a finger, or a deletion. Filled by the
// service, shared with the container and printed in its dump.
//
// Threading:  not locked. Do not change a record while a container that holds it saves or dumps on
//             another thread.
// Errors:     formatting never fails; text beyond the stated length is cut. Parsing logs a failure
//             and returns false.
// Units:      timestamp in seconds since the epoch.
class FP_UTILS_EXPORT EnrollEvent {
 public:
  static constexpr uint32_t kOpAdd = 0;
  static constexpr uint32_t kOpDelete = 1;

  // The timestamp is the current time; everything else is 0.
  EnrollEvent();
  virtual ~EnrollEvent();

  // One line for the dump, at most 255 characters: the local time, then the operation.
  virtual std::string ToDebugString() const;

  // The record text of the backup file, one line without newline.
  virtual std::string ToBackupString() const;

  // Parses a record text and removes the parsed fields from `text`, so that a derived class finds
  // its own part at the front. After a failure `text` is unchanged, but the fields before the
  // malformed one may have been stored.
  virtual bool LoadFromBackupString(std::string& text);

  // The timestamp as "YYYY-MM-DD hh:mm:ss" in the process's time zone.
  std::string GetLocalTime() const;

  time_t timestamp;
  uint32_t op = kOpAdd;            // other values are stored, but the dump names no operation
  bool enroll_successful = false;  // for kOpAdd only
  int32_t gid = 0;                 // group (user)
  int32_t fid = 0;                 // finger
  int32_t capture_count = 0;
  float iq_avg = 0;  // average image quality of the captures, saved with two decimals
  int32_t enrolled_fingers_count = 0;  // after the operation
};

// An enrollment operation with the quality data of the G7 sensor generation.
class FP_UTILS_EXPORT EnrollEventG7 : public EnrollEvent {
 public:
  static constexpr size_t kStitchSlots = 5;

  EnrollEventG7();
  ~EnrollEventG7() override;

  // The base text and `rc`. Unless the operation is a deletion, the quality data follow, and if
  // `enroll_successful` is false, the reason of the failure.
  std::string ToDebugString() const override;

  // The part after the base text is cut to 127 characters, which only extreme values exceed.
  std::string ToBackupString() const override;

  // Removes the fields of EnrollEvent from `text`, even if parsing the fields of this class then
  // fails. The fields of this class stay in `text`.
  bool LoadFromBackupString(std::string& text) override;

  // "reason:" and the cause of a failed enrollment according to `rc`.
  std::string GetEnrollFailureReason() const;

  int32_t rc = 0;           // result code
  float rawmean_delta = 0;  // raw-mean delta, saved with two decimals
  std::array<int32_t, kStitchSlots> stitch_img_num_ = {};
  std::array<int32_t, kStitchSlots> stitch_img_area_ = {};
};

}  // namespace android::fp_utils
