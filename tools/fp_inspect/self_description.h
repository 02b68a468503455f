// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace fp_inspect {

// Generates the manual page or a shell completion script from the options of the program. `form` is
// "man", "bash" or "zsh".
std::string Describe(const CLI::App& app, const std::string& form);

}  // namespace fp_inspect
