// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace fp_test {

// A history with a backup file as the common tests see it, so that every kind goes through the
// same.
class HistoryUnderTest {
 public:
  virtual ~HistoryUnderTest() = default;

  // Adds the `number`-th of a series of records that are all different, and saves.
  virtual void AddAndSave(int number) = 0;
  // Adds a record that a history of the same kind holds as well, and saves.
  virtual void AddAndSaveOneOf(HistoryUnderTest& other, size_t index) = 0;
  virtual void AddNull() = 0;
  // Changes one of the floats of a record that is held.
  virtual void SetFloat(size_t index, float value) = 0;
  // The texts of the records held, oldest first.
  virtual std::vector<std::string> RecordTexts() const = 0;
};

struct HistoryKind {
  const char* name;
  const char* path;
  int full_size;  // capacity, and records in a file of usual size
  // A history as a service constructs it at start: its file is loaded.
  std::function<std::unique_ptr<HistoryUnderTest>()> start;

  // How it logs.
  const char *create_operation, *load_operation, *save_operation;
  const char *damage_prefix, *null_message;
};

inline std::ostream& operator<<(std::ostream& out, const HistoryKind& kind) {
  return out << kind.name;
}

std::vector<HistoryKind> AllHistoryKinds();

// A record text as it stands in a backup file; the header may claim another length.
std::string Frame(const std::string& text, unsigned long long length);
inline std::string Frame(const std::string& text) { return Frame(text, text.size()); }

// The frames of all texts, as a file holds them.
std::string FramesOf(const std::vector<std::string>& texts);

}  // namespace fp_test
