// SPDX-License-Identifier: Apache-2.0
//
// Makes fp_inspect read arbitrary content as a dump. It must not crash, and it must be able to read
// the text that it prints for each record.
#include <cstdint>
#include <cstdlib>

#include "fuzzed_device.h"
#include "reading/dump_line.h"
#include "reading/read.h"

using fp_inspect::Record;
using fp_inspect::RecordKind;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fp_fuzz::BootInMemory();
  auto input = fp_inspect::ByteWindow::OfBytes({reinterpret_cast<const char*>(data), size});
  const auto contents = fp_inspect::ReadInput(input, "x", fp_inspect::InputKind::kDump);
  for (const auto& snapshot : contents.snapshots) {
    for (const Record& record : snapshot.records) {
      const std::string words = fp_inspect::DumpText(record);
      const bool reads =
          snapshot.kind == RecordKind::kAttempt      ? fp_inspect::ReadAttempt(words).has_value()
          : snapshot.kind == RecordKind::kEnrollment ? fp_inspect::ReadEnrollment(words).has_value()
                                                     : true;
      if (!reads || record.GetKind() != snapshot.kind) {
        abort();
      }
    }
  }
  return 0;
}
