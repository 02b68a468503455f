// SPDX-License-Identifier: Apache-2.0
#include "scenario.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <optional>

#include "event_fields.h"

namespace fp_service {
namespace {

using nlohmann::json;

// More than this is a slip of the pen, not a day.
constexpr int kMaxCount = 1000000;
constexpr int kMaxPause = 86400;
constexpr int kMaxCaptures = 100;
constexpr int kMaxPresses = 1000;
constexpr int kMaxCode = 1000000;
constexpr int kFingers = 5;
constexpr int kMaxSeverity = 6;

Aim ReadAim(Fields& fields) {
  return fields.OneOf<Aim>("aim", {{"good", Aim::kGood}, {"poor", Aim::kPoor}}, Aim::kGood);
}

Happening ReadHappening(const std::string& event, Fields& fields) {
  constexpr double kMaxExposureMs = 10000;
  constexpr double kMaxBase = 1e6;
  constexpr double kMaxLux = 200000;
  if (event == "phase") {
    return Phase{.name = fields.Text("name")};
  }
  if (event == "calibrate") {
    return Calibrate{.expo_ms = static_cast<float>(fields.Number("expo_ms", 0, kMaxExposureMs)),
                     .base = static_cast<float>(fields.Number("base", 0, kMaxBase))};
  }
  if (event == "init_error") {
    return InitError{.code = fields.Integer("code", -kMaxCode, kMaxCode),
                     .message = fields.Text("message")};
  }
  if (event == "light") {
    return Light{.lux = static_cast<float>(fields.Number("lux", 0, kMaxLux))};
  }
  if (event == "attempts") {
    return Attempts{
        .finger = fields.Integer("finger", 0, kFingers),
        .count = fields.Integer("count", 1, kMaxCount, 1),
        .every_s = fields.Integer("every_s", 0, kMaxPause, 1),
        .skin = fields.OneOf<Skin>(
            "skin", {{"normal", Skin::kNormal}, {"dry", Skin::kDry}, {"wet", Skin::kWet}},
            Skin::kNormal),
        .aim = ReadAim(fields)};
  }
  if (event == "enroll") {
    return Enroll{.finger = fields.Integer("finger", 1, kFingers),
                  .captures = fields.Integer("captures", 1, kMaxCaptures, 10),
                  .aim = ReadAim(fields)};
  }
  if (event == "delete") {
    return Delete{.finger = fields.Integer("finger", 1, kFingers)};
  }
  if (event == "acquisition_errors") {
    const AcquisitionErrors errors = {.info = fields.Integer("info", -128, 127),
                                      .count = fields.Integer("count", 1, kMaxCount, 1),
                                      .every_s = fields.Integer("every_s", 0, kMaxPause, 1)};
    if (errors.info == 1) {
      throw Refusal("\"info\" 1 is a good image; write \"attempts\"");
    }
    return errors;
  }
  if (event == "long_press") {
    return LongPress{.count = fields.Integer("count", 1, kMaxPresses, 1)};
  }
  if (event == "heat") {
    return Heat{.severity = fields.Integer("severity", 0, kMaxSeverity)};
  }
  if (event == "display_hal_dies") {
    return DisplayHalDies{};
  }
  if (event == "dump") {
    return Dump{};
  }
  throw Refusal(fmt::format("\"{}\" is no event", event));
}

int TouchesOf(const Happening& happening) {
  if (const auto* attempts = std::get_if<Attempts>(&happening)) {
    return attempts->count;
  }
  if (const auto* errors = std::get_if<AcquisitionErrors>(&happening)) {
    return errors->count;
  }
  if (const auto* enroll = std::get_if<Enroll>(&happening)) {
    return enroll->captures;
  }
  return 0;
}

// "hh:mm:ss" in seconds.
int TimeOfDay(const std::string& text) {
  int hour = 0;
  int minute = 0;
  int second = 0;
  int end = 0;
  if (sscanf(text.c_str(), "%2d:%2d:%2d%n", &hour, &minute, &second, &end) != 3 ||
      static_cast<size_t>(end) != text.size() || hour < 0 || hour > 23 || minute < 0 ||
      minute > 59 || second < 0 || second > 59) {
    throw Refusal("\"at\" is a time like \"07:05:00\"");
  }
  return (hour * 60 + minute) * 60 + second;
}

// Local midnight of "YYYY-MM-DD".
time_t Midnight(const std::string& text) {
  tm parts = {};
  int end = 0;
  if (sscanf(text.c_str(), "%4d-%2d-%2d%n", &parts.tm_year, &parts.tm_mon, &parts.tm_mday, &end) !=
          3 ||
      static_cast<size_t>(end) != text.size()) {
    throw Refusal("\"date\" is a date like \"2026-03-04\"");
  }
  parts.tm_year -= 1900;
  parts.tm_mon -= 1;
  parts.tm_isdst = -1;
  const tm wanted = parts;
  const time_t midnight = mktime(&parts);
  if (parts.tm_year != wanted.tm_year || parts.tm_mon != wanted.tm_mon ||
      parts.tm_mday != wanted.tm_mday) {
    throw Refusal(fmt::format("there is no {}", text));
  }
  return midnight;
}

class Reader {
 public:
  void Take(const std::string& line) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) {
      return;
    }
    const json parsed = json::parse(line, nullptr, false);
    if (parsed.is_discarded()) {
      throw Refusal("not JSON");
    }
    Fields fields(parsed);
    const std::string event = fields.Text("event");
    if (!midnight_) {
      if (event != "day") {
        throw Refusal("the first event is \"day\"");
      }
      midnight_ = Midnight(fields.Text("date"));
    } else {
      TakeHappening(event, fields);
    }
    fields.RefuseTheRest();
  }

  Scenario Finish() {
    if (!midnight_) {
      throw Refusal("a scenario begins with the event \"day\"");
    }
    return std::move(scenario_);
  }

 private:
  void TakeHappening(const std::string& event, Fields& fields) {
    const int second = TimeOfDay(fields.Text("at"));
    if (second < last_second_) {
      throw Refusal("\"at\" is before the event of the line above");
    }
    last_second_ = second;
    scenario_.events.push_back({*midnight_ + second, ReadHappening(event, fields)});
    scenario_.touches += TouchesOf(scenario_.events.back().happening);
    if (scenario_.touches > kMaxCount) {
      throw Refusal(fmt::format("more than {} touches in all", kMaxCount));
    }
  }

  Scenario scenario_;
  std::optional<time_t> midnight_;
  int last_second_ = 0;
};

}  // namespace

Scenario ReadScenario(std::istream& lines, const std::string& name) {
  Reader reader;
  int number = 0;
  try {
    for (std::string line; std::getline(lines, line);) {
      ++number;
      reader.Take(line);
    }
    return reader.Finish();
  } catch (const Refusal& refusal) {
    throw ScenarioError(fmt::format("{}:{}: {}", name, number, refusal.what()));
  }
}

}  // namespace fp_service
