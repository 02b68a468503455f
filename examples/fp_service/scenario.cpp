// SPDX-License-Identifier: Apache-2.0
#include "scenario.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "event_fields.h"

namespace fp_service {
namespace {

using nlohmann::json;

// Larger values are rejected as typing errors.
constexpr int kMaxCount = 1000000;
constexpr int kMaxPause = 86400;
constexpr int kMaxCaptures = 100;
constexpr int kMaxPresses = 1000;
constexpr int kMaxCode = 1000000;
constexpr int kMaxSeverity = 6;

Placement ReadPlacement(Fields& fields) {
  return fields.GetOneOf<Placement>("aim", {{"good", Placement::kGood}, {"poor", Placement::kPoor}},
                                    Placement::kGood);
}

EventData ReadEventData(const std::string& event, Fields& fields) {
  constexpr double kMinCalibration = 0.001;
  constexpr double kMaxExposureMs = 10000;
  constexpr double kMaxBase = 1e6;
  constexpr double kMaxLux = 200000;
  if (event == "phase") {
    return Phase{.name = fields.GetText("name")};
  }
  if (event == "calibrate") {
    return Calibrate{
        .expo_ms = static_cast<float>(fields.GetNumber("expo_ms", kMinCalibration, kMaxExposureMs)),
        .base = static_cast<float>(fields.GetNumber("base", kMinCalibration, kMaxBase))};
  }
  if (event == "init_error") {
    return InitError{.code = fields.GetInteger("code", -kMaxCode, kMaxCode),
                     .message = fields.GetText("message")};
  }
  if (event == "light") {
    return Light{.lux = static_cast<float>(fields.GetNumber("lux", 0, kMaxLux))};
  }
  if (event == "attempts") {
    return Attempts{
        .finger = fields.GetInteger("finger", 0, kMaxFingers),
        .count = fields.GetInteger("count", 1, kMaxCount, 1),
        .every_s = fields.GetInteger("every_s", 0, kMaxPause, 1),
        .skin = fields.GetOneOf<Skin>(
            "skin", {{"normal", Skin::kNormal}, {"dry", Skin::kDry}, {"wet", Skin::kWet}},
            Skin::kNormal),
        .placement = ReadPlacement(fields)};
  }
  if (event == "enroll") {
    return Enroll{.finger = fields.GetInteger("finger", 1, kMaxFingers),
                  .captures = fields.GetInteger("captures", 1, kMaxCaptures, 10),
                  .placement = ReadPlacement(fields)};
  }
  if (event == "delete") {
    return Delete{.finger = fields.GetInteger("finger", 1, kMaxFingers)};
  }
  if (event == "acquisition_errors") {
    const AcquisitionErrors errors = {.info = fields.GetInteger("info", -128, 127),
                                      .count = fields.GetInteger("count", 1, kMaxCount, 1),
                                      .every_s = fields.GetInteger("every_s", 0, kMaxPause, 1)};
    if (errors.info == 1) {
      throw InvalidEvent("\"info\" 1 is a good image; use \"attempts\"");
    }
    return errors;
  }
  if (event == "long_press") {
    return LongPress{.count = fields.GetInteger("count", 1, kMaxPresses, 1)};
  }
  if (event == "heat") {
    return Heat{.severity = fields.GetInteger("severity", 0, kMaxSeverity)};
  }
  if (event == "display_hal_dies") {
    return DisplayHalDies{};
  }
  if (event == "restart") {
    return Restart{};
  }
  if (event == "power_cut") {
    return PowerCut{};
  }
  if (event == "dump") {
    return Dump{};
  }
  throw InvalidEvent(fmt::format("unknown event \"{}\"", event));
}

// The touches of an event, and the seconds from its begin to its end.
struct Touches {
  int count = 0;
  time_t seconds = 0;
};

Touches CountTouches(const EventData& data) {
  const auto spread = [](const auto& touches) {
    return Touches{touches.count, time_t{touches.count - 1} * touches.every_s};
  };
  if (const auto* attempts = std::get_if<Attempts>(&data)) {
    return spread(*attempts);
  }
  if (const auto* errors = std::get_if<AcquisitionErrors>(&data)) {
    return spread(*errors);
  }
  if (const auto* enroll = std::get_if<Enroll>(&data)) {
    return {enroll->captures, enroll->captures};  // one second per capture
  }
  return {};
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
    throw InvalidEvent("\"at\" must be a time like \"07:05:00\"");
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
    throw InvalidEvent("\"date\" must be a date like \"2026-03-04\"");
  }
  parts.tm_year -= 1900;
  parts.tm_mon -= 1;
  parts.tm_isdst = -1;
  const tm wanted = parts;
  const time_t midnight = mktime(&parts);
  if (parts.tm_year != wanted.tm_year || parts.tm_mon != wanted.tm_mon ||
      parts.tm_mday != wanted.tm_mday) {
    throw InvalidEvent(fmt::format("{} does not exist", text));
  }
  return midnight;
}

std::string LocalTime(time_t at) {
  tm parts = {};
  localtime_r(&at, &parts);
  char text[32];
  return {text, strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

// Parses one line. Rejects a repeated field, of which nlohmann's parser silently keeps the last.
json Parse(const std::string& line) {
  std::set<std::string> names;
  const auto check = [&](int depth, json::parse_event_t event, const json& parsed) {
    if (depth == 1 && event == json::parse_event_t::key && !names.insert(parsed).second) {
      throw InvalidEvent(parsed.dump() + " occurs twice");
    }
    return true;
  };
  try {
    return json::parse(line, check);
  } catch (const json::parse_error& error) {
    throw InvalidEvent(fmt::format("not JSON, at or before column {}", error.byte));
  } catch (const json::out_of_range& /*error*/) {
    throw InvalidEvent("a number is too large");
  }
}

class Reader {
 public:
  void ReadLine(const std::string& line) {
    ++number_;
    if (line.find_first_not_of(" \t\r") == std::string::npos) {
      return;
    }
    const json parsed = Parse(line);
    Fields fields(parsed);
    const std::string event = fields.GetText("event");
    if (event == "day") {
      ReadDay(fields);
    } else if (midnight_) {
      ReadEvent(event, fields);
    } else {
      throw InvalidEvent("the first event must be \"day\"");
    }
    fields.RejectUnknownFields();
  }

  Scenario Finish() {
    if (!midnight_) {
      throw InvalidEvent("a scenario must begin with the event \"day\"");
    }
    if (scenario_.empty()) {
      throw InvalidEvent("the scenario has no events");
    }
    return std::move(scenario_);
  }

  int GetLine() const { return number_; }

 private:
  void ReadDay(Fields& fields) {
    const time_t midnight = Midnight(fields.GetText("date"));
    if (midnight_ && midnight <= *midnight_) {
      throw InvalidEvent("\"date\" is not after the previous one");
    }
    midnight_ = midnight;
  }

  void ReadEvent(const std::string& event, Fields& fields) {
    const time_t at = *midnight_ + TimeOfDay(fields.GetText("at"));
    if (!scenario_.empty() && at < end_) {
      throw InvalidEvent(fmt::format("\"at\" is before {}, when the event of line {} ends",
                                     LocalTime(end_), end_line_));
    }
    scenario_.push_back({at, ReadEventData(event, fields)});
    const Touches touches = CountTouches(scenario_.back().data);
    end_ = at + touches.seconds;
    end_line_ = number_;
    touches_ += touches.count;
    if (touches_ > kMaxCount) {
      throw InvalidEvent(fmt::format("more than {} touches in all", kMaxCount));
    }
    CheckOrder(scenario_.back().data);
  }

  // Checks what an event requires of earlier events.
  void CheckOrder(const EventData& data) {
    if (std::holds_alternative<Calibrate>(data)) {
      calibrated_ = true;
    } else if (std::holds_alternative<Restart>(data) || std::holds_alternative<PowerCut>(data)) {
      calibrated_ = false;
    } else if (std::holds_alternative<Phase>(data)) {
      if (++phases_ > kMaxPhases) {
        throw InvalidEvent(fmt::format("more than {} phases", kMaxPhases));
      }
    } else if (!calibrated_ &&
               (std::holds_alternative<Attempts>(data) || std::holds_alternative<Enroll>(data))) {
      throw InvalidEvent(
          "\"calibrate\" is required after each start of the service, to set its exposure");
    }
  }

  Scenario scenario_;
  int number_ = 0;
  std::optional<time_t> midnight_;
  time_t end_ = 0;  // of the previous event
  int end_line_ = 0;
  int touches_ = 0;
  int phases_ = 0;
  bool calibrated_ = false;
};

}  // namespace

Scenario ReadScenario(std::istream& lines, const std::string& name) {
  Reader reader;
  try {
    for (std::string line; std::getline(lines, line);) {
      reader.ReadLine(line);
    }
    return reader.Finish();
  } catch (const InvalidEvent& error) {
    throw ScenarioError(
        fmt::format("{}:{}: {}", name, std::max(reader.GetLine(), 1), error.what()));
  }
}

Scenario LoadScenario(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw ScenarioError(fmt::format("{}: {}", path, strerror(errno)));
  }
  if (std::filesystem::is_directory(path)) {
    throw ScenarioError(fmt::format("{}: is a directory", path));
  }
  return ReadScenario(file, path);
}

}  // namespace fp_service
