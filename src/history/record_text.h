// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace android::fp_utils {

// Logs that a record text does not parse, with errno as scanf left it.
void LogParseFailure(const char* tag, const char* signature, const std::string& text);

// Lets scanf store a %x in a signed field.
inline unsigned* AsUnsigned(int32_t* value) { return reinterpret_cast<unsigned*>(value); }

// Removes the first match of comma-separated fields, so that a derived record finds its own part at
// the front. `types` has one character per field:
//   x   0x[0-9a-fA-F]+
//   d   [0-9]+
//   f   -?[0-9]+([.][0-9]+)?
// The result is that of a regular expression with first-only replacement, but the time is linear in
// the length and there is no recursion. std::regex promises neither for the text of a damaged file.
void RemoveFields(std::string& text, const char* types);

}  // namespace android::fp_utils
