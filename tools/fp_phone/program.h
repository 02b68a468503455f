// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace fp_phone {

// The file of a program, or why it cannot run on the phone.
struct Program {
  std::string path;
  std::string refusal = {};  // empty if the program can be run
  int exit_code = 0;         // if it cannot
};

// Looks `name` up as a shell does. A script is refused if its interpreter is.
Program FindProgram(const std::string& name);

}  // namespace fp_phone
