// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include "fp_utils/export.h"

namespace android::fp_utils {

// One enrollment operation of the service: a finger was added, successfully or not, or deleted.
// Filled by the service, held by shared ownership in the container and printed in its dump.
//
// Threading:  not locked. A record that a container holds must no longer be changed while the
//             container saves or dumps on another thread.
// Errors:     formatting never fails, text beyond the stated buffer is cut. Parsing logs and
//             returns false.
// Units:      timestamp in seconds since the epoch.
class FP_UTILS_EXPORT EnrollEvent {
 public:
  static constexpr uint32_t kOpAdd = 0;
  static constexpr uint32_t kOpDelete = 1;

  // Everything is 0 but the timestamp, which is the current time.
  EnrollEvent();
  virtual ~EnrollEvent();

  // One line for the dump, at most 255 characters: the local time, then what was done.
  virtual std::string ToDebugString() const;

  // The record text of the backup file, one line without newline.
  virtual std::string ToBackupString() const;

  // Takes the fields of a record text into this record and removes them from `text`, so that a
  // derived class finds its own part at the front. After a failure `text` is unchanged, but the
  // fields that converted before the damage may have been taken.
  virtual bool LoadFromBackupString(std::string& text);

  // The timestamp as "YYYY-MM-DD hh:mm:ss" in the process's time zone.
  std::string GetLocalTime() const;

  time_t timestamp;
  uint32_t op = kOpAdd;            // other values are kept but print nothing
  bool enroll_successful = false;  // of an addition
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

  // The base text and, for an addition, the quality data; the reason if it failed.
  std::string ToDebugString() const override;

  // The part beyond the base text is cut to 127 characters, which only extreme values reach.
  std::string ToBackupString() const override;

  // Removes the part of EnrollEvent from `text`, also where its own part then fails, and leaves its
  // own.
  bool LoadFromBackupString(std::string& text) override;

  // "reason:" and what `rc` says about a failed enrollment.
  std::string GetEnrollFailureReason() const;

  int32_t rc = 0;           // result code
  float rawmean_delta = 0;  // raw-mean delta, saved with two decimals
  std::array<int32_t, kStitchSlots> stitch_img_num_ = {};
  std::array<int32_t, kStitchSlots> stitch_img_area_ = {};
};

}  // namespace android::fp_utils
