// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/finger_sizes.h"

#include <utility>

#include "common/log.h"
#include "history/backup_file.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "FingerSizes";
constexpr BackupFile::LogNames kLogNames = {
    .tag = kTag,
    .create_operation = kTag,  // existing log lines have the tag here
    .save_operation = "SaveFingersToBackupFile",
    .load_operation = "LoadFingersFromBackupFile",
    .load_signature = "void android::fp_utils::FingerSizes::LoadFingersFromBackupFile()",
};

}  // namespace

FingerSizes::FingerSizes(std::string name, unsigned int max_fingers, bool backup_enabled)
    : name(std::move(name)),
      max_fingers(max_fingers),
      backup_enabled(backup_enabled),
      backup_content(std::make_unique<BackupContent>()) {
  if (backup_enabled) {
    backup_path =
        BackupFile::CreateDirectoryAndPath(kLogNames, kBackupDir, "FingerSizes." + this->name);
    LoadFingersFromBackupFile();
  }
}

FingerSizes::~FingerSizes() = default;

void FingerSizes::Reset() {
  backup_path.clear();
  fingers.clear();
  finger_count = 0;
  // op1_count and op2_count stay as they are: the service reads them across a reset.
}

void FingerSizes::AddFinger(std::shared_ptr<FingerSize> finger, bool save) {
  if (finger == nullptr) {
    FP_LOG_ERROR(kTag, "[%s] FingerSize is null, ignored", name.c_str());
    return;
  }
  const std::lock_guard lock(mutex);
  if (max_fingers != kUnbounded && finger_count >= max_fingers) {
    PopFinger();
  }
  if (max_fingers != 0) {
    PushFinger(std::move(finger));
  }
  if (save && backup_enabled && !backup_path.empty()) {
    SaveFingersToBackupFile();
  }
}

void FingerSizes::PushFinger(std::shared_ptr<FingerSize> finger) {
  op1_count += finger->op == 1 ? 1 : 0;
  op2_count += finger->op == 2 ? 1 : 0;
  fingers.push_back(std::move(finger));
  ++finger_count;
}

std::shared_ptr<FingerSize> FingerSizes::PopFinger() {
  if (fingers.empty()) {
    return nullptr;
  }
  std::shared_ptr<FingerSize> finger = std::move(fingers.front());
  fingers.pop_front();
  --finger_count;
  op1_count -= finger->op == 1 ? 1 : 0;
  op2_count -= finger->op == 2 ? 1 : 0;
  return finger;
}

void FingerSizes::LoadFingersFromBackupFile() {
  BackupFile(kLogNames, name.c_str(), backup_path).Load([this](std::string& record_text) {
    auto finger = std::make_shared<FingerSize>();
    if (finger->LoadFromBackupString(record_text)) {
      AddFinger(std::move(finger), false);
    }
  });
}

void FingerSizes::SaveFingersToBackupFile() const {
  BackupFile(kLogNames, name.c_str(), backup_path)
      .Save(backup_content->Update<FingerSize>(fingers));
}

}  // namespace android::fp_utils
