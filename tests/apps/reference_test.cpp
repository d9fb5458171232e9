#include "tests/apps/running_command.h"
#include "tests/contacts/contacts_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

// The documents for host programmers, against the classes as the host sees them.

namespace {

const std::filesystem::path kSource = SOURCE;
const std::filesystem::path kReference = kSource / "docs" / "reference";

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

struct Entry {
  std::string member;  // its kind and declaration
  std::string value;   // in the column behind it, if any
};

// What stands between the first backquote from there on and the next.
std::string quotedIn(const std::string& line, std::size_t from = 0) {
  const std::size_t start = line.find('`', from) + 1;
  return line.substr(start, line.find('`', start) - start);
}

// What a page has in its sections of members: headings, or rows of tables.
std::vector<Entry> entriesOf(const std::string& page) {
  std::vector<Entry> entries;
  std::string kind;
  for (const std::string& line : linesOf(bytesOf(kReference / page))) {
    if (line.starts_with("## ")) kind = line.substr(3);
    if (kind.empty() || !(line.starts_with("### `") || line.starts_with("| `"))) continue;
    const std::string member = quotedIn(line);
    const std::size_t column = line.find('|', line.find(member) + member.size());
    const bool hasValue = column != std::string::npos && line.substr(column).starts_with("| `");
    entries.push_back({kind + ": " + member, hasValue ? quotedIn(line, column) : ""});
  }
  return entries;
}

Lines registeredMembers(const std::string& className) {
  Lines members;
  std::string kind;
  for (const std::string& line : linesOf(outputOf({"classes", className}))) {
    if (line.starts_with("  ")) {
      members.push_back(kind + ": " + line.substr(2));
    } else {
      kind = line;
    }
  }
  return members;
}

struct Example {
  std::string place;
  std::string language;
  std::string program;
  std::string output;
};

// The blocks that are programs, each with the block that must follow it.
std::vector<Example> examplesIn(const std::filesystem::path& page) {
  std::vector<Example> examples;
  const Lines lines = linesOf(bytesOf(page));
  bool isOutputDue = false;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!lines[i].starts_with("```")) continue;
    const std::string language = lines[i].substr(3);
    const std::string place = page.filename().string() + ":" + std::to_string(i + 1);
    std::string text;
    while (lines.at(++i) != "```") text += lines[i] + "\n";
    EXPECT_EQ(isOutputDue, language == "text") << place;
    isOutputDue = language == "basic" || language == "sh";
    if (isOutputDue) examples.push_back({place, language, text, ""});
    if (language == "text" && !examples.empty()) examples.back().output = text;
  }
  EXPECT_FALSE(isOutputDue) << page;
  return examples;
}

std::string printed(const Example& example) {
  const auto bin = std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "bin";
  const std::string command =
      "PATH='" + bin.string() + "':$PATH; exec 2>&1; " +
      (example.language == "sh" ? example.program : "contacts run <<'PROGRAM'\n" + example.program + "PROGRAM\n");
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> bytes{};
  while (const std::size_t count = fread(bytes.data(), 1, bytes.size(), pipe.get())) output.append(bytes.data(), count);
  return output;
}

void expectOutput(const Example& example) { EXPECT_EQ(printed(example), example.output) << example.place; }

}  // namespace

TEST(Reference, HasAnEntryForEachMember) {
  const ContactsFolder folder;
  for (const std::string& className : linesOf(outputOf({"classes"}))) {
    Lines described;
    for (const Entry& entry : entriesOf(className + ".md")) described.push_back(entry.member);
    if (className == "ABAddressBookVXR") {
      for (const Entry& entry : entriesOf("constants.md")) described.push_back(entry.member);
    }
    Lines registered = registeredMembers(className);
    std::ranges::sort(described);
    std::ranges::sort(registered);
    EXPECT_EQ(described, registered) << className;
  }
}

TEST(Reference, HasTheValuesOfTheStringConstants) {
  const ContactsFolder folder;
  std::string program;
  std::string values;
  for (const Entry& entry : entriesOf("constants.md")) {
    if (!entry.member.starts_with("Shared methods: ")) continue;
    const std::string name = entry.member.substr(16, entry.member.find(" As ") - 16);
    program += "print \"" + name + "\", ABAddressBookVXR." + name + "\n";
    values += name + " " + entry.value + "\n";
  }
  EXPECT_EQ(outputOf({"run"}, program), values);
}

TEST(Reference, HasExamplesThatRunInAnEmptyFolder) {
  setenv("LC_ALL", "C", 1);
  for (const auto& page : std::filesystem::directory_iterator(kReference)) {
    for (const Example& example : examplesIn(page)) {
      const ContactsFolder folder;
      expectOutput(example);
    }
  }
}

// The tutorial goes on in the folder that it began, the overview in that of the examples.
TEST(Tutorial, RunsFromAnEmptyFolder) {
  setenv("LC_ALL", "C", 1);
  for (const char* page : {"docs/tutorial.md", "README.md"}) {
    const ContactsFolder folder;
    if (page[0] == 'R') std::filesystem::copy(kSource / "examples" / "contacts", folder.path());
    const std::vector<Example> examples = examplesIn(kSource / page);
    EXPECT_FALSE(examples.empty());
    for (const Example& example : examples) expectOutput(example);
  }
}
