// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// The simulated device's file tree. Programs linked with the simulated device find the device's
// absolute paths (/data/vendor, /dev/fth_fd, /dev/trusty-log0, /sys/firmware/devicetree) below a
// folder of the host; every other path is the host's own. Without a root these paths do not exist.
// The calls of the C library that take a path are redirected, also inside streams and Android's
// libraries, except those that search or make names themselves (mkstemp(), glob(), nftw(),
// fts_open()), execve(), dlopen(), and addresses of sockets. Only open() knows a touch node.
//
// Threading:  set the root before other threads use the device. Any thread may call HostPath().

namespace fp_host {

// Puts the device's files below `root`, for this process and the children that it starts; they are
// given the library by LD_PRELOAD. Aborts with a message if the program is not linked with the
// simulated device ahead of libc, because its files would be the machine's own.
void SetDeviceRoot(const std::string& root);

// The host's path of a device path.
std::string HostPath(const std::string& device_path);

// Creates the folders that the device's init creates at boot. Those that exist stay as they are.
// There are no nodes: a touch node is a TouchNode, and others are files that a test writes.
void BootDevice();

// A new folder, which the destructor removes with its content. It is in memory if /dev/shm is
// writable, since tests write many files.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::string& name);  // a random suffix is added
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::string& GetPath() const { return path_; }

 private:
  std::string path_;
};

// A freshly booted device in a new folder. The one that was made last is in effect; after its end
// the device's paths do not exist.
class ScratchDevice {
 public:
  explicit ScratchDevice(const std::string& name);

  const std::string& GetRoot() const { return folder_.GetPath(); }

 private:
  ScratchFolder folder_;
};

}  // namespace fp_host
