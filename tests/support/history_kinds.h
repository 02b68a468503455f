// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "fp_utils/auth_event.h"

namespace fp_test {

// An attempt with a good image.
std::shared_ptr<android::fp_utils::AuthEventG7> Attempt(bool successful, int32_t iq = 0,
                                                        int32_t rawmean_delta = 0);

// The interface through which common tests use every kind of history that has a backup file.
class HistoryUnderTest {
 public:
  virtual ~HistoryUnderTest() = default;

  // Adds record `number` of a series in which all records differ, and saves.
  virtual void AddAndSave(int number) = 0;
  // Adds the record at `index` of `other`, a history of the same kind, so that both hold it, and
  // saves.
  virtual void ShareRecordOf(HistoryUnderTest& other, size_t index) = 0;
  virtual void AddNull() = 0;
  // Changes a float field of the record at `index`.
  virtual void SetFloat(size_t index, float value) = 0;
  // The texts of the records held, oldest first.
  virtual std::vector<std::string> RecordTexts() const = 0;
};

struct HistoryKind {
  const char* name;
  const char* path;
  int capacity;  // in records
  // Constructs the history and loads its file, as a service does when it starts.
  std::function<std::unique_ptr<HistoryUnderTest>()> start;

  // Parts of the log lines that the history writes.
  const char *create_operation, *load_operation, *save_operation;
  const char *damage_prefix, *null_message;
};

inline std::ostream& operator<<(std::ostream& out, const HistoryKind& kind) {
  return out << kind.name;
}

std::vector<HistoryKind> AllHistoryKinds();

// The frame of a record in a backup file. Its header states `length`, which a test may set to a
// wrong value.
std::string Frame(const std::string& text, unsigned long long length);
inline std::string Frame(const std::string& text) { return Frame(text, text.size()); }

// The content of a backup file with these records.
std::string FramesOf(const std::vector<std::string>& texts);

}  // namespace fp_test
