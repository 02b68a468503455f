// SPDX-License-Identifier: Apache-2.0
//
// Reading record texts. A written record is read completely, and a base record removes the same
// text as a regular expression would.
#include <regex.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>

#include "fp_host/testing.h"
#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"

namespace android::fp_utils {
namespace {

constexpr char kAuthText[] =
    "0x69a7bdbf,0x1,0x1,0xfffffffd,0x102,0x3,87.50,-1.25,4000000000,0xabcdef01,0x4,0x5,0x6,0x7,0x8,"
    "0x9,0xa,0xb,0xc,0xd,0xe,0xf,0x10,0x11,0x12,0x13,0x14";
constexpr char kEnrollText[] =
    "0x69a7bdbf,1,0x1,0x2,0xfffffffd,0x4,41.25,0x5,0xfffffff9,-12.50,0x1,0x2,0x3,0x4,0x5,0x6,0x7,"
    "0x8,0x9,0xa";

// Changes a text: replaces one field by a spelling that scanf may accept but no writer uses,
// inserts the start of the text before it, or changes, removes or inserts characters.
std::string Mutated(std::string text, std::mt19937_64& random) {
  constexpr const char* kOddities[] = {
      "0x0x1f", "0x 1f", "0x-1", "0x1ffffffff", "1e5", "0x1p3", "nan",  "-inf",        "4294967296",
      "-1",     " 7",    "0X1f", "1.",          ".5",  "1.005", "0x+1", "12345678.00", "0x001f"};
  constexpr char kCharacters[] = "0123456789abcdefABCDEFxX,,..-+ \t\n%enip";  // and NUL
  const auto below = [&random](size_t limit) { return random() % limit; };
  switch (below(4)) {
    case 0: {
      size_t from = 0;
      for (size_t field = below(20); field > 0; --field) {
        from = text.find(',', from) + 1;
      }
      const size_t end = std::min(text.find(',', from), text.size());
      return text.replace(from, end - from, kOddities[below(std::size(kOddities))]);
    }
    case 1:
      return text.substr(0, below(text.size() + 1)) + text;
    default:
      for (size_t left = below(8); left > 0; --left) {
        text.replace(below(text.size()), below(2), below(2),
                     kCharacters[below(sizeof kCharacters)]);
      }
      return text;
  }
}

std::string WithoutFirstMatch(const regex_t& regex, std::string text) {
  regmatch_t match = {0, static_cast<regoff_t>(text.size())};
  const bool matches = regexec(&regex, text.data(), 1, &match, REG_STARTEND) == 0;
  return matches ? text.erase(match.rm_so, match.rm_eo - match.rm_so) : text;
}

template <typename Base, typename G7>
void ExpectReadAsByRegularExpression(const std::string& written, const char* pattern) {
  regex_t regex;
  ASSERT_EQ(0, regcomp(&regex, pattern, REG_EXTENDED));
  fp_host::MuteLog(true);
  std::mt19937_64 random(8);
  int taken = 0;
  const int texts = fp_host::Share(200000);
  for (int i = 0; i < texts; ++i) {
    const std::string text = Mutated(written, random);
    Base base;
    G7 g7;
    std::string rest = text;
    std::string rest_of_g7 = text;
    const bool taken_whole = g7.LoadFromBackupString(rest_of_g7);
    const bool taken_by_base = base.LoadFromBackupString(rest);
    ASSERT_EQ(taken_by_base ? WithoutFirstMatch(regex, text) : text, rest);
    ASSERT_EQ(rest, rest_of_g7);
    ASSERT_LE(taken_whole, taken_by_base);
    taken += taken_by_base ? 1 : 0;
  }
  regfree(&regex);
  EXPECT_GT(taken, texts / 5) << "too few valid texts";
  EXPECT_LT(taken, texts * 4 / 5) << "too few damaged texts";
  G7 loaded;
  std::string text = written;
  EXPECT_TRUE(loaded.LoadFromBackupString(text));
  EXPECT_EQ(written, loaded.ToBackupString());

  // A text that is much longer than any record must not cause recursion or an overflow.
  for (const char* piece : {"0x1,", "1", "0x", ",", "0x1,0x1,0x1,0x1,0x1,", "f", " "}) {
    text = written;
    while (text.size() < 1 << 20) {
      text += piece;
    }
    loaded.LoadFromBackupString(text);
  }
}

TEST(RecordText, OfAttempts) {
  ExpectReadAsByRegularExpression<AuthEvent, AuthEventG7>(
      kAuthText,
      "0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+");
}

TEST(RecordText, OfEnrollments) {
  ExpectReadAsByRegularExpression<EnrollEvent, EnrollEventG7>(
      kEnrollText,
      "0x[0-9a-fA-F]+,[0-9]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,"
      "-?[0-9]+([.][0-9]+)?,0x[0-9a-fA-F]+");
}

}  // namespace
}  // namespace android::fp_utils
