#include "tests/fuzz/Fuzz.h"

/// Runs every input of a folder. The name stands in front of what goes wrong with it.
int main(int, char** argv) {
  int inputs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    std::fprintf(stderr, "%s\n", entry.path().filename().string().c_str());
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<char> input(std::istreambuf_iterator<char>(file), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    ++inputs;
  }
  return inputs > 0 ? 0 : 1;
}
