// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

class BackupContent;

// One sample of a contact's size, held by shared ownership in the history.
//
// Threading:  not locked.
// Errors:     parsing logs and returns false.
// Units:      sizes in panel units; saved with one decimal.
class FP_UTILS_EXPORT FingerSize {
 public:
  enum Axis : int32_t { kMajor = 0, kMinor = 1 };

  FingerSize();
  FingerSize(int32_t op, float major, float minor);
  virtual ~FingerSize();

  virtual std::string ToString() const;

  // The record text of the backup file, one line without newline.
  virtual std::string ToBackupString() const;

  // Takes a record text, which stays as it is, into this sample.
  virtual bool LoadFromBackupString(std::string& text);

  // The size along an axis; any axis but kMajor is the minor one.
  float GetValue(Axis axis) const { return axis == kMajor ? major : minor; }

  int32_t op = 0;  // the service's operation; the history counts those of 1 and of 2
  float major = 0;
  float minor = 0;
};

// A bounded history of finger sizes, oldest first, with percentiles. Kept across restarts in the
// file FingerSizes.<name> of kBackupDir.
//
// Threading:  AddFinger() locks. Everything else takes no lock: call it while no AddFinger() runs.
// Ownership:  samples are shared with the caller.
// Blocking:   the constructor reads the file, a saving AddFinger() rewrites it.
// Errors:     logged; the samples in memory stay as they are and in use.
class FP_UTILS_EXPORT FingerSizes {
 public:
  static constexpr char kBackupDir[] = "/data/vendor/fingerprint/";
  static constexpr uint32_t kUnbounded = 0xFFFFFFFF;

  // `max_fingers` is the capacity, kUnbounded for none; 0 keeps nothing. Without `backup_enabled`
  // no file is ever read or written. Loads the file at once.
  FingerSizes(std::string name, unsigned int max_fingers, bool backup_enabled);
  virtual ~FingerSizes();
  FingerSizes(const FingerSizes&) = delete;
  FingerSizes& operator=(const FingerSizes&) = delete;

  // Forgets all samples and the path of the file: nothing is ever saved again. The counts by
  // operation stay.
  virtual void Reset();

  // Records one sample, dropping the oldest if the history is full; rewrites the file if `save`.
  // Null is ignored with an error in the log.
  virtual void AddFinger(std::shared_ptr<FingerSize> finger, bool save);

  // The two halves of AddFinger(): append a sample, not null, and take out the oldest; null from an
  // empty history.
  virtual void PushFinger(std::shared_ptr<FingerSize> finger);
  virtual std::shared_ptr<FingerSize> PopFinger();

  void LoadFingersFromBackupFile();
  void SaveFingersToBackupFile() const;

  // The percentile (0 to 100) of the sizes along `axis`, interpolated linearly between the two
  // nearest samples; 0 without samples. Linear in the number of samples.
  float GetPercentileValue(FingerSize::Axis axis, float percentile);

  const std::string& GetName() const { return name; }
  const std::string& GetBackupPath() const { return backup_path; }
  const std::deque<std::shared_ptr<FingerSize>>& GetFingers() const { return fingers; }
  uint32_t GetFingerCount() const { return finger_count; }
  uint32_t GetOp1Count() const { return op1_count; }
  uint32_t GetOp2Count() const { return op2_count; }

 private:
  // Constant after construction.
  const std::string name;
  const uint32_t max_fingers;
  const bool backup_enabled;

  std::mutex mutex;

  // Set by the constructor and Reset(), which run while the object is not shared.
  std::string backup_path;  // empty: no file

  // Written under `mutex` by AddFinger(); the other operations rely on the caller.
  std::deque<std::shared_ptr<FingerSize>> fingers;
  uint32_t finger_count = 0;
  uint32_t op1_count = 0;
  uint32_t op2_count = 0;

  // What the last save wrote, for the next one. Used by SaveFingersToBackupFile() alone.
  const std::unique_ptr<BackupContent> backup_content;
};

}  // namespace android::fp_utils
