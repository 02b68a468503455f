// SPDX-License-Identifier: Apache-2.0
//
// CSV: the records of `list` with the columns of all kinds, or the rows of `compare`.
#include <fmt/format.h>

#include <algorithm>

#include "output/output.h"

namespace fp_inspect {
namespace {

std::string Quoted(const std::string& text) {
  if (text.find_first_of(",\"\n\r") == text.npos) {
    return text;
  }
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"') {
      quoted += c;
    }
  }
  return quoted + "\"";
}

std::string Cell(const FieldValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) {
    return Quoted(*text);
  }
  if (const auto* whole = std::get_if<int64_t>(&value)) {
    return std::to_string(*whole);
  }
  const auto* real = std::get_if<double>(&value);
  return real != nullptr && *real == *real ? fmt::format("{}", *real) : "";
}

class CsvOutput : public Output {
 public:
  void BeginList() override {
    fmt::print("type,timestamp,timestamp_text");
    for (const std::string& name : FieldNames()) {
      fmt::print(",{}", name);
    }
    fmt::print(",salvaged,source,offset\n");
  }

  void PutRecord(const Record& record, const Device& device, const Thresholds& thresholds,
                 const Zone& zone) override {
    const bool timed = record.GetKind() != RecordKind::kFingerSize;
    fmt::print("{},{},{}", NameOf(record.GetKind()), timed ? std::to_string(record.time) : "",
               timed ? zone.Text(record.time) : "");
    const Row row = RowOf(record, thresholds);
    for (const std::string& name : FieldNames()) {
      const auto field = std::find_if(row.begin(), row.end(),
                                      [&](const auto& entry) { return entry.first == name; });
      fmt::print(",{}", field != row.end() ? Cell(field->second) : "");
    }
    fmt::print(",{},{},{}\n", record.salvaged ? 1 : 0, Quoted(device.sources[record.source]),
               record.offset);
  }

  void PutComparison(const Comparison& comparison, const Zone& /*zone*/) override {
    fmt::print("id,title,a_n,a_sum,b_n,b_sum,low,high,p\n");
    for (const CompareRow& row : comparison.rows) {
      const bool has_interval = row.HasInterval();
      fmt::print("{},{},{},{},{},{},{},{},{}\n", Quoted(row.id), Quoted(row.title), row.a.n,
                 row.a.sum, row.b.n, row.b.sum, has_interval ? Cell(row.difference.low) : "",
                 has_interval ? Cell(row.difference.high) : "", row.p ? Cell(*row.p) : "");
    }
  }
};

}  // namespace

std::unique_ptr<Output> MakeCsvOutput() { return std::make_unique<CsvOutput>(); }

}  // namespace fp_inspect
