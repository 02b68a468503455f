// SPDX-License-Identifier: Apache-2.0
#include "device/tree.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>

#include "device/misuse.h"
#include "fp_host/device.h"

namespace fp_host {
namespace {

// Passes the root to child processes, whose preloaded copy of this library reads it.
constexpr char kRootVariable[] = "FP_DEVICE_ROOT";

constexpr const char* kDevicePrefixes[] = {"/data/vendor", "/dev/fth_fd", "/dev/trusty-log0",
                                           "/sys/firmware/devicetree"};

// The folders that init creates on the device; see platform/device.
constexpr const char* kBootFolders[] = {"/data/vendor/fingerprint",
                                        "/data/vendor/tombstones/fingerprint", "/dev",
                                        "/sys/firmware/devicetree/base/chosen/plat"};

char root[PATH_MAX] = "";
std::once_flag root_read;

const char* Root() {
  std::call_once(root_read, [] {
    const char* value = getenv(kRootVariable);
    if (value != nullptr && root[0] == '\0') {
      snprintf(root, sizeof root, "%s", value);
    }
  });
  return root[0] == '\0' ? "/nonexistent" : root;
}

bool BeginsWithComponent(const char* path, const char* prefix) {
  const size_t length = strlen(prefix);
  return strncmp(path, prefix, length) == 0 && (path[length] == '\0' || path[length] == '/');
}

// /data itself is redirected too, because programs that make or list a path folder by folder begin
// with it. Of the paths below it only /data/vendor is.
bool IsDataFolder(const char* path) {
  return strcmp(path, "/data") == 0 || strcmp(path, "/data/") == 0;
}

bool IsDevicePath(const char* path) {
  for (const char* prefix : kDevicePrefixes) {
    if (BeginsWithComponent(path, prefix)) {
      return true;
    }
  }
  return IsDataFolder(path);
}

// Makes child processes, such as shells, see the same device.
void PreloadIntoChildren() {
  Dl_info self = {};
  if (dladdr(reinterpret_cast<void*>(&SetDeviceRoot), &self) != 0 && self.dli_fname != nullptr) {
    setenv("LD_PRELOAD", std::filesystem::absolute(self.dli_fname).c_str(), 1);
  }
}

// Sanitizers intercept most calls before this library, but not mkdir().
void CheckLinkOrder() {
  Dl_info first = {}, self = {};
  if (dladdr(dlsym(RTLD_DEFAULT, "mkdir"), &first) == 0 || dladdr(root, &self) == 0 ||
      first.dli_fbase != self.dli_fbase) {
    AbortForMisuse("The program has to be linked with the device ahead of libc.");
  }
}

}  // namespace

TreePath::TreePath(const char* path)
    : original_(path), redirected_(path != nullptr && IsDevicePath(path)) {
  if (redirected_) {
    // Without printf, since benchmarks that open files include the time for this.
    const char* const device_root = Root();
    const size_t length = strlen(device_root);
    memcpy(buffer_, device_root, length);
    memccpy(buffer_ + length, path, '\0', sizeof buffer_ - length - 1);
    buffer_[sizeof buffer_ - 1] = '\0';
  }
}

void SetDeviceRoot(const std::string& new_root) {
  CheckLinkOrder();
  const std::string absolute = std::filesystem::absolute(new_root);
  snprintf(root, sizeof root, "%s", absolute.c_str());
  setenv(kRootVariable, root, 1);
  PreloadIntoChildren();
}

std::string HostPath(const std::string& device_path) { return Root() + device_path; }

void BootDevice() {
  for (const char* folder : kBootFolders) {
    std::filesystem::create_directories(HostPath(folder));
  }
}

}  // namespace fp_host
