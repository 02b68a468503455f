// SPDX-License-Identifier: Apache-2.0
#include "reading/read.h"

#include <utility>

#include "reading/backup_reader.h"
#include "reading/dump_reader.h"

namespace fp_inspect {

// How much of the beginning of an input is used to determine its kind.
constexpr size_t kBeginning = 1 << 16;

Contents ReadInput(const std::string& path, InputKind kind) {
  ByteWindow input(path);
  return ReadInput(input, path, kind);
}

Contents ReadInput(ByteWindow& input, std::string name, InputKind kind) {
  Contents contents;
  contents.name = std::move(name);
  if (kind == InputKind::kNone) {
    const std::string_view beginning = input.Fill(kBeginning).substr(0, kBeginning);
    kind = LooksLikeBackup(beginning) ? InputKind::kBackup : InputKind::kDump;
  }
  if (kind == InputKind::kBackup) {
    ReadBackup(input, &contents);
  } else {
    ReadDump(input, &contents);
  }
  contents.bytes = input.GetOffset();
  return contents;
}

}  // namespace fp_inspect
