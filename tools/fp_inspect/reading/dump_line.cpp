// SPDX-License-Identifier: Apache-2.0
#include "reading/dump_line.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <map>
#include <string>
#include <utility>

namespace fp_inspect {
namespace {

constexpr size_t kTimeSize = sizeof("2026-03-04 05:06:07") - 1;
constexpr size_t kMinIndexDigits = 3;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool ConsumeNumber(std::string_view* text, auto* value) {
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), *value);
  text->remove_prefix(static_cast<size_t>(end - text->data()));
  return error == std::errc();
}

bool Consume(std::string_view* text, std::string_view literal) {
  const bool is_present = text->starts_with(literal);
  text->remove_prefix(is_present ? literal.size() : 0);
  return is_present;
}

bool Consume(std::string_view* text, std::string_view name, auto* value) {
  return Consume(text, name) && ConsumeNumber(text, value);
}

bool ConsumeFlag(std::string_view* text, std::string_view name, bool* value) {
  int number = 0;
  const bool is_complete = Consume(text, name, &number);
  *value = number == 1;
  return is_complete;
}

bool ConsumeSlots(std::string_view* text, std::string_view name, auto* slots) {
  bool is_complete = Consume(text, name);
  for (size_t i = 0; is_complete && i < slots->size(); ++i) {
    is_complete = (i == 0 || Consume(text, "_")) && ConsumeNumber(text, &(*slots)[i]);
  }
  return is_complete;
}

// Stands for an operation other than addition and deletion, whose number a dump does not print.
constexpr uint32_t kOpUnprinted = UINT32_MAX;

// The acquisition codes, by the names that the library prints for them.
const std::map<std::string, int8_t, std::less<>>& AcquiredCodes() {
  static const auto codes = [] {
    std::map<std::string, int8_t, std::less<>> codes;
    for (int code = INT8_MIN; code <= INT8_MAX; ++code) {
      Record record;
      AuthEventG7 event;
      event.acquired_info = static_cast<int8_t>(code);
      record.value = event;
      codes[DumpText(record)] = event.acquired_info;
    }
    return codes;
  }();
  return codes;
}

bool ConsumeOutcome(std::string_view* text, AuthEventG7* event) {
  if (!text->starts_with("acquisition_error:")) {
    event->acquired_info = AuthEventG7::kAcquiredGood;
    return ConsumeFlag(text, "auth_successful:", &event->auth_successful) &&
           Consume(text, ", fid:", &event->fid) && Consume(text, ", latency:", &event->latency) &&
           Consume(text, ", iq:", &event->iq);
  }
  const std::string_view words = text->substr(0, text->find(','));
  const auto code = AcquiredCodes().find(words);
  text->remove_prefix(words.size());
  event->acquired_info = code != AcquiredCodes().end() ? code->second : int8_t{0};
  return code != AcquiredCodes().end();
}

// Reads as many fields as are present. IfPrintedAs() later rejects a record with missing fields.
void ConsumeMatcherFields(std::string_view text, AuthEventG7* event) {
  (void)(Consume(&text, ", rc:", &event->rc) && Consume(&text, ", lptw:", &event->lptw) &&
         Consume(&text, ", t_cov:", &event->t_cov) &&
         Consume(&text, "%, t_dist:", &event->t_dist) &&
         Consume(&text, "mm, rawmean_delta:", &event->rawmean_delta) &&
         Consume(&text, ", match_score:", &event->match_score) &&
         ConsumeSlots(&text, ", stitch_img_num_:", &event->stitch_img_num_) &&
         ConsumeSlots(&text, ", stitch_img_area_:", &event->stitch_img_area_));
}

// A dump shows the reason that the library derived from the packed metrics, but not the metrics.
// Each of these sets of metrics reproduces one of the possible reasons.
void SetMetrics(AuthEventG7* event, int which) {
  const bool on_target = which > 0;
  event->packed_metric_1 = on_target ? 225220215 : 0;
  event->packed_metric_2 = on_target ? 83205205 : 0;
  event->foreign_matter_count = which == 1 ? 1 : 0;
  event->packed_metric_3 = which == 2 ? 120000000 : 0;
}
constexpr int kMetricSets = 4;

std::optional<Record> IfPrintedAs(Record record, std::string_view words) {
  return DumpText(record) == words ? std::optional(std::move(record)) : std::nullopt;
}

}  // namespace

std::optional<int64_t> ReadWallTime(std::string_view text) {
  constexpr std::string_view kForm = "dddd-dd-dd dd:dd:dd";
  static_assert(kForm.size() == kTimeSize);
  if (text.size() < kTimeSize) {
    return std::nullopt;
  }
  for (size_t i = 0; i < kTimeSize; ++i) {
    if (kForm[i] == 'd' ? !IsDigit(text[i]) : kForm[i] != text[i]) {
      return std::nullopt;
    }
  }
  const auto number = [&](size_t at, size_t digits) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + digits, value);
    return value;
  };
  tm parts = {};
  parts.tm_year = number(0, 4) - 1900;
  parts.tm_mon = number(5, 2) - 1;
  parts.tm_mday = number(8, 2);
  parts.tm_hour = number(11, 2);
  parts.tm_min = number(14, 2);
  parts.tm_sec = number(17, 2);
  const tm wanted = parts;
  const time_t time = timegm(&parts);
  // timegm() turns 30 February into a day in March.
  const bool exists = parts.tm_mon == wanted.tm_mon && parts.tm_mday == wanted.tm_mday &&
                      parts.tm_hour == wanted.tm_hour && parts.tm_sec == wanted.tm_sec;
  return exists ? std::optional(int64_t{time}) : std::nullopt;
}

std::optional<DumpLine> FindDumpLine(std::string_view line) {
  for (size_t at = line.find('#'); at != line.npos; at = line.find('#', at + 1)) {
    std::string_view rest = line.substr(at + 1);
    DumpLine found;
    const size_t digits = std::min(rest.find_first_not_of("0123456789"), rest.size());
    if (digits < kMinIndexDigits || !ConsumeNumber(&rest, &found.index) || !Consume(&rest, " ")) {
      continue;
    }
    const auto time = ReadWallTime(rest);
    if (time && rest.size() > kTimeSize && rest[kTimeSize] == ' ') {
      found.time = *time;
      found.words = rest.substr(kTimeSize + 1);
      return found;
    }
  }
  return std::nullopt;
}

std::optional<Record> ReadAttempt(std::string_view words) {
  AuthEventG7 event;
  std::string_view rest = words;
  if (!ConsumeOutcome(&rest, &event)) {
    return std::nullopt;
  }
  Record record;
  record.g7 = !rest.empty();
  ConsumeMatcherFields(rest, &event);
  for (int which = 0; which < kMetricSets; ++which) {
    SetMetrics(&event, which);
    record.value = event;
    if (auto read = IfPrintedAs(record, words)) {
      return read;
    }
  }
  return std::nullopt;
}

std::optional<Record> ReadEnrollment(std::string_view words) {
  EnrollEventG7 event;
  std::string_view rest = words;
  event.op = rest.starts_with("op:ADD") ? EnrollEventG7::kOpAdd : kOpUnprinted;
  if (Consume(&rest, "op:DEL")) {
    event.op = EnrollEventG7::kOpDelete;
    (void)(Consume(&rest, ", gid:", &event.gid) && Consume(&rest, ", fid:", &event.fid));
  } else if (Consume(&rest, "op:ADD")) {
    (void)(ConsumeFlag(&rest, ", enroll_successful:", &event.enroll_successful) &&
           Consume(&rest, ", gid:", &event.gid) && Consume(&rest, ", fid:", &event.fid) &&
           Consume(&rest, ", capture_count:", &event.capture_count) &&
           Consume(&rest, ", iq_avg:", &event.iq_avg) &&
           Consume(&rest, ", enrolled_fingers_count:", &event.enrolled_fingers_count));
  } else {
    event.enroll_successful = rest.find("reason:") == rest.npos;
  }
  Record record;
  record.g7 = Consume(&rest, ", rc:", &event.rc);
  (void)(Consume(&rest, ", rawmean_delta:", &event.rawmean_delta) &&
         ConsumeSlots(&rest, ", stitch_img_num_:", &event.stitch_img_num_) &&
         ConsumeSlots(&rest, ", stitch_img_area_:", &event.stitch_img_area_));
  record.value = event;
  return IfPrintedAs(std::move(record), words);
}

}  // namespace fp_inspect
