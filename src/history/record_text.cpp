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
const char* EndOfField(const char* at, char type) {
  if (type == 'x') {
    at += strncmp(at, "0x", 2) == 0 ? 2 : strlen(at);
  } else if (type == 'f' && *at == '-') {
    ++at;
  }
  const size_t digits = strspn(at, type == 'x' ? kHex : kDecimal);
  if (digits == 0) {
    return nullptr;
  }
  at += digits;
  const size_t decimals = type == 'f' && *at == '.' ? strspn(at + 1, kDecimal) : 0;
  return decimals == 0 ? at : at + 1 + decimals;
}

// The end of several comma-separated fields, or null.
const char* EndOfFields(const char* at, const char* types) {
  at = EndOfField(at, *types);
  while (at != nullptr && *++types != '\0') {
    at = *at == ',' ? EndOfField(at + 1, *types) : nullptr;
  }
  return at;
}

}  // namespace

void LogParseFailure(const char* tag, const char* signature, const std::string& text) {
  FP_LOG_ERROR(tag, "[%s] failed to parse str:'%s' with error %d", signature, text.c_str(), -errno);
}

void RemoveFields(std::string& text, const char* types) {
  for (size_t from = 0; from < text.size(); ++from) {
    const char* const begin = text.c_str() + from;
    if (const char* const end = EndOfFields(begin, types)) {
      text.erase(from, static_cast<size_t>(end - begin));
      return;
    }
  }
}

}  // namespace android::fp_utils
