#include "tests/apps/running_command.h"
#include "tests/contacts/contacts_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string cards(int count) {
  std::ostringstream text;
  for (int i = 0; i < count; ++i) {
    text << "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Person" << i << ";Test;;;\r\nFN:Test Person" << i
         << "\r\nTEL;TYPE=CELL:+49 30 " << i << "\r\nEMAIL;TYPE=WORK:p" << i << "@example.org\r\nEND:VCARD\r\n";
  }
  return text.str();
}

// The files of a folder and what is in them.
std::map<std::string, std::string> contentsOf(const fs::path& folder) {
  std::map<std::string, std::string> contents;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    std::ifstream stream(entry.path());
    contents[entry.path()] = entry.is_regular_file() ? std::string(std::istreambuf_iterator<char>(stream), {}) : "";
  }
  return contents;
}

// The words on each line.
std::vector<std::string> sortedLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::ranges::sort(lines);
  return lines;
}

}  // namespace

TEST(Command, ChangesPeopleAndGroups) {
  const ContactsFolder folder;
  outputOf({"import", "-"}, cards(2));
  outputOf({"edit", "p1@example.org", "First=Ada", "Last=Lovelace", "Phone:mobile=", "Phone:home+=12", "Phone:home+=34",
            "Birthday=1815-12-10"});
  const std::string shown = outputOf({"show", "lovelace"});
  for (const char* line : {"Phone (home)       12\n", "Phone (home)       34\n", "Birthday           1815-12-10\n"}) {
    EXPECT_NE(shown.find(line), std::string::npos) << line << " in\n" << shown;
  }
  EXPECT_EQ(shown.find("mobile"), std::string::npos) << shown;

  outputOf({"groups", "create", "Work"});
  outputOf({"groups", "create", "Engines", "--in", "work"});
  outputOf({"groups", "add", "engines", "Ada Lovelace", "p0@example.org"});
  outputOf({"groups", "drop", "engines", "p0@example.org"});
  outputOf({"groups", "rename", "engines", "Machines"});
  EXPECT_EQ(outputOf({"groups", "members", "machines"}),
            "Name          Email           Phone\nAda Lovelace  p1@example.org  12\n");
  outputOf({"groups", "nest", "machines", "work", "--out"});
  EXPECT_EQ(sortedLines(outputOf({"groups"})), (std::vector<std::string>{"Machines (1)", "Work (0)"}));
  outputOf({"groups", "remove", "machines"});
  EXPECT_EQ(outputOf({"groups"}), "Work (0)\n");

  outputOf({"me", "ada"});
  EXPECT_NE(outputOf({"me", "--json"}).find("\"name\": \"Ada Lovelace\""), std::string::npos);
  outputOf({"me", "--clear"});
  EXPECT_EQ(run({"me"}).status, 1);
}

TEST(Command, AlignsWideAndCombiningCharacters) {
  const ContactsFolder folder;
  outputOf({"add", "First=李", "Last=明", "Email=li@example.org"});
  outputOf({"add", "First=Zoe\u0308", "Email=zoe@example.org"});
  std::vector<std::string> lines = sortedLines(outputOf({"find", "example"}));
  EXPECT_EQ(lines, (std::vector<std::string>{"Name   Email            Phone", "Zoe\u0308    zoe@example.org",
                                             "李 明  li@example.org"}));
}

TEST(Command, WritesNothingOnADryRun) {
  const ContactsFolder folder;
  folder.writeCard("1.vcf", "UID:p1\nN:Lovelace;Ada\n");
  const auto before = contentsOf(folder.path());
  EXPECT_EQ(outputOf({"edit", "ada", "Note=x", "--dry-run"}), "(not saved) Changed Ada Lovelace (p1:ABPerson)\n");
  EXPECT_EQ(outputOf({"remove", "ada", "--dry-run", "--json"}),
            "{\"planned\":\"Removed\",\"id\":\"p1:ABPerson\",\"name\":\"Ada Lovelace\"}\n");
  outputOf({"import", "--dry-run", "-"}, cards(3));
  EXPECT_EQ(contentsOf(folder.path()), before);
}

TEST(Command, KeepsPropertiesThatUsersAdd) {
  const ContactsFolder folder;
  outputOf({"add", "First=Ada"});
  outputOf({"properties", "--add", "Shoe", "--type", "integer"});
  outputOf({"edit", "ada", "Shoe=38"});
  EXPECT_NE(outputOf({"show", "ada"}).find("38\n"), std::string::npos);
  outputOf({"properties", "--remove", "Shoe"});
  EXPECT_EQ(run({"edit", "ada", "Shoe=39"}).status, 1);
}

TEST(Command, CarriesPictures) {
  const ContactsFolder folder;
  const std::string picture(
      "BM\x3A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\4\0\0\0"
      "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\xFF\0\0\0",
      58);
  outputOf({"add", "First=Ada"});
  const Outcome broken = run({"photo", "ada", "--set", "-"}, picture.substr(0, 40));
  EXPECT_EQ(broken.output, "contacts: standard input: a broken picture; expected a whole BMP\n");
  EXPECT_EQ(broken.status, 1);
  outputOf({"photo", "ada", "--set", "-"}, picture);
  EXPECT_EQ(outputOf({"photo", "ada"}), "Ada: BMP, 58 bytes\n");
  EXPECT_EQ(outputOf({"photo", "ada", "--get", "-"}), picture);
  outputOf({"photo", "ada", "--remove"});
  EXPECT_EQ(run({"photo", "ada"}).status, 1);
}

TEST(Command, RefusesBadInputInOneLineAndLeavesTheFolder) {
  const ContactsFolder folder;
  folder.writeCard("1.vcf", "UID:p1\nN:Lovelace;Ada\n");
  folder.writeCard("2.vcf", "UID:p2\nN:Byron;Ada\n");
  folder.writeCard("3.vcf", "UID:g1\nX-ADDRESSBOOKSERVER-KIND:group\nN:Work\n");
  const auto before = contentsOf(folder.path());
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* text;
  };
  const Case cases[] = {
      {{"nonsense"}, 2, "not expected"},
      {{"show"}, 2, "required"},
      {{"show", "nobody"}, 1, "no person \"nobody\""},
      {{"show", "ada"}, 1, "Ada Lovelace (p1:ABPerson), Ada Byron (p2:ABPerson)"},
      {{"show", ""}, 2, "PERSON: is empty"},
      {{"list", "--folder", ""}, 2, "--folder: is empty"},
      {{"find", "x", "--property", "Shoe"}, 1, "no property \"Shoe\""},
      {{"find", "x", "--property", "Email", "--comparison", "Likes"}, 1, "no comparison \"Likes\""},
      {{"find", "x", "--property", "Birthday"}, 1, "\"x\" is no date; expected year-month-day"},
      {{"find", "nobody"}, 1, ""},
      {{"find", "x", "--key", "City"}, 1, "need --property"},
      {{"find", "x", "--property", "First", "--label", "home"}, 1, "no labels"},
      {{"find", "x", "--property", "Email", "--key", "City"}, 1, "no keys"},
      {{"add", "First"}, 1, "\"First\" is no assignment; expected PROPERTY"},
      {{"add", "First="}, 1, "\"First=\" adds nothing"},
      {{"add", "First=\xFF"}, 1, "expected UTF-8"},
      {{"add", "First:home=x"}, 1, "no labels"},
      {{"add", "Birthday=2001-02-29"}, 1, "is no date"},
      {{"add", "Address:home=x"}, 1, "needs a key"},
      {{"add", "Phone:mobile.City=x"}, 1, "no keys"},
      {{"add", "UID=x"}, 1, "UID can't be set"},
      {{"edit", "lovelace", "Phone:mobile="}, 1, "no Phone is labelled mobile"},
      {{"edit", "lovelace", "Creation="}, 1, "Creation can't be removed"},
      {{"groups", "rename", "work", "\xFF"}, 1, "can't be a group's name"},
      {{"groups", "nest", "work", "work"}, 1, "can't be put into"},
      {{"groups", "drop", "work", "lovelace"}, 1, "is not in"},
      {{"import", "/nonexistent"}, 1, "/nonexistent: cannot be read: No such file"},
      {{"import", "/"}, 1, "is a folder"},
      {{"import", "/proc/self/status"}, 1, "no vCard"},
      {{"photo", "lovelace"}, 1, "no picture"},
      {{"photo", "lovelace", "--remove"}, 1, "no picture"},
      {{"import", "-"}, 1, "standard input: no vCard"},
      {{"photo", "lovelace", "--set", "/proc/self/status"}, 1, "expected JPEG"},
      {{"photo", "lovelace", "--set", "x", "--remove"}, 2, "excludes"},
      {{"export", "-o", "/nonexistent/x.vcf"}, 1, "cannot be written"},
      {{"me"}, 1, "no owner"},
      {{"properties", "--add", "Shoe", "--type", "leather"}, 1, "no type \"leather\""},
      {{"properties", "--remove", "First"}, 1, "can't be removed"},
      {{"pick", "ada"}, 1, "no terminal"},
      {{"classes", "Nobody"}, 1, "Nobody"},
      {{"list", "--folder", "/proc/version"}, 1, "contacts folder /proc/version: cannot be read: Not a directory\n"},
  };
  for (const Case& each : cases) {
    const Outcome outcome = run(each.arguments);
    SCOPED_TRACE(each.arguments.front() + ": " + outcome.output);
    EXPECT_EQ(outcome.status, each.status);
    EXPECT_NE(outcome.output.find(each.text), std::string::npos) << each.text;
    EXPECT_LE(std::ranges::count(outcome.output, '\n'), 1);
  }
  EXPECT_EQ(contentsOf(folder.path()), before);

  folder.write("4.vcf", "This is no card.\n");
  EXPECT_EQ(outputOf({"groups"}), "contacts: 4.vcf: is not a vCard; left alone\nWork (0)\n");
  EXPECT_EQ(outputOf({"groups", "--quiet"}), "Work (0)\n");
}
