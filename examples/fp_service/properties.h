// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace fp_service {

using Properties = std::vector<std::pair<std::string, std::string>>;

// Parses "NAME=VALUE" of a system property that the library reads. Throws std::invalid_argument if
// the library reads no such property or would not accept the value; the message then names the
// value that stays in effect.
std::pair<std::string, std::string> ParseProperty(const std::string& text);

void SetProperties(const Properties& properties);

}  // namespace fp_service
