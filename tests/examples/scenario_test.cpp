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

std::string Refusal(const std::string& lines) {
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

{"at": "07:00:01", "event": "attempts", "finger": 2, "count": 3, "every_s": 7, "skin": "wet"}
{"at": "07:00:01", "event": "acquisition_errors", "info": -1, "count": 4}
{"at": "07:00:02", "event": "enroll", "finger": 5, "aim": "poor"}
)");
  ASSERT_EQ(3u, scenario.events.size());
  EXPECT_EQ(17, scenario.touches);
  EXPECT_EQ(1772607601, scenario.events[0].at);
  const auto& attempts = std::get<Attempts>(scenario.events[0].happening);
  EXPECT_EQ(2, attempts.finger);
  EXPECT_EQ(3, attempts.count);
  EXPECT_EQ(7, attempts.every_s);
  EXPECT_EQ(Skin::kWet, attempts.skin);
  EXPECT_EQ(Aim::kGood, attempts.aim);
  EXPECT_EQ(10, std::get<Enroll>(scenario.events[2].happening).captures);
}

TEST(Scenario, RefusesWrongLinesWithPlaceAndReason) {
  const struct {
    const char* line;
    const char* reason;
  } kCases[] = {
      {"{", "not JSON"},
      {"[1]", "an event is a JSON object"},
      {"\"a\"", "an event is a JSON object"},
      {"{}", "\"event\" is missing"},
      {R"({"event": 1})", "\"event\" is a text"},
      {R"({"event": "dump"})", "\"at\" is missing"},
      {R"({"event": "dump", "at": "25:00:00"})", "\"at\" is a time like \"07:05:00\""},
      {R"({"event": "dump", "at": "07:00"})", "\"at\" is a time like \"07:05:00\""},
      {R"({"event": "dump", "at": "07:00:00 "})", "\"at\" is a time like \"07:05:00\""},
      {R"({"event": "dump", "at": "05:59:59"})", "\"at\" is before the event of the line above"},
      {R"({"event": "nap", "at": "07:00:00"})", "\"nap\" is no event"},
      {R"({"event": "dump", "at": "07:00:00", "x": 1})", "\"x\" is no field of this event"},
      {R"({"event": "light", "at": "07:00:00", "lux": -1})",
       "\"lux\" is a number from 0 to 200000"},
      {R"({"event": "light", "at": "07:00:00", "lux": "a"})",
       "\"lux\" is a number from 0 to 200000"},
      {R"({"event": "attempts", "at": "07:00:00", "finger": 1.5})",
       "\"finger\" is a whole number from 0 to 5"},
      {R"({"event": "attempts", "at": "07:00:00", "finger": 1, "count": 99999999999})",
       "\"count\" is a whole number from 1 to 1000000"},
      {R"({"event": "attempts", "at": "07:00:00", "finger": 1, "count": 1000000})",
       "more than 1000000 touches in all"},
      {R"({"event": "attempts", "at": "07:00:00", "finger": 1, "skin": "fur"})",
       "\"skin\" is one of \"dry\", \"normal\", \"wet\""},
      {R"({"event": "enroll", "at": "07:00:00", "finger": 0})",
       "\"finger\" is a whole number from 1 to 5"},
      {R"({"event": "heat", "at": "07:00:00", "severity": 7})",
       "\"severity\" is a whole number from 0 to 6"},
      {R"({"event": "acquisition_errors", "at": "07:00:00", "info": 1})",
       "\"info\" 1 is a good image; write \"attempts\""},
  };
  const std::string before =
      std::string(kDay) + "\n" + R"({"at": "06:00:00", "event": "attempts", "finger": 1})" + "\n\n";
  for (const auto& test : kCases) {
    EXPECT_EQ(std::string("x.jsonl:4: ") + test.reason, Refusal(before + test.line));
  }
  EXPECT_EQ("x.jsonl:0: a scenario begins with the event \"day\"", Refusal(""));
  EXPECT_EQ("x.jsonl:1: the first event is \"day\"", Refusal(R"({"event": "dump"})"));
  EXPECT_EQ("x.jsonl:1: \"date\" is a date like \"2026-03-04\"",
            Refusal(R"({"event": "day", "date": "today"})"));
  EXPECT_EQ("x.jsonl:1: there is no 2026-02-30",
            Refusal(R"({"event": "day", "date": "2026-02-30"})"));
}

}  // namespace
}  // namespace fp_service
