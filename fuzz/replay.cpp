// Stands in for libFuzzer: runs the target over every file of the folders given, each named before it is run, and over
// random inputs: -runs=N of them, each made from a number of its own, from -seed=S on.

#include "fuzz/target.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kLongestInput = 4096;

void run(const std::string& name, const std::string& bytes) {
  std::fprintf(stderr, "%s\n", name.c_str());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

std::string randomInput(unsigned long seed) {
  std::mt19937_64 random(seed);
  std::string bytes(random() % kLongestInput, '\0');
  std::ranges::generate(bytes, [&] { return static_cast<char>(random()); });
  return bytes;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  std::vector<std::filesystem::path> files;
  unsigned long runs = 0;
  unsigned long seed = 1;
  for (int i = 1; i < argumentCount; ++i) {
    const std::string argument = arguments[i];
    if (argument.starts_with("-runs=")) {
      runs = std::stoul(argument.substr(6));
    } else if (argument.starts_with("-seed=")) {
      seed = std::stoul(argument.substr(6));
    } else {
      for (const auto& entry : std::filesystem::directory_iterator(argument)) files.push_back(entry.path());
    }
  }
  std::ranges::sort(files);
  for (const auto& file : files) {
    std::ifstream stream(file, std::ios::binary);
    run(file, std::string(std::istreambuf_iterator<char>(stream), {}));
  }
  for (unsigned long i = 0; i < runs; ++i) run("seed " + std::to_string(seed + i), randomInput(seed + i));
  return files.empty() && runs == 0 ? 1 : 0;
}
