// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <string>

#include "fp_utils/export.h"

namespace android::fp_utils {

// One authentication attempt. Created by AuthStats::CreateAttempt(), filled by the service, shared
// with the history and printed in its dump.
//
// Threading:  not locked. Do not change a record while a history that holds it saves or dumps on
//             another thread.
// Errors:     formatting never fails; text beyond the stated length is cut. Parsing logs a failure
//             and returns false.
// Units:      timestamp in seconds since the epoch; the service defines those of latency and iq.
class FP_UTILS_EXPORT AuthEvent {
 public:
  // The acquired_info of an image that was good enough to be matched. Only such attempts count in
  // the statistics.
  static constexpr int8_t kAcquiredGood = 1;

  // The timestamp is the current time; everything else is 0.
  AuthEvent();
  virtual ~AuthEvent();

  // One line for the dump, at most 127 characters: the local time, then the outcome of the match
  // or the name of the acquisition error.
  virtual std::string ToDebugString() const;

  // The record text of the backup file, one line without newline.
  virtual std::string ToBackupString() const;

  // Parses a record text and removes the parsed fields from `text`, so that a derived class finds
  // its own part at the front. After a failure `text` is unchanged, but the fields before the
  // malformed one may have been stored.
  virtual bool LoadFromBackupString(std::string& text);

  // The name by which the histories tell kinds of records apart.
  virtual std::string GetClassName();

  // The timestamp as "YYYY-MM-DD hh:mm:ss" in the process's time zone.
  std::string GetLocalTime() const;

  time_t timestamp;
  int8_t acquired_info = 0;  // the platform's AcquiredInfo; see kAcquiredGood
  bool auth_successful = false;
  int32_t fid = 0;      // finger that matched, or the one that the service reports
  int32_t latency = 0;  // duration of the attempt
  int32_t iq = 0;       // image quality score
};

// An attempt with the matcher's diagnostics of the G7 sensor generation.
class FP_UTILS_EXPORT AuthEventG7 : public AuthEvent {
 public:
  static constexpr size_t kStitchSlots = 5;

  AuthEventG7();
  ~AuthEventG7() override;

  // The base text followed by the diagnostics that apply to the outcome.
  std::string ToDebugString() const override;

  // The floats are written with two decimals, so a load returns them rounded.
  std::string ToBackupString() const override;

  // Removes only the fields of AuthEvent from `text`, even if parsing the fields of this class then
  // fails.
  bool LoadFromBackupString(std::string& text) override;
  std::string GetClassName() override;

  // "reason:" and the most likely cause of a failed match: from `rc`, or from the packed metrics if
  // `rc` does not name one.
  std::string GetAuthFailureReason() const;

  float t_cov = 0;   // touch coverage of the sensor, percent
  float t_dist = 0;  // touch distance from the sensor's centre, millimetres
  uint32_t lptw = 0;
  uint32_t rc = 0;            // matcher result, 0 = no failure
  int32_t rawmean_delta = 0;  // raw-image mean difference, also used by DynamicExposure
  // Three quality values each, packed as A * 1000000 + B * 1000 + C. Only A of the third is used.
  int32_t packed_metric_1 = 0;
  int32_t packed_metric_2 = 0;
  int32_t packed_metric_3 = 0;
  int32_t extra_metric = 0;          // stored and restored only
  int32_t foreign_matter_count = 0;  // 1 or more: foreign matter on the sensor
  int32_t match_score = 0;
  std::array<int32_t, kStitchSlots> stitch_img_num_ = {};
  std::array<int32_t, kStitchSlots> stitch_img_area_ = {};
};

}  // namespace android::fp_utils
