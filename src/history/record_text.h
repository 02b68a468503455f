// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

// The fields of record texts, written and read without printf and scanf: a save formats every
// record of the history on the unlock path.

namespace android::fp_utils {

// The longest record text that a reader of the backup file takes, and the room in which a record
// composes its own.
inline constexpr size_t kMaxRecordBytes = 1024;

// Where a record text is composed. The functions below write at `out` and return the end, and may
// scribble up to kScratch bytes beyond it; the comment names the printf conversion whose text it
// is.
inline constexpr size_t kScratch = 16;
using RecordBuffer = char[kMaxRecordBytes + kScratch];

char* WriteDecimal(char* out, int64_t value);                 // %d, %u
char* WriteFixedPoint(char* out, float value, int decimals);  // %.1f, %.2f

// The eight hexadecimal digits of `value` in the order of memory. All at once: a record has two
// dozen numbers of unforeseeable lengths, and a loop over digits would mispredict at each.
inline uint64_t HexDigits(uint32_t value) {
  uint64_t nibbles = value;
  nibbles = (nibbles << 16 | nibbles) & 0x0000FFFF0000FFFF;
  nibbles = (nibbles << 8 | nibbles) & 0x00FF00FF00FF00FF;
  nibbles = (nibbles << 4 | nibbles) & 0x0F0F0F0F0F0F0F0F;
  const uint64_t letters = (nibbles + 0x0606060606060606) >> 4 & 0x0101010101010101;
  const uint64_t digits = nibbles + 0x3030303030303030 + letters * ('a' - '0' - 10);
  return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? __builtin_bswap64(digits) : digits;
}

inline char* WriteHexDigits(char* out, uint32_t value) {
  if (value < 10) {
    *out = static_cast<char>('0' + value);
    return out + 1;
  }
  const int leading_zeros = __builtin_clz(value | 1) / 4;
  const uint64_t digits = HexDigits(value << 4 * leading_zeros);
  memcpy(out, &digits, sizeof digits);
  return out + sizeof digits - leading_zeros;
}

inline char* WriteHex(char* out, uint64_t value) {  // 0x%lx, and 0x%x of a value in 32 bits
  memcpy(out, "0x", 3);
  out += 2;
  if (value >> 32 == 0) {
    return WriteHexDigits(out, static_cast<uint32_t>(value));
  }
  // Behind the first half the second has all its eight digits.
  out = WriteHexDigits(out, static_cast<uint32_t>(value >> 32));
  const uint64_t digits = HexDigits(static_cast<uint32_t>(value));
  memcpy(out, &digits, sizeof digits);
  return out + sizeof digits;
}

inline char* WriteHexField(char* out, uint32_t value) {  // ,0x%x
  memcpy(out, ",0x", 4);
  return WriteHexDigits(out + 3, value);
}

inline char* WriteHexField(char* out, int32_t value) {
  return WriteHexField(out, static_cast<uint32_t>(value));
}

template <size_t N>
char* WriteHexFields(char* out, const std::array<int32_t, N>& values) {
  for (const int32_t value : values) {
    out = WriteHexField(out, value);
  }
  return out;
}

// Reads fields in exactly the form in which they are written. Where an operation returns false,
// the text may still be valid to scanf, which takes blanks, signs, longer numbers and exponents.
class RecordReader {
 public:
  explicit RecordReader(std::string_view text)
      : position_(text.data()), end_(text.data() + text.size()), begin_(text.data()) {}

  bool HexLong(unsigned long long* value);

  // A comma and a number.
  bool HexField(uint32_t* value);
  bool HexField(int32_t* value);
  bool DecimalField(uint32_t* value);
  bool FixedPointField(float* value);

  template <size_t N>
  bool HexFields(std::array<int32_t, N>* values) {
    for (int32_t& value : *values) {
      if (!HexField(&value)) {
        return false;
      }
    }
    return true;
  }

  size_t Consumed() const { return static_cast<size_t>(position_ - begin_); }

 private:
  bool Comma();
  bool HexNumber(int limit, uint64_t* value);
  bool DecimalNumber(int limit, uint64_t* value);

  const char* position_;
  const char* end_;
  const char* begin_;
};

// What every record logs about a text that does not parse; errno says what scanf made of it.
void LogParseFailure(const char* tag, const char* signature, const std::string& text);

// Where scanf stores a %x of a signed field.
inline unsigned* AsUnsigned(int32_t* value) { return reinterpret_cast<unsigned*>(value); }

// The forms of field in the pattern by which a base record removes its part of a text.
enum class FieldForm {
  kHex,         // 0x[0-9a-fA-F]+
  kDecimal,     // [0-9]+
  kFixedPoint,  // -?[0-9]+([.][0-9]+)?
};

// Removes from `text` the first match of the comma-joined forms, as a regular expression of them
// with first-only replacement would. Linear in the length and without recursion, which a regular
// expression engine does not promise for the texts of a damaged file.
void RemoveFirstMatch(std::string& text, std::initializer_list<FieldForm> forms);

}  // namespace android::fp_utils
