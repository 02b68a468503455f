// SPDX-License-Identifier: Apache-2.0
#include "scenario.h"

#include <gtest/gtest.h>

#include <sstream>

namespace fp_service {
namespace {

constexpr char kDay[] = R"({"event": "day", "date": "2026-03-04"})";

Scenario Read(const std::string& lines) {
  std::istringstream stream(lines);
  return ReadScenario(stream, "x.jsonl");
}

std::string ErrorOf(const std::string& lines) {
  try {
    Read(lines);
    return "accepted";
  } catch (const ScenarioError& error) {
    return error.what();
  }
}

TEST(Scenario, ReadsEventsInLocalTime) {
  setenv("TZ", "UTC", 1);
  const Scenario scenario = Read(std::string(kDay) + R"(
{"at": "06:00:00", "event": "calibrate", "expo_ms": 60, "base": 300}

{"at": "07:00:01", "event": "attempts", "finger": 2, "count": 3, "every_s": 7, "skin": "wet"}
{"at": "07:00:15", "event": "enroll", "finger": 5, "aim": "poor"}
{"event": "day", "date": "2026-03-06"}
{"at": "00:00:00", "event": "restart"}
)");
  ASSERT_EQ(4u, scenario.size());
  EXPECT_EQ(1772607601, scenario[1].at);
  const auto& attempts = std::get<Attempts>(scenario[1].data);
  EXPECT_EQ(2, attempts.finger);
  EXPECT_EQ(3, attempts.count);
  EXPECT_EQ(7, attempts.every_s);
  EXPECT_EQ(Skin::kWet, attempts.skin);
  EXPECT_EQ(Placement::kGood, attempts.placement);
  EXPECT_EQ(10, std::get<Enroll>(scenario[2].data).captures);
  EXPECT_EQ(1772755200, scenario[3].at);
}

TEST(Scenario, RejectsWrongLinesWithPlaceAndReason) {
  const struct {
    const char* line;
    const char* reason;
  } kCases[] = {
      {"{", "not JSON, at or before column 2"},
      {R"({"event": "light", "lux": 1e999})", "a number is too large"},
      {R"({"event": "dump", "at": "07:00:00", "at": "08:00:00"})", "\"at\" occurs twice"},
      {R"({"event": "phase", "at": "07:00:00", "name": "a\u001bb"})",
       "\"name\" contains a control character"},
      {R"({"event": "dump", "at": "07:00:00", "a\u001b": 1})", "unknown field \"a\\u001b\""},
      {"[1]", "an event must be a JSON object"},
      {R"({"event": 1})", "\"event\" must be a string"},
      {R"({"event": "dump"})", "\"at\" is missing"},
      {R"({"event": "dump", "at": "07:00:00 "})", "\"at\" must be a time like \"07:05:00\""},
      {R"({"event": "dump", "at": "06:00:39"})",
       "\"at\" is before 2026-03-04 06:00:40, when the event of line 3 ends"},
      {R"({"event": "day", "date": "2026-03-04"})", "\"date\" is not after the previous one"},
      {R"({"event": "day", "date": "2026-02-30"})", "2026-02-30 does not exist"},
      {R"({"event": "nap", "at": "07:00:00"})", "unknown event \"nap\""},
      {R"({"event": "calibrate", "at": "07:00:00", "expo_ms": 0, "base": 1})",
       "\"expo_ms\" must be a number from 0.001 to 10000"},
      {R"({"event": "attempts", "at": "07:00:00", "finger": 1, "count": 1000000})",
       "more than 1000000 touches in all"},
      {R"({"event": "attempts", "at": "07:00:00", "finger": 1, "skin": "fur"})",
       "\"skin\" must be one of \"dry\", \"normal\", \"wet\""},
      {R"({"event": "enroll", "at": "07:00:00", "finger": 0})",
       "\"finger\" must be an integer from 1 to 5"},
      {R"({"event": "acquisition_errors", "at": "07:00:00", "info": 1})",
       "\"info\" 1 is a good image; use \"attempts\""},
  };
  const std::string calibrate =
      R"({"at": "06:00:00", "event": "calibrate", "expo_ms": 60, "base": 300})";
  const std::string attempts =
      R"({"at": "06:00:00", "event": "attempts", "finger": 1, "count": 5, "every_s": 10})";
  const std::string before = std::string(kDay) + "\n" + calibrate + "\n" + attempts + "\n\n";
  for (const auto& test : kCases) {
    EXPECT_EQ(std::string("x.jsonl:5: ") + test.reason, ErrorOf(before + test.line));
  }
  EXPECT_EQ("x.jsonl:1: a scenario must begin with the event \"day\"", ErrorOf(""));
  EXPECT_EQ("x.jsonl:1: the scenario has no events", ErrorOf(kDay));
  EXPECT_EQ("x.jsonl:1: the first event must be \"day\"", ErrorOf(R"({"event": "dump"})"));
  const char* const uncalibrated =
      ": \"calibrate\" is required after each start of the service, to set its exposure";
  EXPECT_EQ(std::string("x.jsonl:2") + uncalibrated, ErrorOf(std::string(kDay) + "\n" + attempts));
  EXPECT_EQ(std::string("x.jsonl:4") + uncalibrated,
            ErrorOf(std::string(kDay) + "\n" + calibrate +
                    "\n{\"at\": \"06:00:00\", \"event\": \"power_cut\"}\n" + attempts));
}

}  // namespace
}  // namespace fp_service
