// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "model/causes.h"

namespace fp_inspect {

// A record as a flat row, with the names of docs/backup-file.md. What a record does not have, as
// the packed metrics of a dump line, is nothing.
using FieldValue = std::variant<std::monostate, int64_t, double, std::string>;
using Row = std::vector<std::pair<std::string, FieldValue>>;

Row RowOf(const Record& record, const Thresholds& thresholds);

// "attempt", "enrollment", "finger_size", "error".
const char* NameOf(RecordKind kind);

// The names of all kinds' fields in the order of a table.
const std::vector<std::string>& FieldNames();

// What `list` shows: everything that is set must apply.
struct Filter {
  // "t_cov<60"; on failure empty, and `why` says what is wrong.
  struct Condition {
    static std::optional<Condition> Parse(const std::string& text, std::string* why);

    std::string field;
    std::string op;
    double value = 0;
  };

  bool Admits(const Record& record, const Thresholds& thresholds) const;

  bool failed = false;
  std::string reason;  // or the name of an acquisition error; in any case of letters
  std::optional<int> finger;
  std::vector<Condition> where;
};

}  // namespace fp_inspect
