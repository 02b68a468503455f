// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <regex>
#include <string>

#include "fp_utils/enroll_event.h"

// The record text by printf, scanf and a regular expression, as in plain_auth_event.h.

namespace fp_reference {

std::string PlainBackupString(const android::fp_utils::EnrollEvent& event);
std::string PlainBackupString(const android::fp_utils::EnrollEventG7& event);

std::regex EnrollEventPattern();
bool PlainLoad(android::fp_utils::EnrollEvent& event, std::string& text, const std::regex& pattern);
bool PlainLoad(android::fp_utils::EnrollEventG7& event, std::string& text,
               const std::regex& pattern);

}  // namespace fp_reference
