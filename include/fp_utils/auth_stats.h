// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "fp_utils/auth_event.h"
#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

class BackupContent;

// A bounded history of authentication attempts, oldest first, with running statistics over the
// records that it holds. Kept across restarts in the file AuthStats.<name> in kBackupDir.
//
// Use: construct, Init() once before sharing the object, then AddAttempt() per attempt.
//
// Threading:  AddAttempt() locks. All other operations take no lock: call them while no
//             AddAttempt() runs.
// Ownership:  records are shared with the caller.
// Blocking:   Init() reads the file; an AddAttempt() that saves rewrites it.
// Errors:     logged; the history in memory stays unchanged and usable.
// Units:      frr in percent.
class FP_UTILS_EXPORT AuthStats {
 public:
  static constexpr char kBackupDir[] = "/data/vendor/fingerprint/";
  static constexpr uint32_t kUnbounded = 0xFFFFFFFF;

  // `max_attempts` is the capacity, kUnbounded for none; 0 keeps nothing. Without `backup_enabled`
  // no file is ever read or written.
  AuthStats(std::string name, uint32_t max_attempts, bool backup_enabled);
  virtual ~AuthStats();
  AuthStats(const AuthStats&) = delete;
  AuthStats& operator=(const AuthStats&) = delete;

  // Creates the directory, loads the file through AddAttempt() and enables saving. Call it again
  // only after Reset().
  virtual void Init();

  // Clears all records and the path of the file: nothing is saved until Init() runs again.
  virtual void Reset();

  // Records one attempt, dropping the oldest if the history is full. Rewrites the file after a
  // success, and after every reject from the fifth consecutive one on. Rejects are counted over all
  // histories of the process that have a file. Do not change the record afterwards: its fields are
  // subtracted from the statistics when it is dropped.
  virtual void AddAttempt(std::shared_ptr<AuthEvent> event);

  // The statistics in one line.
  virtual std::string ToDebugString();

  // The steps of AddAttempt(): append a record, which must not be null, to history and statistics,
  // and remove the oldest from both. PopAttempt() returns null if the history is empty.
  virtual void PushAttempt(std::shared_ptr<AuthEvent> event);
  virtual std::shared_ptr<AuthEvent> PopAttempt();

  // A new record of the kind that this history keeps.
  [[nodiscard]] virtual std::shared_ptr<AuthEvent> CreateAttempt();

  // Called by Init() and AddAttempt(), never both at once. Do not load an initialized history: it
  // would overwrite the file that is being read.
  void LoadAttemptsFromBackupFile();
  void SaveAttemptsToBackupFile() const;

  // Writes the statistics and every record to `fd`, which stays open. The arguments are not used.
  void Dump(int fd, const char** args, unsigned int num_args);

  const std::string& GetName() const { return name; }
  const std::string& GetBackupPath() const { return backup_path; }
  bool IsInitialized() const { return initialized; }
  const std::deque<std::shared_ptr<AuthEvent>>& GetAttempts() const { return attempts; }
  uint32_t GetTotalAttempts() const { return total_attempts; }
  uint32_t GetAuthAttempts() const { return auth_attempts; }
  uint32_t GetAuthRejects() const { return auth_rejects; }
  float GetAvgIq() const { return avg_iq; }

  // The share of rejects among the attempts with a good image, in percent; 0 if there were none.
  float GetFrr() const;

 private:
  void SaveIfDue(const AuthEvent& event) FP_REQUIRES(mutex);

  // Constant after construction.
  const std::string name;
  const uint32_t max_attempts;
  const bool backup_enabled;

  // Set by Init() and Reset(), which run while the object is not shared.
  std::string backup_path;  // empty: no file

  // Written under `mutex` by AddAttempt(); the other operations rely on the caller.
  std::deque<std::shared_ptr<AuthEvent>> attempts;
  std::mutex mutex;
  uint32_t total_attempts = 0;
  uint32_t auth_attempts = 0;  // records whose image was good
  uint32_t auth_rejects = 0;   // of those, the failed ones
  float avg_iq = 0;
  bool initialized = false;

  // The content of the last save. Used only by SaveAttemptsToBackupFile().
  const std::unique_ptr<BackupContent> backup_content;
};

// The history of AuthEventG7 records. It rejects other kinds and keeps the average raw mean delta.
// File name, threading and errors are those of AuthStats.
class FP_UTILS_EXPORT AuthStatsG7 : public AuthStats {
 public:
  using AuthStats::AuthStats;
  ~AuthStatsG7() override;

  void Reset() override;
  void AddAttempt(std::shared_ptr<AuthEvent> event) override;
  std::string ToDebugString() override;
  void PushAttempt(std::shared_ptr<AuthEvent> event) override;
  std::shared_ptr<AuthEvent> PopAttempt() override;
  [[nodiscard]] std::shared_ptr<AuthEvent> CreateAttempt() override;

  float GetAvgRawmeanDelta() const { return avg_rawmean_delta; }

 private:
  float avg_rawmean_delta = 0;
};

}  // namespace android::fp_utils
