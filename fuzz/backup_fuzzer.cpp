// SPDX-License-Identifier: Apache-2.0
//
// Loads arbitrary content as the backup file of the history FUZZED_HISTORY. It must not crash. A
// record that is added and saved must be loaded again, as the last one, and no more records may be
// loaded than were saved.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>

#include "fuzzed_device.h"
#include "support/history_kinds.h"

using fp_test::Frame;
using fp_test::HistoryKind;

namespace {

const HistoryKind& Kind() {
  static const HistoryKind kind = [] {
    for (const HistoryKind& candidate : fp_test::AllHistoryKinds()) {
      if (candidate.name == std::string(FUZZED_HISTORY)) {
        return candidate;
      }
    }
    abort();
  }();
  return kind;
}

// The record texts of all well-formed frames, even with a wrong CRC.
std::vector<std::string> FramedTexts(const std::string& file) {
  std::vector<std::string> texts;
  size_t at = 0;
  unsigned crc = 0;
  unsigned long length = 0;
  int header = 0;
  while (at < file.size() &&
         sscanf(file.c_str() + at, "0x%x,0x%lx,%n", &crc, &length, &header) == 2 && header > 0) {
    at += static_cast<size_t>(header);
    texts.push_back(file.substr(std::min(at, file.size()), std::min(length, 2000UL)));
    at += texts.back().size();
    header = 0;
  }
  return texts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fp_fuzz::BootInMemory();
  std::ofstream(fp_host::HostPath(Kind().path), std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  auto history = Kind().start();
  history->AddAndSave(1);
  const auto saved = history->RecordTexts();
  const auto loaded = Kind().start()->RecordTexts();
  // The scan can accept a record whose rewritten text it does not accept, so records may be missing
  // the second time, but there may not be more.
  if (loaded.empty() || loaded.size() > saved.size() || loaded.back() != saved.back()) {
    abort();
  }
  return 0;
}

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

// A mutation of the whole file rarely passes the CRC check, so half of the mutations change one
// record and give its frame a correct CRC.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned int random) {
  std::vector<std::string> texts =
      FramedTexts(std::string(reinterpret_cast<const char*>(data), size));
  if (texts.empty() || random % 2 == 0) {
    return LLVMFuzzerMutate(data, size, max_size);
  }
  std::string& text = texts[random / 2 % texts.size()];
  const size_t old_size = text.size();
  text.resize(old_size + 64);
  text.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(text.data()), old_size, old_size + 64));
  std::string file;
  for (const std::string& each : texts) {
    file += Frame(each);
  }
  file.resize(std::min(file.size(), max_size));
  std::copy(file.begin(), file.end(), data);
  return file.size();
}
