// SPDX-License-Identifier: Apache-2.0
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <android-base/properties.h>

#include "fp_host/testing.h"

namespace fp_host {

namespace fs = std::filesystem;

DeviceTest::~DeviceTest() {
  ClearFaults();
  ResumeWallClock();
}

bool DeviceTest::Exists(const std::string& path) { return fs::exists(HostPath(path)); }

std::string DeviceTest::ReadFile(const std::string& path) {
  std::ostringstream content;
  content << std::ifstream(HostPath(path), std::ios::binary).rdbuf();
  return content.str();
}

void DeviceTest::WriteFile(const std::string& path, const std::string& content) {
  std::ofstream file(HostPath(path), std::ios::binary);
  file << content << std::flush;
  EXPECT_TRUE(file.good()) << path << " cannot be written";
}

void DeviceTest::Remove(const std::string& path) { fs::remove_all(HostPath(path)); }

unsigned DeviceTest::ModeOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(0, stat(HostPath(path).c_str(), &status)) << path;
  return status.st_mode & 07777;
}

ScopedProperty::ScopedProperty(std::string name, const std::string& value)
    : name_(std::move(name)), former_(android::base::GetProperty(name_, "")) {
  android::base::SetProperty(name_, value);
}

ScopedProperty::~ScopedProperty() { android::base::SetProperty(name_, former_); }

std::string DumpText(const std::function<void(int fd)>& dump) {
  const int fd = memfd_create("dump", MFD_CLOEXEC);
  if (fd < 0) {
    ADD_FAILURE() << "no file for the dump: " << strerror(errno);
    return "";
  }
  dump(fd);
  std::string text(static_cast<size_t>(lseek(fd, 0, SEEK_END)), '\0');
  EXPECT_EQ(static_cast<ssize_t>(text.size()), pread(fd, text.data(), text.size(), 0));
  close(fd);
  return text;
}

long CountDescriptors() { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); }

long CountThreads() { return std::distance(fs::directory_iterator("/proc/self/task"), {}); }

}  // namespace fp_host
