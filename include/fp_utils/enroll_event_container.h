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

// The last 50 enrollment events, oldest first, rewritten to the file EnrollEventContainer of
// kBackupDir with every new one. All containers share that one file.
//
// Use: construct, Init() once before sharing the object, then AddEvent() per operation.
//
// Threading:  AddEvent() and Dump() lock. Init() runs before the object is shared; loading and
//             saving alone run while no AddEvent() does.
// Ownership:  events are shared with the caller.
// Blocking:   Init() reads the file, AddEvent() rewrites it.
// Errors:     logged; the events in memory stay as they are and in use.
class FP_UTILS_EXPORT EnrollEventContainer {
 public:
  static constexpr char kBackupDir[] = "/data/vendor/fingerprint/";

  EnrollEventContainer();
  virtual ~EnrollEventContainer();
  EnrollEventContainer(const EnrollEventContainer&) = delete;
  EnrollEventContainer& operator=(const EnrollEventContainer&) = delete;

  // Creates the directory, loads the file and from then on lets adds save. `event_type` is the
  // class of the records to load: "EnrollEventG7"; of any other type nothing can be loaded.
  virtual void Init(char const* event_type);

  // Adds an event, dropping the oldest if 50 are held. Null is ignored with an error in the log.
  virtual void AddEvent(std::shared_ptr<EnrollEvent> event);

  // A new record of the type given to Init(), or null if that is unknown.
  std::shared_ptr<EnrollEvent> CreateEvent();

  // What Init() and AddEvent() run, one at a time. Loading an initialized container would save
  // while it reads.
  void LoadEventsFromBackupFile();
  void SaveEventsToBackupFile() const;

  // Writes every event to `fd`, which stays open. The arguments are not used.
  void Dump(int fd, char const** args, unsigned int num_args);

  const std::string& GetBackupPath() const { return backup_path; }
  bool IsInitialized() const { return initialized; }
  // For the service's own use while no AddEvent() runs.
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

  // What the last save wrote, for the next one. Used by SaveEventsToBackupFile() alone.
  const std::unique_ptr<BackupContent> backup_content;
};

}  // namespace android::fp_utils
