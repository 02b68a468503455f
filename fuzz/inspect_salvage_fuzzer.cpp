// SPDX-License-Identifier: Apache-2.0
//
// Makes fp_inspect read arbitrary content as a backup file. It must not crash, the offsets of the
// records must ascend, and the frame of a salvaged record must have a correct CRC.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "fp_utils/crc32.h"
#include "fuzzed_device.h"
#include "reading/read.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fp_fuzz::BootInMemory();
  const std::string file(reinterpret_cast<const char*>(data), size);
  auto input = fp_inspect::ByteWindow::OfBytes(file);
  const auto contents = fp_inspect::ReadInput(input, "x", fp_inspect::InputKind::kBackup);
  size_t not_salvaged = 0;
  for (const auto& snapshot : contents.snapshots) {
    uint64_t lowest_offset = 0;
    for (const auto& record : snapshot.records) {
      unsigned crc = 0;
      unsigned long length = 0;
      int header = 0;
      const char* const frame = file.c_str() + record.offset;
      if (record.offset < lowest_offset || record.offset >= size ||
          sscanf(frame, "0x%x,0x%lx%n", &crc, &length, &header) != 2) {
        abort();
      }
      lowest_offset = record.offset + 1;
      not_salvaged += record.salvaged ? 0 : 1;
      const uint64_t text = record.offset + static_cast<uint64_t>(header) + 1;
      if (record.salvaged && length <= size && text + length <= size && file[text - 1] == ',' &&
          android::fp_utils::crc32(file.data() + text, length) != crc) {
        abort();
      }
    }
  }
  if (not_salvaged != contents.loaded) {
    abort();
  }
  return 0;
}
