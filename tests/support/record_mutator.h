// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "fp_utils/auth_event.h"

namespace fp_test {

// Random records with the values that break formatting, and texts from valid to nonsense.
class RecordMutator {
 public:
  explicit RecordMutator(uint64_t seed) : random_(seed) {}

  android::fp_utils::AuthEventG7 Event();

  // A record text: as written, or with up to three characters changed, dropped or put in, or in one
  // of the odd spellings that scanf takes.
  std::string Text();

  // Characters at random places of `text` changed, dropped or doubled.
  std::string Damage(std::string text);

 private:
  size_t Below(size_t limit) { return random_() % limit; }
  int32_t Integer();
  float Float();

  std::mt19937_64 random_;
};

}  // namespace fp_test
