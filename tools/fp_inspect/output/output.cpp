// SPDX-License-Identifier: Apache-2.0
#include "output/output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace fp_inspect {
namespace {

constexpr size_t kDamageShown = 5;

}  // namespace

std::unique_ptr<Output> MakeOutput(const std::string& format) {
  return format == "jsonl" ? MakeJsonlOutput()
         : format == "csv" ? MakeCsvOutput()
                           : MakeTextOutput();
}

std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; }, '?');
  return text;
}

void PrintError(const std::string& text) {
  const std::string line = "fp_inspect: " + Printable(text) + "\n";
  (void)!fwrite(line.data(), 1, line.size(), stderr);
}

void PrintDamage(const Device& device) {
  for (size_t i = 0; i < std::min(device.damage.size(), kDamageShown); ++i) {
    const Damage& damage = device.damage[i];
    PrintErrorf("damage at byte {}: {} ({})", damage.offset, Printable(damage.text), damage.check);
  }
  if (device.damage_count > kDamageShown) {
    PrintErrorf("{} more damaged places", device.damage_count - kDamageShown);
  }
}

}  // namespace fp_inspect
