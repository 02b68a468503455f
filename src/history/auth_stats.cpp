// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/auth_stats.h"

#include <atomic>
#include <cstdio>
#include <utility>

#include "common/bounded_text.h"
#include "common/log.h"
#include "history/backup_file.h"
#include "history/dump.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "AuthStats";
constexpr BackupFile::LogNames kLogNames = {
    .tag = kTag,
    .create_operation = "Init",
    .save_operation = "SaveAttemptsToBackupFile",
    .load_operation = "LoadAttemptsFromBackupFile",
    .load_signature = "void android::fp_utils::AuthStats::LoadAttemptsFromBackupFile()",
};

// A single reject is not worth a write. From this many consecutive rejects on, each one is saved.
constexpr uint32_t kRejectsBeforeSave = 5;

// One count for all histories of the process, because they record the same finger. It is atomic,
// because each history holds only its own lock.
std::atomic<uint32_t> consecutive_rejects = 0;

}  // namespace

AuthStats::AuthStats(std::string name, uint32_t max_attempts, bool backup_enabled)
    : name(std::move(name)),
      max_attempts(max_attempts),
      backup_enabled(backup_enabled),
      backup_content(std::make_unique<BackupContent>()) {}

AuthStats::~AuthStats() = default;

void AuthStats::Init() {
  initialized = false;  // a save would overwrite the file that is being loaded
  if (backup_enabled) {
    backup_path = BackupFile::CreateDirectoryAndPath(kLogNames, kBackupDir, "AuthStats." + name);
    LoadAttemptsFromBackupFile();
  }
  initialized = true;
}

void AuthStats::Reset() {
  backup_path.clear();
  attempts.clear();
  total_attempts = 0;
  auth_attempts = 0;
  auth_rejects = 0;
  avg_iq = 0;
}

void AuthStats::AddAttempt(std::shared_ptr<AuthEvent> event) {
  if (event == nullptr) {
    FP_LOG_ERROR(kTag, "[%s] AuthEvent is null, ignored", name.c_str());
    return;
  }
  const std::lock_guard lock(mutex);
  if (max_attempts != kUnbounded && total_attempts >= max_attempts) {
    PopAttempt();
  }
  if (max_attempts != 0) {
    PushAttempt(event);
  }
  SaveIfDue(*event);
}

void AuthStats::SaveIfDue(const AuthEvent& event) {
  if (!initialized || !backup_enabled || backup_path.empty() ||
      event.acquired_info != AuthEvent::kAcquiredGood) {
    return;
  }
  if (event.auth_successful) {
    consecutive_rejects = 0;
  } else if (++consecutive_rejects < kRejectsBeforeSave) {
    return;
  }
  SaveAttemptsToBackupFile();
}

void AuthStats::PushAttempt(std::shared_ptr<AuthEvent> event) {
  if (event->acquired_info == AuthEvent::kAcquiredGood) {
    avg_iq = (avg_iq * static_cast<float>(auth_attempts) + static_cast<float>(event->iq)) /
             static_cast<float>(auth_attempts + 1);
    auth_rejects += event->auth_successful ? 0 : 1;
    ++auth_attempts;
  }
  attempts.push_back(std::move(event));
  ++total_attempts;
}

std::shared_ptr<AuthEvent> AuthStats::PopAttempt() {
  if (attempts.empty()) {
    return nullptr;
  }
  std::shared_ptr<AuthEvent> event = std::move(attempts.front());
  attempts.pop_front();
  if (event->acquired_info == AuthEvent::kAcquiredGood) {
    const auto count = static_cast<float>(auth_attempts);
    --auth_attempts;
    auth_rejects -= event->auth_successful ? 0 : 1;
    avg_iq = auth_attempts == 0 ? 0
                                : (avg_iq * count - static_cast<float>(event->iq)) /
                                      static_cast<float>(auth_attempts);
  }
  --total_attempts;
  return event;
}

std::shared_ptr<AuthEvent> AuthStats::CreateAttempt() { return std::make_shared<AuthEvent>(); }

void AuthStats::LoadAttemptsFromBackupFile() {
  BackupFile(kLogNames, name.c_str(), backup_path).Load([this](std::string& record_text) {
    std::shared_ptr<AuthEvent> event = CreateAttempt();
    if (event->LoadFromBackupString(record_text)) {
      AddAttempt(std::move(event));
    }
  });
}

void AuthStats::SaveAttemptsToBackupFile() const {
  BackupFile(kLogNames, name.c_str(), backup_path)
      .Save(backup_content->Update<AuthEventG7, AuthEvent>(attempts));
}

float AuthStats::GetFrr() const {
  return auth_attempts == 0
             ? 0
             : static_cast<float>(auth_rejects) / static_cast<float>(auth_attempts) * 100;
}

std::string AuthStats::ToDebugString() {
  BoundedText<1024> text;
  text.Append("total_attempts:%d, auth_attempts:%d, auth_rejects:%d, frr:%.2f%%, avg_iq:%.2f",
              total_attempts, auth_attempts, auth_rejects, GetFrr(), avg_iq);
  return text.ToString();
}

void AuthStats::Dump(int fd, const char** /*args*/, unsigned int /*num_args*/) {
  dprintf(fd, "Auth Stats:\n");
  dprintf(fd, "  %s\n", ToDebugString().c_str());
  if (total_attempts != 0) {
    dprintf(fd, "Auth Events:\n");
    DumpRecords(fd, attempts);
  }
}

}  // namespace android::fp_utils
