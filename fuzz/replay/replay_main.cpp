// Replays fuzz inputs without fuzzing: every regular file of each directory
// (or each file) named on the command line goes once through the harness, in
// name order. A crash or sanitizer report ends the program; otherwise it
// prints how many inputs ran and exits 0. With --allow-missing first, a
// path that does not exist replays nothing instead of failing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> inputsOf(const fs::path& arg) {
  std::vector<fs::path> files;
  if (fs::is_directory(arg)) {
    for (const fs::directory_entry& e : fs::directory_iterator(arg)) {
      const std::string name = e.path().filename().string();
      if (e.is_regular_file() && !name.empty() && name[0] != '.') files.push_back(e.path());
    }
    std::sort(files.begin(), files.end());
  } else {
    files.push_back(arg);
  }
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  int first = 1;
  const bool allow_missing = argc > 1 && std::string(argv[1]) == "--allow-missing";
  if (allow_missing) ++first;
  if (argc <= first) {
    std::fprintf(stderr, "usage: %s [--allow-missing] <dir-or-file>...\n", argv[0]);
    return 2;
  }
  std::size_t ran = 0;
  for (int i = first; i < argc; ++i) {
    if (!fs::exists(argv[i])) {
      std::fprintf(stderr, "%s: no such file or directory\n", argv[i]);
      if (allow_missing) continue;
      return 2;
    }
    for (const fs::path& file : inputsOf(argv[i])) {
      std::ifstream f(file, std::ios::binary);
      const std::vector<char> bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
      if (!f.good() && !f.eof()) {
        std::fprintf(stderr, "%s: cannot read\n", file.string().c_str());
        return 2;
      }
      std::printf("%s\n", file.string().c_str());
      std::fflush(stdout);
      // A copy of exactly the input's size, so a harness overread shows.
      std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
      LLVMFuzzerTestOneInput(data.data(), data.size());
      ++ran;
    }
  }
  std::printf("%zu inputs replayed\n", ran);
  return 0;
}
