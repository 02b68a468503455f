// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace fp_test {

// A history with a backup file as the damage suite sees it, so that every kind goes through the
// same damage.
class HistoryUnderTest {
 public:
  virtual ~HistoryUnderTest() = default;

  // Adds the `number`-th of a series of records that are all different, and saves.
  virtual void AddAndSave(int number) = 0;
  // The texts of the records held, oldest first.
  virtual std::vector<std::string> RecordTexts() const = 0;
};

struct HistoryKind {
  const char* name;
  const char* path;
  int full_size;  // records in a file of usual size
  // A history as a service constructs it at start: its file is loaded.
  std::function<std::unique_ptr<HistoryUnderTest>()> start;
};

inline std::ostream& operator<<(std::ostream& out, const HistoryKind& kind) {
  return out << kind.name;
}

std::vector<HistoryKind> AllHistoryKinds();

// A record text as it stands in a backup file; the header may claim another length.
std::string Frame(const std::string& text, uint64_t length);
inline std::string Frame(const std::string& text) { return Frame(text, text.size()); }

}  // namespace fp_test
