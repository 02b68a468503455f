// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

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

TEST_F(DevicePathTest, TouchRequestsKeepTheBytesThatCanBeRead) {
  TouchNode node;
  const int fd = open("/dev/fth_fd", O_RDWR | O_CLOEXEC);
  const std::string bytes(40, 'b');
  ioctl(fd, 1, bytes.data());
  ioctl(fd, 2, 3);
  const std::vector<TouchNode::Request> requests = node.TakeRequests();
  ASSERT_EQ(2u, requests.size());
  EXPECT_EQ(std::vector<uint8_t>(32, 'b'), requests[0].argument);
  EXPECT_TRUE(requests[1].argument.empty()) << "a number";
  close(fd);
}

}  // namespace
}  // namespace fp_host
