// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <filesystem>

#include "device/misuse.h"
#include "fp_host/device.h"

namespace fp_host {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder(const std::string& name) {
  const fs::path memory = "/dev/shm";
  const bool has_memory = access(memory.c_str(), W_OK) == 0;
  path_ = (has_memory ? memory : fs::temp_directory_path()) / (name + ".XXXXXX");
  if (mkdtemp(path_.data()) == nullptr) {
    AbortForMisuse("The folder " + path_ + " cannot be made.");
  }
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

ScratchDevice::ScratchDevice(const std::string& name) : folder_(name) {
  SetDeviceRoot(GetRoot());
  BootDevice();
}

}  // namespace fp_host
