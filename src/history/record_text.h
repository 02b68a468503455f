// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace android::fp_utils {

// What every record logs about a text that does not parse; errno says what scanf made of it.
void LogParseFailure(const char* tag, const char* signature, const std::string& text);

// Where scanf stores a %x of a signed field.
inline unsigned* AsUnsigned(int32_t* value) { return reinterpret_cast<unsigned*>(value); }

// The part of a text that a base record removes so that a derived one finds its own: the first
// match of comma-joined fields, one character of `fields` for each.
//   x   0x[0-9a-fA-F]+
//   d   [0-9]+
//   f   -?[0-9]+([.][0-9]+)?
// That is what a regular expression of them with first-only replacement removes, but linear in the
// length and without recursion, which an engine of such expressions does not promise for the texts
// of a damaged file.
void RemoveFirstMatch(std::string& text, const char* fields);

}  // namespace android::fp_utils
