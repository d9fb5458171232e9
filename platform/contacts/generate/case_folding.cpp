// Writes the table of platform/contacts/case_folding.h.
// Usage: generate_case_folding <CaseFolding.txt> <output.cpp>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

// A line is: code point; status; mapping; # name. C and F make the full folding.
void generate(const char* input, const char* output) {
  std::ifstream file(input);
  if (!file) throw std::runtime_error(std::string(input) + ": can't be opened");
  std::ostringstream rows;
  int count = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line.substr(0, line.find('#')));
    std::string character;
    std::string status;
    std::string mapping;
    if (!std::getline(fields, character, ';') || !std::getline(fields, status, ';')) continue;
    if (!std::getline(fields, mapping, ';') || (status != " C" && status != " F")) continue;
    rows << "    {0x" << character << ", {";
    std::istringstream parts(mapping);
    int used = 0;
    for (std::string part; parts >> part; ++used) rows << "0x" << part << ", ";
    if (used < 1 || used > 3) throw std::runtime_error(std::string(input) + ": mapping of another length: " + line);
    rows << "}},\n";
    ++count;
  }
  if (count == 0) throw std::runtime_error(std::string(input) + ": no foldings");
  std::ofstream result(output);
  result << "#include \"platform/contacts/case_folding.h\"\n\nnamespace {\n\n"
         << "constexpr contacts::CaseFolding kTable[] = {\n"
         << rows.str() << "};\n\n}  // namespace\n\n"
         << "const std::span<const contacts::CaseFolding> contacts::kCaseFoldings{kTable};\n";
  if (!result.flush()) throw std::runtime_error(std::string(output) + ": can't be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: generate_case_folding <CaseFolding.txt> <output.cpp>\n";
    return EXIT_FAILURE;
  }
  try {
    generate(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::cerr << "generate_case_folding: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
