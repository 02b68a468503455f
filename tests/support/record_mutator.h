// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"

namespace fp_test {

// Random records with the values that break formatting, and texts from valid to nonsense.
class RecordMutator {
 public:
  explicit RecordMutator(uint64_t seed) : random_(seed) {}

  void Fill(android::fp_utils::AuthEventG7& event);
  void Fill(android::fp_utils::EnrollEventG7& event);

  template <typename Record>
  Record Make() {
    Record record;
    Fill(record);
    return record;
  }

  // A record text: as written, or with up to three characters changed, dropped or put in, or with a
  // field in one of the odd spellings that scanf takes, or two texts run together.
  template <typename Record>
  std::string Text() {
    return Mutate(Make<Record>().ToBackupString(), Make<Record>().ToBackupString());
  }

  // Characters at random places of `text` changed, dropped or put in.
  std::string Damage(std::string text);

 private:
  size_t Below(size_t limit) { return random_() % limit; }
  int32_t Integer();
  float Float();
  std::string Mutate(std::string text, const std::string& other);

  std::mt19937_64 random_;
};

}  // namespace fp_test
