// Replays saved fuzz inputs through a target's entry point without libFuzzer, so the ordinary test
// suite (any compiler, sanitized or not) keeps every seed and every input that once crashed.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void Replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

// Arguments: files or folders; every regular file found is one input.
int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path root(argv[i]);
    if (!std::filesystem::exists(root)) continue;
    if (std::filesystem::is_regular_file(root)) {
      Replay(root);
      ++count;
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
      if (!entry.is_regular_file()) continue;
      Replay(entry.path());
      ++count;
    }
  }
  std::cout << "replayed " << count << " inputs\n";
  return 0;
}
