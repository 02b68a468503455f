// SPDX-License-Identifier: Apache-2.0
#include "history/record_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "common/log.h"

namespace android::fp_utils {
namespace {

// Digits that a 32-bit and a 64-bit hexadecimal number can have.
constexpr int kHexDigits32 = 8;
constexpr int kHexDigits64 = 16;
constexpr int kDecimalDigits32 = 10;

// Seven digits before the point and two behind it: below 2^30, so that hundredths of a float, which
// has 24 bits, are exact in a double.
constexpr int kFixedPointDigits = 7;
constexpr float kFixedPointLimit = 1e7F;

constexpr uint8_t kNoDigit = 0xFF;
constexpr std::array<uint8_t, 256> MakeHexValues() {
  std::array<uint8_t, 256> values = {};
  for (uint8_t& value : values) {
    value = kNoDigit;
  }
  for (uint8_t digit = 0; digit < 10; ++digit) {
    values['0' + digit] = digit;
  }
  for (uint8_t digit = 10; digit < 16; ++digit) {
    values['a' + digit - 10] = digit;
    values['A' + digit - 10] = digit;
  }
  return values;
}
constexpr std::array<uint8_t, 256> kHexValues = MakeHexValues();

uint8_t HexValue(char c) { return kHexValues[static_cast<uint8_t>(c)]; }
bool IsHexDigit(char c) { return HexValue(c) != kNoDigit; }
bool IsDecimalDigit(char c) { return c >= '0' && c <= '9'; }

// Where the run of digits that begins at `from` ends.
template <typename IsDigit>
size_t SkipDigits(std::string_view text, size_t from, IsDigit is_digit) {
  while (from < text.size() && is_digit(text[from])) {
    ++from;
  }
  return from;
}

// Each returns the end of the field that begins at `from`, or npos. No field can end with a
// character that could belong to its successor, so the longest match is the only one to try.
size_t MatchHex(std::string_view text, size_t from) {
  if (text.substr(from, 2) != "0x") {
    return std::string_view::npos;
  }
  const size_t end = SkipDigits(text, from + 2, IsHexDigit);
  return end == from + 2 ? std::string_view::npos : end;
}

size_t MatchDecimal(std::string_view text, size_t from) {
  const size_t end = SkipDigits(text, from, IsDecimalDigit);
  return end == from ? std::string_view::npos : end;
}

size_t MatchFixedPoint(std::string_view text, size_t from) {
  from += from < text.size() && text[from] == '-' ? 1 : 0;
  const size_t whole = MatchDecimal(text, from);
  if (whole == std::string_view::npos || text.substr(whole, 1) != ".") {
    return whole;
  }
  const size_t fraction = MatchDecimal(text, whole + 1);
  return fraction == std::string_view::npos ? whole : fraction;
}

size_t MatchForm(FieldForm form, std::string_view text, size_t from) {
  switch (form) {
    case FieldForm::kHex:
      return MatchHex(text, from);
    case FieldForm::kDecimal:
      return MatchDecimal(text, from);
    case FieldForm::kFixedPoint:
      return MatchFixedPoint(text, from);
  }
  return std::string_view::npos;
}

// The end of the comma-joined forms that begin at `from`, or npos.
size_t MatchForms(std::string_view text, size_t from, std::initializer_list<FieldForm> forms) {
  bool first = true;
  for (const FieldForm form : forms) {
    if (!first) {
      if (text.substr(from, 1) != ",") {
        return std::string_view::npos;
      }
      ++from;
    }
    first = false;
    from = MatchForm(form, text, from);
    if (from == std::string_view::npos) {
      return from;
    }
  }
  return from;
}

}  // namespace

char* WriteDecimal(char* out, int64_t value) {
  constexpr ptrdiff_t kLongest = 20;
  return std::to_chars(out, out + kLongest, value).ptr;
}

char* WriteFixedPoint(char* out, float value, int decimals) {
  const double magnitude = std::fabs(static_cast<double>(value));
  if (!(magnitude < kFixedPointLimit)) {  // also NaN
    return out + snprintf(out, 64, "%.*f", decimals, value);
  }
  // Exact, and rounded half to even: what printf does.
  const double scaled = magnitude * (decimals == 1 ? 10 : 100);
  auto rounded = static_cast<uint32_t>(scaled);
  const double rest = scaled - rounded;
  if (rest > 0.5 || (rest == 0.5 && rounded % 2 != 0)) {
    ++rounded;
  }
  *out = '-';
  out += std::signbit(value) ? 1 : 0;
  out = WriteDecimal(out, decimals == 1 ? rounded / 10 : rounded / 100);
  *out++ = '.';
  if (decimals > 1) {
    *out++ = static_cast<char>('0' + rounded / 10 % 10);
  }
  *out++ = static_cast<char>('0' + rounded % 10);
  return out;
}

bool RecordReader::Comma() {
  if (position_ == end_ || *position_ != ',') {
    return false;
  }
  ++position_;
  return true;
}

// Up to `limit` digits. One more would be too long for the number, and an x would make the zero
// before it the second "0x" that scanf allows.
bool RecordReader::HexNumber(int limit, uint64_t* value) {
  if (end_ - position_ < 3 || position_[0] != '0' || position_[1] != 'x') {
    return false;
  }
  const char* digit = position_ + 2;
  const char* const stop = digit + std::min<ptrdiff_t>(limit, end_ - digit);
  uint64_t number = 0;
  for (; digit != stop && IsHexDigit(*digit); ++digit) {
    number = number << 4 | HexValue(*digit);
  }
  if (digit == position_ + 2 ||
      (digit != end_ && (IsHexDigit(*digit) || *digit == 'x' || *digit == 'X'))) {
    return false;
  }
  position_ = digit;
  *value = number;
  return true;
}

bool RecordReader::DecimalNumber(int limit, uint64_t* value) {
  const char* digit = position_;
  const char* const stop = digit + std::min<ptrdiff_t>(limit, end_ - digit);
  uint64_t number = 0;
  for (; digit != stop && IsDecimalDigit(*digit); ++digit) {
    number = number * 10 + static_cast<uint64_t>(*digit - '0');
  }
  if (digit == position_ || (digit != end_ && IsDecimalDigit(*digit))) {
    return false;
  }
  position_ = digit;
  *value = number;
  return true;
}

bool RecordReader::HexLong(unsigned long long* value) {
  uint64_t number = 0;
  if (!HexNumber(kHexDigits64, &number)) {
    return false;
  }
  *value = number;
  return true;
}

bool RecordReader::HexField(uint32_t* value) {
  uint64_t number = 0;
  if (!Comma() || !HexNumber(kHexDigits32, &number)) {
    return false;
  }
  *value = static_cast<uint32_t>(number);
  return true;
}

bool RecordReader::HexField(int32_t* value) {
  uint32_t number = 0;
  if (!HexField(&number)) {
    return false;
  }
  *value = static_cast<int32_t>(number);
  return true;
}

bool RecordReader::DecimalField(uint32_t* value) {
  uint64_t number = 0;
  if (!Comma() || !DecimalNumber(kDecimalDigits32, &number) ||
      number > std::numeric_limits<uint32_t>::max()) {
    return false;
  }
  *value = static_cast<uint32_t>(number);
  return true;
}

bool RecordReader::FixedPointField(float* value) {
  if (!Comma()) {
    return false;
  }
  const bool negative = position_ != end_ && *position_ == '-';
  position_ += negative ? 1 : 0;
  uint64_t whole = 0;
  if (!DecimalNumber(kFixedPointDigits, &whole) || end_ - position_ < 3 || position_[0] != '.' ||
      !IsDecimalDigit(position_[1]) || !IsDecimalDigit(position_[2])) {
    return false;
  }
  const uint64_t hundredths = whole * 100 + static_cast<uint64_t>(position_[1] - '0') * 10 +
                              static_cast<uint64_t>(position_[2] - '0');
  position_ += 3;
  // The quotient is within half a double ulp of the written number. A number of nine digits that is
  // not itself halfway between two floats is farther than that from every such half, so rounding
  // twice rounds as once would.
  const double magnitude = static_cast<double>(hundredths) / 100;
  *value = static_cast<float>(negative ? -magnitude : magnitude);
  return true;
}

void LogParseFailure(const char* tag, const char* signature, const std::string& text) {
  FP_LOG_ERROR(tag, "[%s] failed to parse str:'%s' with error %d", signature, text.c_str(), -errno);
}

void RemoveFirstMatch(std::string& text, std::initializer_list<FieldForm> forms) {
  for (size_t from = 0; from < text.size(); ++from) {
    const size_t end = MatchForms(text, from, forms);
    if (end != std::string::npos) {
      text.erase(from, end - from);
      return;
    }
  }
}

}  // namespace android::fp_utils
