// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdio>

namespace android::fp_utils {

// One dump line per record, numbered from 0, in the order of the history.
template <typename Records>
void DumpRecords(int fd, const Records& records) {
  int index = 0;
  for (const auto& record : records) {
    dprintf(fd, "  #%03d %s\n", index++, record->ToDebugString().c_str());
  }
}

}  // namespace android::fp_utils
