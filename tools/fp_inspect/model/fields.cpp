// SPDX-License-Identifier: Apache-2.0
#include "model/fields.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace fp_inspect {
namespace {

constexpr int8_t kAcquiredPartial = 2;

// Converts by way of the shortest decimal text, so that a stored 2.07 does not become 2.069999933.
double Shortest(float value) {
  return std::isfinite(value) ? std::stod(fmt::format("{}", value)) : value;
}

FieldValue Real(bool is_present, float value) {
  return is_present ? FieldValue(Shortest(value)) : FieldValue();
}

FieldValue Whole(bool is_present, int64_t value) {
  return is_present ? FieldValue(value) : FieldValue();
}

FieldValue Text(std::string text) {
  return text.empty() ? FieldValue() : FieldValue(std::move(text));
}

void AddSlots(Row* row, const char* name, bool is_present, const auto& slots) {
  for (size_t i = 0; i < slots.size(); ++i) {
    row->emplace_back(fmt::format("{}{}", name, i), Whole(is_present, slots[i]));
  }
}

Row RowOfAttempt(const Record& record, const AuthEventG7& a, const Thresholds& thresholds) {
  const bool is_stored = record.whole && record.g7;
  const bool has_image = a.acquired_info == AuthEventG7::kAcquiredGood;
  const bool has_outcome = record.whole || has_image;
  const bool has_matcher_fields = is_stored || (record.g7 && has_image);
  const bool has_position =
      has_matcher_fields || (record.g7 && a.acquired_info == kAcquiredPartial);
  const bool has_stitching = is_stored || (has_matcher_fields && a.rc == 0);
  Row row = {{"acquired_info", a.acquired_info},
             {"auth_successful", Whole(has_outcome, a.auth_successful ? 1 : 0)},
             {"fid", Whole(has_outcome, a.fid)},
             {"latency", Whole(has_outcome, a.latency)},
             {"iq", Whole(has_outcome, a.iq)},
             {"t_cov", Real(has_position, a.t_cov)},
             {"t_dist", Real(has_position, a.t_dist)},
             {"lptw", Whole(record.g7, a.lptw)},
             {"rc", Whole(record.g7, a.rc)},
             {"rawmean_delta", Whole(has_matcher_fields, a.rawmean_delta)},
             {"packed_metric_1", Whole(is_stored, a.packed_metric_1)},
             {"packed_metric_2", Whole(is_stored, a.packed_metric_2)},
             {"packed_metric_3", Whole(is_stored, a.packed_metric_3)},
             {"extra_metric", Whole(is_stored, a.extra_metric)},
             {"foreign_matter_count", Whole(is_stored, a.foreign_matter_count)},
             {"match_score", Whole(has_matcher_fields, a.match_score)}};
  AddSlots(&row, "stitch_img_num_", has_stitching, a.stitch_img_num_);
  AddSlots(&row, "stitch_img_area_", has_stitching, a.stitch_img_area_);
  row.emplace_back("acquisition_error", Text(AcquisitionError(record)));
  row.emplace_back("reason", Text(MatcherReason(record)));
  row.emplace_back("cause", Text(IsFailed(a) ? CauseOf(record, thresholds).id : ""));
  return row;
}

Row RowOfEnrollment(const Record& record, const EnrollEventG7& e) {
  const bool added = record.whole || e.op == EnrollEventG7::kOpAdd;
  const bool measured = record.g7 && (record.whole || e.op != EnrollEventG7::kOpDelete);
  const bool failed = record.g7 && e.op == EnrollEventG7::kOpAdd && !e.enroll_successful;
  constexpr size_t kPrefix = sizeof("reason:") - 1;
  Row row = {{"op", int64_t{static_cast<int32_t>(e.op)}},
             {"enroll_successful", Whole(added, e.enroll_successful ? 1 : 0)},
             {"gid", e.gid},
             {"fid", e.fid},
             {"capture_count", Whole(added, e.capture_count)},
             {"iq_avg", Real(added, e.iq_avg)},
             {"enrolled_fingers_count", Whole(added, e.enrolled_fingers_count)},
             {"rc", Whole(record.g7, e.rc)},
             {"rawmean_delta", Real(measured, e.rawmean_delta)}};
  AddSlots(&row, "stitch_img_num_", measured, e.stitch_img_num_);
  AddSlots(&row, "stitch_img_area_", measured, e.stitch_img_area_);
  row.emplace_back("reason", Text(failed ? e.GetEnrollFailureReason().substr(kPrefix) : ""));
  return row;
}

std::optional<double> NumericValue(const Row& row, const std::string& field) {
  for (const auto& [name, value] : row) {
    if (name == field) {
      if (const auto* whole = std::get_if<int64_t>(&value)) {
        return static_cast<double>(*whole);
      }
      const auto* real = std::get_if<double>(&value);
      return real != nullptr ? std::optional(*real) : std::nullopt;
    }
  }
  return std::nullopt;
}

bool HasReason(const Row& row, const std::string& reason) {
  return std::any_of(row.begin(), row.end(), [&](const auto& field) {
    const auto* text = std::get_if<std::string>(&field.second);
    return text != nullptr && (field.first == "reason" || field.first == "acquisition_error") &&
           strcasecmp(text->c_str(), reason.c_str()) == 0;
  });
}

bool Holds(double value, const std::string& op, double limit) {
  const bool has_equal = op.back() == '=' && op != "!=";
  if (op.front() == '<') {
    return value < limit || (has_equal && value == limit);
  }
  if (op.front() == '>') {
    return value > limit || (has_equal && value == limit);
  }
  return (value == limit) == (op != "!=");
}

bool IsTextField(const std::string& name) {
  return name == "acquisition_error" || name == "reason" || name == "cause" || name == "message";
}

}  // namespace

const char* NameOf(RecordKind kind) {
  constexpr const char* kNames[kRecordKinds] = {"attempt", "enrollment", "finger_size", "error"};
  return kNames[static_cast<size_t>(kind)];
}

Row RowOf(const Record& record, const Thresholds& thresholds) {
  if (const AuthEventG7* attempt = record.Attempt()) {
    return RowOfAttempt(record, *attempt, thresholds);
  }
  if (const EnrollEventG7* enrollment = record.Enrollment()) {
    return RowOfEnrollment(record, *enrollment);
  }
  if (const auto* size = std::get_if<FingerSize>(&record.value)) {
    return {{"op", int64_t{size->op}},
            {"major", Real(true, size->major)},
            {"minor", Real(true, size->minor)}};
  }
  return {{"message", std::get<std::string>(record.value)}};
}

const std::vector<std::string>& FieldNames() {
  static const auto names = [] {
    std::vector<std::string> names;
    Record record;
    for (const auto& value :
         {decltype(record.value)(AuthEventG7()), decltype(record.value)(EnrollEventG7()),
          decltype(record.value)(FingerSize()), decltype(record.value)(std::string())}) {
      record.value = value;
      for (const auto& field : RowOf(record, {})) {
        if (std::find(names.begin(), names.end(), field.first) == names.end()) {
          names.push_back(field.first);
        }
      }
    }
    return names;
  }();
  return names;
}

std::optional<Filter::Condition> Filter::Condition::Parse(const std::string& text,
                                                          std::string* why) {
  const size_t op = text.find_first_of("<>=!");
  const size_t number = op == text.npos ? op : text.find_first_not_of("<>=!", op);
  if (number == text.npos) {
    *why = "a condition has the form FIELD OPERATOR NUMBER, e.g. t_cov<60";
    return std::nullopt;
  }
  Condition condition = {.field = text.substr(0, op), .op = text.substr(op, number - op)};
  const auto& names = FieldNames();
  const bool known = std::find(names.begin(), names.end(), condition.field) != names.end();
  if (!known || IsTextField(condition.field)) {
    *why = fmt::format("\"{}\" is not a numeric field", condition.field);
    return std::nullopt;
  }
  constexpr std::string_view kOperators[] = {"<", "<=", ">", ">=", "=", "==", "!="};
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data() + number, end, condition.value);
  if (std::find(std::begin(kOperators), std::end(kOperators), condition.op) ==
          std::end(kOperators) ||
      read.ec != std::errc() || read.ptr != end) {
    *why = fmt::format("\"{}\" is not an operator followed by a number", text.substr(op));
    return std::nullopt;
  }
  return condition;
}

bool Filter::Matches(const Record& record, const Thresholds& thresholds) const {
  const AuthEventG7* const attempt = record.Attempt();
  const EnrollEventG7* const enrollment = record.Enrollment();
  const bool is_failed = (attempt != nullptr && IsFailed(*attempt)) ||
                         (enrollment != nullptr && enrollment->op == EnrollEventG7::kOpAdd &&
                          !enrollment->enroll_successful);
  if (failed && !is_failed) {
    return false;
  }
  if (reason.empty() && where.empty() && !finger) {
    return true;
  }
  const Row row = RowOf(record, thresholds);
  if (!reason.empty() && !HasReason(row, reason)) {
    return false;
  }
  if (finger && NumericValue(row, "fid") != static_cast<double>(*finger)) {
    return false;
  }
  return std::all_of(where.begin(), where.end(), [&](const Condition& condition) {
    const auto value = NumericValue(row, condition.field);
    return value && Holds(*value, condition.op, condition.value);
  });
}

}  // namespace fp_inspect
