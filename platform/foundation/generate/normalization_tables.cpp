// Writes the tables of platform/foundation/normalization_tables.h.
// Usage: generate_normalization_tables <UnicodeData.txt> <output.cpp>

#include "platform/foundation/normalization_tables.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kPageSize = 256;
constexpr std::size_t kPages = 0x1100;

using Page = std::array<std::uint16_t, kPageSize>;

struct UnicodeData {
  std::map<char32_t, std::uint16_t> combiningClasses;        // those that aren't 0
  std::map<char32_t, std::vector<char32_t>> decompositions;  // canonical ones, one step
};

std::vector<std::string> split(const std::string& line, char separator) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  for (std::string field; std::getline(stream, field, separator);) fields.push_back(field);
  return fields;
}

char32_t codePoint(const std::string& text) {
  const unsigned long value = std::stoul(text, nullptr, 16);
  if (value > 0x10FFFF) throw std::runtime_error("code point " + text + ": beyond 10FFFF");
  return static_cast<char32_t>(value);
}

// A line is: code point; name; category; combining class; bidi class; decomposition, tagged unless canonical; ...
// Ranges, written as a first and a last line, have neither classes nor decompositions.
UnicodeData readUnicodeData(const char* path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(std::string(path) + ": can't be opened");
  UnicodeData data;
  for (std::string line; std::getline(file, line);) {
    const std::vector<std::string> fields = split(line, ';');
    if (fields.size() < 6) throw std::runtime_error(std::string(path) + ": too few fields: " + line);
    const char32_t c = codePoint(fields[0]);
    const unsigned long combiningClass = std::stoul(fields[3]);
    if (combiningClass >= foundation::kFirstDecomposition) throw std::runtime_error("combining class: " + line);
    if (combiningClass != 0) data.combiningClasses[c] = static_cast<std::uint16_t>(combiningClass);
    if (fields[5].empty() || fields[5].front() == '<') continue;
    for (const std::string& part : split(fields[5], ' ')) data.decompositions[c].push_back(codePoint(part));
  }
  if (data.decompositions.empty()) throw std::runtime_error(std::string(path) + ": no decompositions");
  return data;
}

void decomposeFully(const UnicodeData& data, char32_t c, std::vector<char32_t>& result) {
  const auto found = data.decompositions.find(c);
  if (found == data.decompositions.end()) {
    result.push_back(c);
    return;
  }
  for (const char32_t part : found->second) decomposeFully(data, part, result);
}

void writeTables(const UnicodeData& data, std::ostream& out) {
  std::map<char32_t, std::uint16_t> values = data.combiningClasses;
  std::vector<char32_t> decompositions;
  for (const auto& [c, step] : data.decompositions) {
    const std::size_t value = foundation::kFirstDecomposition + decompositions.size();
    if (value > UINT16_MAX) throw std::runtime_error("the decompositions don't fit 16-bit positions");
    values[c] = static_cast<std::uint16_t>(value);
    std::vector<char32_t> full;
    decomposeFully(data, c, full);
    decompositions.push_back(static_cast<char32_t>(full.size()));
    decompositions.insert(decompositions.end(), full.begin(), full.end());
  }

  // Page 0 of the values is all zero; pages that hold something get their own.
  std::vector<Page> pages(1);
  std::array<std::size_t, kPages> pageOf{};
  for (const auto& [c, value] : values) {
    std::size_t& page = pageOf[c / kPageSize];
    if (page == 0) {
      page = pages.size();
      pages.emplace_back();
    }
    pages[page][c % kPageSize] = value;
  }
  if (pages.size() > kPageSize) throw std::runtime_error("more pages than a byte can number");

  out << "#include \"platform/foundation/normalization_tables.h\"\n\n"
      << "const std::uint8_t foundation::kNormalizationPages[" << kPages << "] = {";
  for (std::size_t i = 0; i < kPages; ++i) out << (i % 32 == 0 ? "\n" : "") << pageOf[i] << ",";
  out << "};\n\nconst std::uint16_t foundation::kNormalizationValues[][" << kPageSize << "] = {\n";
  for (const Page& page : pages) {
    out << "{";
    for (std::size_t i = 0; i < kPageSize; ++i) out << (i % 32 == 0 ? "\n" : "") << page[i] << ",";
    out << "},\n";
  }
  out << "};\n\nconst char32_t foundation::kDecompositions[] = {";
  for (std::size_t i = 0; i < decompositions.size(); ++i) {
    out << (i % 16 == 0 ? "\n" : "") << "0x" << std::hex << static_cast<std::uint32_t>(decompositions[i]) << ",";
  }
  out << "};\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: generate_normalization_tables <UnicodeData.txt> <output.cpp>\n";
    return EXIT_FAILURE;
  }
  try {
    const UnicodeData data = readUnicodeData(argv[1]);
    std::ofstream out(argv[2]);
    writeTables(data, out);
    if (!out.flush()) throw std::runtime_error(std::string(argv[2]) + ": can't be written");
  } catch (const std::exception& error) {
    std::cerr << "generate_normalization_tables: " << error.what() << "\n";
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
