// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <regex>
#include <string>

#include "fp_utils/auth_event.h"

// The record text by printf, scanf and a regular expression: what the library's own writer and
// reader have to match, and what the benchmarks measure them against.

namespace fp_reference {

std::string PlainBackupString(const android::fp_utils::AuthEvent& event);
std::string PlainBackupString(const android::fp_utils::AuthEventG7& event);

std::regex AuthEventPattern();
bool PlainLoad(android::fp_utils::AuthEvent& event, std::string& text, const std::regex& pattern);
bool PlainLoad(android::fp_utils::AuthEventG7& event, std::string& text, const std::regex& pattern);

}  // namespace fp_reference
