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

// A record as a flat row, with the field names of docs/backup-file.md. A field that the record does
// not have, such as the packed metrics in a dump line, is std::monostate.
using FieldValue = std::variant<std::monostate, int64_t, double, std::string>;
using Row = std::vector<std::pair<std::string, FieldValue>>;

Row RowOf(const Record& record, const Thresholds& thresholds);

// "attempt", "enrollment", "finger_size", "error".
const char* NameOf(RecordKind kind);

// The names of the fields of all kinds, in the order of the columns of a table.
const std::vector<std::string>& FieldNames();

// Selects the records that `list` shows: those that meet all conditions that are set.
struct Filter {
  // Parse() takes "t_cov<60". On failure it returns nothing, and `why` says what is wrong.
  struct Condition {
    static std::optional<Condition> Parse(const std::string& text, std::string* why);

    std::string field;
    std::string op;
    double value = 0;
  };

  bool Matches(const Record& record, const Thresholds& thresholds) const;

  bool failed = false;
  std::string reason;  // or the name of an acquisition error; case is ignored
  std::optional<int> finger;
  std::vector<Condition> where;
};

}  // namespace fp_inspect
