// Runs a fuzz target over files or directories of inputs, for builds without libFuzzer. Fails
// when it found no input, so that a misplaced corpus does not pass unread.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  int count = 0;
  const auto run = [&count](const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ++count;
  };
  for (int i = 1; i < argc; ++i) {
    if (!fs::is_directory(argv[i])) {
      run(argv[i]);
      continue;
    }
    for (const auto& entry : fs::recursive_directory_iterator(argv[i]))
      if (entry.is_regular_file()) run(entry.path());
  }
  std::printf("replayed %d inputs\n", count);
  return count > 0 ? 0 : 1;
}
