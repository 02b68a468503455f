// SPDX-License-Identifier: Apache-2.0
//
// Gives a fuzz target every file of the folders named on the command line, in an ordinary program.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Of libFuzzer's run time; only mutators call it.
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
