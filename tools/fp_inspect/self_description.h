// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace fp_inspect {

// The manual page and the completions of the shells, made from the options that the program parses:
// `form` is "man", "bash" or "zsh".
std::string Describe(const CLI::App& app, const std::string& form);

}  // namespace fp_inspect
