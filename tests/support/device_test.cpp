// SPDX-License-Identifier: Apache-2.0
#include "support/device_test.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fp_test {

namespace fs = std::filesystem;

DeviceTest::~DeviceTest() { fp_host::ClearFaults(); }

bool DeviceTest::Exists(const std::string& path) { return fs::exists(fp_host::HostPath(path)); }

std::string DeviceTest::ReadFile(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(fp_host::HostPath(path), std::ios::binary).rdbuf();
  return content.str();
}

void DeviceTest::WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(fp_host::HostPath(path), std::ios::binary) << content;
}

void DeviceTest::Remove(const std::string& path) { fs::remove_all(fp_host::HostPath(path)); }

unsigned DeviceTest::ModeOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(0, stat(fp_host::HostPath(path).c_str(), &status)) << path;
  return status.st_mode & 07777;
}

std::string DumpText(const std::function<void(int fd)>& dump) {
  const int fd = memfd_create("dump", MFD_CLOEXEC);
  dump(fd);
  std::string text(static_cast<size_t>(lseek(fd, 0, SEEK_END)), '\0');
  EXPECT_EQ(static_cast<ssize_t>(text.size()), pread(fd, text.data(), text.size(), 0));
  close(fd);
  return text;
}

int Share(int full) {
  const char* share = getenv("FP_TEST_SHARE");
  return share == nullptr ? full : std::max(1, static_cast<int>(full * atof(share)));
}

void RunSeeded(const char* what, int count, uint64_t first,
               const std::function<void(uint64_t seed)>& run) {
  const char* given = getenv("FP_TEST_SEED");
  first = given == nullptr ? first : strtoull(given, nullptr, 0);
  printf("%d %s, FP_TEST_SEED=%lu\n", count, what, first);
  for (uint64_t seed = first; count-- > 0 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("FP_TEST_SEED=" + std::to_string(seed));
    run(seed);
  }
}

}  // namespace fp_test
