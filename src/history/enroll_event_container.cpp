// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/enroll_event_container.h"

#include <cstdint>
#include <cstdio>
#include <utility>

#include "common/log.h"
#include "history/backup_file.h"
#include "history/dump.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "EnrollEventContainer";
constexpr BackupFile::LogNames kLogNames = {
    .tag = kTag,
    .create_operation = "Init",
    .save_operation = "SaveEventsToBackupFile",
    .load_operation = "LoadEventsFromBackupFile",
    .load_signature = "void android::fp_utils::EnrollEventContainer::LoadEventsFromBackupFile()",
};

constexpr uint32_t kMaxEvents = 50;
constexpr char kEventTypeG7[] = "EnrollEventG7";

// There is one file for all containers, so neither its path nor its log lines name an instance.
constexpr const char* kNoInstance = nullptr;

}  // namespace

EnrollEventContainer::EnrollEventContainer() : backup_content(std::make_unique<BackupContent>()) {}

EnrollEventContainer::~EnrollEventContainer() = default;

void EnrollEventContainer::Init(const char* event_type) {
  initialized = false;  // a save would overwrite the file that is being loaded
  this->event_type = event_type != nullptr ? event_type : "";
  backup_path = BackupFile::CreateDirectoryAndPath(kLogNames, kBackupDir, "EnrollEventContainer");
  LoadEventsFromBackupFile();
  initialized = true;
}

std::shared_ptr<EnrollEvent> EnrollEventContainer::CreateEvent() {
  if (event_type == kEventTypeG7) {
    return std::make_shared<EnrollEventG7>();
  }
  FP_LOG_ERROR(
      kTag, "[%s] Unknown event_type:%s",
      "std::shared_ptr<EnrollEvent> android::fp_utils::EnrollEventContainer::CreateEvent()",
      event_type.c_str());
  return nullptr;
}

void EnrollEventContainer::AddEvent(std::shared_ptr<EnrollEvent> event) {
  if (event == nullptr) {
    FP_LOG_ERROR(kTag, "[%s] EnrollEvent is null, ignored", "AddEvent");
    return;
  }
  const std::lock_guard lock(mutex);
  if (static_cast<uint32_t>(events.size()) >= kMaxEvents) {
    events.pop_front();
  }
  events.push_back(std::move(event));
  if (initialized && !backup_path.empty()) {
    SaveEventsToBackupFile();
  }
}

// Called by AddEvent() with the lock held.
void EnrollEventContainer::SaveEventsToBackupFile() const FP_NO_THREAD_SAFETY_ANALYSIS {
  BackupFile(kLogNames, kNoInstance, backup_path)
      .Save(backup_content->Update<EnrollEventG7, EnrollEvent>(events));
}

void EnrollEventContainer::LoadEventsFromBackupFile() {
  BackupFile(kLogNames, kNoInstance, backup_path).Load([this](std::string& record_text) {
    std::shared_ptr<EnrollEvent> event = CreateEvent();
    if (event == nullptr) {
      FP_LOG_ERROR(kTag, "[%s] Failed to create event!", kLogNames.load_signature);
    } else if (event->LoadFromBackupString(record_text)) {
      AddEvent(std::move(event));
    }
  });
}

void EnrollEventContainer::Dump(int fd, const char** /*args*/, unsigned int /*num_args*/) {
  const std::lock_guard lock(mutex);
  dprintf(fd, "Enroll Events:\n");
  DumpRecords(fd, events);
}

}  // namespace android::fp_utils
