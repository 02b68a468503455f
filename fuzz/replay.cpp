// SPDX-License-Identifier: Apache-2.0
//
// Runs a fuzz target on every file of the folders given on the command line, as an ordinary
// program.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Stands in for libFuzzer's function, which only mutators call.
extern "C" size_t LLVMFuzzerMutate(uint8_t* /*data*/, size_t size, size_t /*max_size*/) {
  return size;
}

int main(int argc, char** argv) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string content{std::istreambuf_iterator<char>(file), {}};
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(content.data()), content.size());
      ++inputs;
    }
  }
  printf("%d inputs\n", inputs);
  return inputs > 0 ? 0 : 1;
}
