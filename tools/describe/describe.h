// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace fp_tools {

// Generates the manual page or a shell completion script from the options of a program, whose name
// `app` has. `format` is "man", "bash" or "zsh"; `arguments` follows the program in the synopsis.
std::string Describe(const CLI::App& app, const std::string& format, const std::string& arguments);

}  // namespace fp_tools
