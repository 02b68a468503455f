// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace fp_phone {

// The file of a program, or why the phone cannot be put under it.
struct Program {
  std::string path;
  std::string refusal = {};  // empty if the program can be run
  int exit_code = 0;         // if it cannot
};

// Looks `name` up as a shell does. Scripts are as good as their interpreter.
Program FindProgram(const std::string& name);

}  // namespace fp_phone
