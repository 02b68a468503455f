// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/critical_errors.h"

#include <cstdint>
#include <cstdio>
#include <utility>

#include "common/bounded_text.h"
#include "common/local_time.h"
#include "common/log.h"
#include "history/dump.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "CriticalErrors";
constexpr uint32_t kMaxEvents = 100;

}  // namespace

ErrorEvent::ErrorEvent(std::string message)
    : message(std::move(message)), timestamp(time(nullptr)) {}

ErrorEvent::~ErrorEvent() = default;

std::string ErrorEvent::ToDebugString() const {
  BoundedText<128> text;
  text.Append("%s %s", GetLocalTime().c_str(), message.c_str());
  return text.ToString();
}

std::string ErrorEvent::GetLocalTime() const { return LocalTimeText(timestamp); }

CriticalErrors& CriticalErrors::GetInstance() {
  static auto* const instance = new CriticalErrors;
  return *instance;
}

CriticalErrors::CriticalErrors() = default;

CriticalErrors::~CriticalErrors() = default;

void CriticalErrors::AddErrorEvent(std::shared_ptr<ErrorEvent> event) {
  if (event == nullptr) {
    FP_LOG_ERROR(kTag, "[%s] ErrorEvent is null, ignored", "AddErrorEvent");
    return;
  }
  const std::lock_guard lock(mutex);
  if (static_cast<uint32_t>(events.size()) >= kMaxEvents) {
    events.pop_front();
  }
  events.push_back(std::move(event));
}

void CriticalErrors::Dump(int fd, const char** /*args*/, unsigned int /*num_args*/) {
  const std::lock_guard lock(mutex);
  dprintf(fd, "Critical Errors:\n");
  DumpRecords(fd, events);
}

}  // namespace android::fp_utils
