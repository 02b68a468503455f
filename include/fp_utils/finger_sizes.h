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

// One sample of the size of a contact, shared with the history.
//
// Threading:  not locked.
// Errors:     parsing logs a failure and returns false.
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

  // Parses a record text, which it does not change.
  virtual bool LoadFromBackupString(std::string& text);

  // The size along an axis; any axis but kMajor is the minor one.
  float GetValue(Axis axis) const { return axis == kMajor ? major : minor; }

  int32_t op = 0;  // the service's operation; the history counts those of 1 and of 2
  float major = 0;
  float minor = 0;
};

// A bounded history of finger sizes, oldest first, with percentiles. Kept across restarts in the
// file FingerSizes.<name> in kBackupDir.
//
// Threading:  AddFinger() locks. All other operations take no lock: call them while no AddFinger()
//             runs.
// Ownership:  samples are shared with the caller.
// Blocking:   the constructor reads the file; an AddFinger() that saves rewrites it.
// Errors:     logged; the samples in memory stay unchanged and usable.
class FP_UTILS_EXPORT FingerSizes {
 public:
  static constexpr char kBackupDir[] = "/data/vendor/fingerprint/";
  static constexpr uint32_t kUnbounded = 0xFFFFFFFF;

  // Loads the file. `max_fingers` is the capacity, kUnbounded for none; 0 keeps nothing. Without
  // `backup_enabled` no file is ever read or written.
  FingerSizes(std::string name, unsigned int max_fingers, bool backup_enabled);
  virtual ~FingerSizes();
  FingerSizes(const FingerSizes&) = delete;
  FingerSizes& operator=(const FingerSizes&) = delete;

  // Clears all samples and the path of the file: nothing is ever saved again. The counts by
  // operation are kept.
  virtual void Reset();

  // Records one sample, dropping the oldest if the history is full; rewrites the file if `save`.
  // Logs and ignores null.
  virtual void AddFinger(std::shared_ptr<FingerSize> finger, bool save);

  // The steps of AddFinger(): append a sample, which must not be null, and remove the oldest.
  // PopFinger() returns null if the history is empty.
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

  // The content of the last save. Used only by SaveFingersToBackupFile().
  const std::unique_ptr<BackupContent> backup_content;
};

}  // namespace android::fp_utils
