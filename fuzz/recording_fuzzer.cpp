// SPDX-License-Identifier: Apache-2.0
//
// Plays arbitrary content as a recording of a touch screen. It must be refused with a message that
// begins with the name of the file, or give reports that the device can take.
#include <cstdint>
#include <cstdlib>
#include <fstream>

#include "fp_host/device.h"
#include "fp_host/touch_node.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const fp_host::ScratchFolder folder("fp_fuzz");
  const std::string path = folder.GetPath() + "/recording";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  size_t reports = 0;
  const auto push = [&reports](const std::vector<fp_host::TouchRecord>& records) {
    constexpr size_t kMaxRecords = 128;
    if (records.empty() || records.size() > kMaxRecords) {
      abort();
    }
    ++reports;
    return true;
  };
  const std::string error =
      fp_host::PlayTouchRecording(path, {1080, 2340}, fp_host::Pace::kAtOnce, push);
  if (error.empty() != (reports > 0) || (!error.empty() && error.rfind(path, 0) != 0)) {
    abort();
  }
  return 0;
}
