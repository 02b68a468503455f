// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "fp_utils/enroll_event.h"
#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

class BackupContent;

// The last 50 enrollment events, oldest first. Every new event rewrites the file
// EnrollEventContainer in kBackupDir, which all containers share.
//
// Use: construct, Init() once before sharing the object, then AddEvent() per operation.
//
// Threading:  AddEvent() and Dump() lock. Call Init() before the object is shared, and load or save
//             only while no AddEvent() runs.
// Ownership:  events are shared with the caller.
// Blocking:   Init() reads the file, AddEvent() rewrites it.
// Errors:     logged; the events in memory stay unchanged and usable.
class FP_UTILS_EXPORT EnrollEventContainer {
 public:
  static constexpr char kBackupDir[] = "/data/vendor/fingerprint/";

  EnrollEventContainer();
  virtual ~EnrollEventContainer();
  EnrollEventContainer(const EnrollEventContainer&) = delete;
  EnrollEventContainer& operator=(const EnrollEventContainer&) = delete;

  // Creates the directory, loads the file and enables saving. `event_type` is the class of the
  // records to load. It must be "EnrollEventG7"; with any other type nothing is loaded.
  virtual void Init(const char* event_type);

  // Adds an event, dropping the oldest if 50 are held. Logs and ignores null.
  virtual void AddEvent(std::shared_ptr<EnrollEvent> event);

  // A new record of the type given to Init(), or null if that is unknown.
  [[nodiscard]] std::shared_ptr<EnrollEvent> CreateEvent();

  // Called by Init() and AddEvent(), never both at once. Do not load an initialized container: it
  // would overwrite the file that is being read.
  void LoadEventsFromBackupFile();
  void SaveEventsToBackupFile() const;

  // Writes every event to `fd`, which stays open. The arguments are not used.
  void Dump(int fd, const char** args, unsigned int num_args);

  const std::string& GetBackupPath() const { return backup_path; }
  bool IsInitialized() const { return initialized; }
  // Valid only while no AddEvent() runs.
  const std::deque<std::shared_ptr<EnrollEvent>>& GetEvents() const FP_NO_THREAD_SAFETY_ANALYSIS {
    return events;
  }

 private:
  // Set by Init().
  std::string event_type;
  std::string backup_path;  // empty: no file yet

  std::deque<std::shared_ptr<EnrollEvent>> events FP_GUARDED_BY(mutex);
  std::mutex mutex;
  bool initialized = false;

  // The content of the last save. Used only by SaveEventsToBackupFile().
  const std::unique_ptr<BackupContent> backup_content;
};

}  // namespace android::fp_utils
