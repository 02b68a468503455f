// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "fp_host/device.h"

namespace fp_test {

struct ProgramResult {
  int exit_code;
  std::string output;

  bool Has(const std::string& text) const { return output.find(text) != std::string::npos; }
};

// Runs a program as its user does, in a folder of the test's own.
class ProgramTest : public ::testing::Test {
 protected:
  struct Case {
    std::string arguments;
    int exit_code;
    std::string output;  // a part of it
  };

  // Runs a line of shell and returns what it writes to both outputs.
  ProgramResult Shell(const std::string& line) const {
    const std::string command = "exec 2>&1; export TZ=UTC; cd " + folder_.string() + " && " + line;
    FILE* const pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[4096];
    for (size_t size; (size = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
      output.append(buffer, size);
    }
    return {WEXITSTATUS(pclose(pipe)), output};
  }

  // Runs the program.
  virtual ProgramResult Run(const std::string& arguments) const = 0;

  template <size_t kCount>
  void Check(const Case (&cases)[kCount]) const {
    for (const auto& [arguments, exit_code, output] : cases) {
      const ProgramResult result = Run(arguments);
      EXPECT_EQ(exit_code, result.exit_code) << arguments << ": " << result.output;
      EXPECT_TRUE(result.Has(output)) << arguments << ": " << result.output;
      EXPECT_FALSE(result.Has("\x1b")) << arguments << ": the terminal would obey it";
    }
  }

  void Write(const std::string& name, const std::string& content, unsigned mode = 0644) const {
    std::filesystem::create_directories((folder_ / name).parent_path());
    std::ofstream(folder_ / name, std::ios::binary) << content;
    chmod((folder_ / name).c_str(), mode);
  }

 private:
  const fp_host::ScratchFolder scratch_{"program"};

 protected:
  const std::filesystem::path folder_ = scratch_.GetPath();
};

}  // namespace fp_test
