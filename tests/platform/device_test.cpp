// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "fp_host/faults.h"
#include "fp_host/testing.h"
#include "fp_host/touch_node.h"

namespace fp_host {
namespace {

TEST(DeviceDeathTest, MisuseAborts) {
  EXPECT_DEATH(SetFault({.function = "stat", .error = EIO}), "no faults for stat\\(\\)");
  EXPECT_DEATH(SetFault({.function = "read"}), "needs an error, or a length");
  const TouchNode node;
  EXPECT_DEATH(TouchNode(), "only one may exist at a time");
}

using DevicePathTest = DeviceTest;

// How programs replace a file: none of these calls may reach the machine's own files.
TEST_F(DevicePathTest, RenamesAndListsFilesOfThePhone) {
  const char* const temporary = "/data/vendor/fingerprint/file.tmp";
  const char* const file = "/data/vendor/fingerprint/file";
  WriteFile(temporary, "content");
  SetFault({.function = "rename", .error = ENOSPC});
  EXPECT_EQ(-1, rename(temporary, file));
  EXPECT_EQ(ENOSPC, errno);
  EXPECT_EQ(0, rename(temporary, file));
  EXPECT_EQ("content", ReadFile(file));
  const std::filesystem::directory_iterator entries("/data/vendor/fingerprint");
  EXPECT_EQ(1, std::distance(entries, {}));
}

}  // namespace
}  // namespace fp_host
