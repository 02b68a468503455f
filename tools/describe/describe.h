// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace fp_tools {

// The manual page and the completions of the shells, made from the options that the program parses.
// The app has the program's name; `form` is "man", "bash" or "zsh"; `arguments` is what follows the
// command in the synopsis.
std::string Describe(const CLI::App& app, const std::string& form, const std::string& arguments);

}  // namespace fp_tools
