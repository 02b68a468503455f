// SPDX-License-Identifier: Apache-2.0
#include "reading/record.h"

#include <utility>

namespace fp_inspect {
namespace {

constexpr size_t kDamageKept = 100;

template <typename Event>
std::string WithoutTime(const Event& event) {
  return event.ToDebugString().substr(event.GetLocalTime().size() + 1);
}

}  // namespace

std::string DumpText(const Record& record) {
  if (const AuthEventG7* attempt = record.Attempt()) {
    return record.g7
               ? WithoutTime(*attempt)
               : attempt->AuthEvent::ToDebugString().substr(attempt->GetLocalTime().size() + 1);
  }
  if (const EnrollEventG7* enrollment = record.Enrollment()) {
    return record.g7 ? WithoutTime(*enrollment)
                     : enrollment->EnrollEvent::ToDebugString().substr(
                           enrollment->GetLocalTime().size() + 1);
  }
  if (const auto* size = std::get_if<FingerSize>(&record.value)) {
    return size->ToString();
  }
  return std::get<std::string>(record.value);
}

void Contents::AddDamage(uint64_t offset, std::string check, std::string text) {
  ++damage_count;
  if (damage.size() < kDamageKept) {
    damage.push_back({offset, std::move(check), std::move(text)});
  }
}

}  // namespace fp_inspect
