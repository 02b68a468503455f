// SPDX-License-Identifier: Apache-2.0
#include "history/record_text.h"

#include <cerrno>
#include <cstring>

#include "common/log.h"

namespace android::fp_utils {
namespace {

constexpr char kDecimal[] = "0123456789";
constexpr char kHex[] = "0123456789abcdefABCDEF";

// The end of the field that begins at `at`, or null. The next field starts after a comma, which no
// field contains, so only the longest match has to be tried.
const char* EndOfField(const char* at, char field) {
  if (field == 'x') {
    at += strncmp(at, "0x", 2) == 0 ? 2 : strlen(at);
  } else if (field == 'f' && *at == '-') {
    ++at;
  }
  const size_t digits = strspn(at, field == 'x' ? kHex : kDecimal);
  if (digits == 0) {
    return nullptr;
  }
  at += digits;
  const size_t decimals = field == 'f' && *at == '.' ? strspn(at + 1, kDecimal) : 0;
  return decimals == 0 ? at : at + 1 + decimals;
}

// The same for several fields with commas in between.
const char* EndOfFields(const char* at, const char* fields) {
  at = EndOfField(at, *fields);
  while (at != nullptr && *++fields != '\0') {
    at = *at == ',' ? EndOfField(at + 1, *fields) : nullptr;
  }
  return at;
}

}  // namespace

void LogParseFailure(const char* tag, const char* signature, const std::string& text) {
  FP_LOG_ERROR(tag, "[%s] failed to parse str:'%s' with error %d", signature, text.c_str(), -errno);
}

void RemoveFirstMatch(std::string& text, const char* fields) {
  for (size_t from = 0; from < text.size(); ++from) {
    const char* const begin = text.c_str() + from;
    if (const char* const end = EndOfFields(begin, fields)) {
      text.erase(from, static_cast<size_t>(end - begin));
      return;
    }
  }
}

}  // namespace android::fp_utils
