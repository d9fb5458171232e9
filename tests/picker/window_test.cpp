#include "tests/contacts/contacts_folder.h"
#include "tests/kit/cards.h"
#include "tests/picker/terminal_session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

// The command "contacts pick" in a terminal.
namespace {

constexpr const char* kUp = "\x1bOA";
constexpr const char* kDown = "\x1bOB";
constexpr const char* kRight = "\x1bOC";
constexpr const char* kLeft = "\x1bOD";
constexpr const char* kShiftDown = "\x1b[1;2B";
constexpr const char* kEnter = "\r";
constexpr const char* kEscape = "\x1b";
constexpr const char* kMark = "\x14";
constexpr const char* kClear = "\x15";

constexpr const char* kSeparator = "\u2502";

std::filesystem::path buildFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
}

std::string escapedMouse(int button, int row, int column) {
  const std::string place = std::to_string(button) + ";" + std::to_string(column + 1) + ";" + std::to_string(row + 1);
  return "\x1b[<" + place + "M\x1b[<" + place + "m";
}

// Runs the command on a folder with these cards.
class PickTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!exists(buildFolder() / "Frameworks" / "AddressBook.framework" / "people-picker-terminal.so")) {
      GTEST_SKIP() << "there is no ncurses to draw the window with";
    }
    add({person("Ada", "Lovelace", "p1",
                {"EMAIL;TYPE=HOME:ada@home.example", "EMAIL;TYPE=WORK,pref:ada@work.example", "TEL:1234"}),
         person("Grace", "Hopper", "p2", {"EMAIL:grace@navy.example"}),
         person("Alan", "Turing", "p3", {"BDAY:--06-23"}), group("Work", "g1", {"p1", "p3"}),
         group("Friends", "g2", {"p2"})});
  }

  void add(const std::vector<Card>& cards) {
    for (const Card& card : cards) folder.writeCard(card.uid + ".vcf", card.lines);
  }

  static std::function<int()> pick(const std::vector<std::string>& arguments) {
    return [arguments] {
      std::vector<std::string> words{(buildFolder() / "bin" / "contacts").string(), "pick"};
      words.insert(words.end(), arguments.begin(), arguments.end());
      std::vector<char*> pointers;
      for (std::string& word : words) pointers.push_back(word.data());
      pointers.push_back(nullptr);
      execv(pointers[0], pointers.data());
      return 127;
    };
  }

  // Types each step's keys when what the step before waits for is on the screen.
  struct Step {
    std::string keys;
    std::string shown;
    std::string gone = "\t";
  };
  static void expectOutput(const std::vector<std::string>& arguments, const std::vector<Step>& steps,
                           std::string_view lastKeys, std::string_view output) {
    TerminalSession session(24, 80, pick(arguments));
    ASSERT_TRUE(session.waitFor("Enter choose")) << session.screen().text();
    for (const Step& step : steps) {
      session.type(step.keys);
      ASSERT_TRUE(session.waitFor([&step](const Screen& screen) {
        return screen.text().find(step.shown) != std::string::npos &&
               screen.text().find(step.gone) == std::string::npos;
      })) << session.screen().text();
    }
    session.type(lastKeys);
    EXPECT_EQ(session.finish(), output.empty() ? 1 : 0);
    EXPECT_EQ(session.output(), output);
  }

  ContactsFolder folder;
};

}  // namespace

TEST_F(PickTest, GivesWhatIsChosen) {
  expectOutput({"--property", "email"},
               {{"", "  Groups           Names                     Email"},
                {"lov", "1 of 3"},
                {"", "*work ada@work.example"},
                {std::string(kRight) + kUp, ">*home ada@home.example"}},
               kEnter, "ada@home.example\n");
  expectOutput({"--property", "Email"},
               {{"", "Grace Hopper"},
                {escapedMouse(0, 2, 20), ">*Ada Lovelace"},
                {escapedMouse(0, 2, 50), ">*home ada@home.example"},
                {escapedMouse(0, 3, 50), ">*work ada@work.example"}},
               escapedMouse(0, 3, 50), "ada@work.example\n");
  expectOutput({"--property", "Birthday"}, {{"", "Grace Hopper"}, {"tur", "*--06-23"}}, kEscape, "");
  // Keys that it doesn't know are nothing.
  expectOutput({}, {{"", "Alan Turing"}, {std::string("\x1b[99;9~") + kDown, ">*Alan Turing"}}, kEnter,
               "Alan Turing\n");
  for (const char* key : {kEscape, "\x03"}) {
    expectOutput({}, {{"", "Alan Turing"}, {kDown, ">*Alan Turing"}}, key, "");
  }
}

TEST_F(PickTest, GivesAllThatIsMarked) {
  expectOutput({"--multiple"}, {{"", "Grace Hopper"}, {kShiftDown, ">*Alan Turing"}, {"", " *Ada Lovelace"}}, kEnter,
               "Ada Lovelace\nAlan Turing\n");
  expectOutput({"--multiple", "--property", "Email"},
               {{"", "Grace Hopper"},
                {std::string(kMark) + kRight, ">*work ada@work.example"},
                {std::string(kUp) + kMark, ">*home ada@home.example"}},
               kEnter, "ada@work.example\nada@home.example\n");
  // Marks stay through searches.
  expectOutput({"--multiple", "--property", "Email", "--json", "hop"},
               {{"", "1 of 3"},
                {"", "Search: hop"},
                {std::string(kMark) + kClear + "ada", "Search: ada"},
                {std::string(kMark) + kClear + kMark + kMark, "Grace Hopper"}},
               kEnter,
               "[\n  {\n    \"id\": \"p2:ABPerson\",\n    \"kind\": \"person\",\n    \"name\": \"Grace Hopper\",\n"
               "    \"Email\": [\n      \"grace@navy.example\"\n    ]\n  },\n"
               "  {\n    \"id\": \"p1:ABPerson\",\n    \"kind\": \"person\",\n    \"name\": \"Ada Lovelace\",\n"
               "    \"Email\": [\n      \"ada@work.example\"\n    ]\n  }\n]\n");
}

TEST_F(PickTest, OpensAndGivesGroups) {
  expectOutput({"--groups"}, {{std::string(kLeft) + kDown + kDown, ">*Work"}, {"", "Alan Turing", "Grace"}}, kEnter,
               "Work\n");
  expectOutput({}, {{std::string(kLeft) + kDown, ">*Friends"}, {"", " *Grace Hopper"}}, std::string(kEnter) + kEnter,
               "Grace Hopper\n");
}

TEST_F(PickTest, FollowsTheDatabaseAndTheTerminalsSize) {
  TerminalSession session(24, 80, pick({"--property", "Email"}));
  ASSERT_TRUE(session.waitFor("Grace Hopper")) << session.screen().text();
  session.type(kDown);
  ASSERT_TRUE(session.waitFor(">*Alan Turing")) << session.screen().text();
  const Card added = person("Aaron", "Aaronson", "p9");
  folder.write("p9.tmp", "BEGIN:VCARD\nVERSION:3.0\n" + added.lines + "END:VCARD\n");
  rename(folder.path() / "p9.tmp", folder.path() / "p9.vcf");
  ASSERT_TRUE(session.waitFor("Aaron Aaronson")) << session.screen().text();
  EXPECT_TRUE(session.waitFor(">*Alan Turing")) << session.screen().text();

  session.resize(8, 40);
  ASSERT_TRUE(session.waitFor([](const Screen& screen) { return screen.line(7).starts_with("Enter choose"); }))
      << session.screen().text();
  EXPECT_TRUE(session.waitFor("  Names                Email")) << session.screen().text();
  session.type(kLeft);
  EXPECT_TRUE(session.waitFor("  Groups               Names")) << session.screen().text();
  session.type(std::string(kRight) + kEnter);
  EXPECT_EQ(session.finish(), 1);  // he has no address
}

TEST_F(PickTest, LinesUpNamesInAllScripts) {
  add({person("山田", "太郎", "s1"), person("Zoe\u0308", "Kru\u0308ger", "s2"), person("Мария", "Иванова", "s3"),
       person("김", "철수", "s4"), person("אבי", "כהן", "s5"), person("สมชาย", "ใจดี", "s6"), person("👩", "Emoji", "s7"),
       person("\u202E", "Turned", "s8"), person("山田太郎山田太郎山田太郎山田太郎", "山田太郎", "s9"),
       person("Tab\tbed", "Line\nfeed", "s10")});
  for (const auto& [columns, separators] : std::vector<std::pair<int, std::vector<int>>>{{80, {16, 42}}, {40, {20}}}) {
    TerminalSession session(24, columns, pick({"--property", "Email"}));
    ASSERT_TRUE(session.waitFor("Enter choose")) << session.screen().text();
    for (int row = 2; row < 23; ++row) {
      EXPECT_EQ(session.screen().columnsOf(row, kSeparator), separators) << session.screen().text();
    }
    for (const char* name : {"山田 太郎", "Zoe\u0308 Kru\u0308ger", "김 철수", "สมชาย ใจดี", "👩 Emoji", "Tab bed"}) {
      EXPECT_TRUE(session.waitFor(name)) << name << '\n' << session.screen().text();
    }
    session.type("zoe kruger");  // found without its marks
    EXPECT_TRUE(session.waitFor("1 of 13")) << session.screen().text();
  }
}

TEST_F(PickTest, AnswersKeysAtOnceAmongTenThousand) {
  for (int i = 0; i < 10'000; ++i) {
    const std::string number = std::to_string(10'000 + i);
    add({person("Person", number, "n" + number, {"EMAIL:n" + number + "@many.example"})});
  }
  TerminalSession session(24, 80, pick({"--property", "Email"}));
  ASSERT_TRUE(session.waitFor("10003")) << session.screen().text();
  std::vector<Step> steps{{"\x1bOF", ">*Person 19999"}};
  for (int i = 1; i <= 30; ++i) steps.push_back({kUp, ">*Person " + std::to_string(19'999 - i)});
  for (int i = 1; i <= 30; ++i) steps.push_back({"\x1b[5~", ">*Person " + std::to_string(19'969 - 21 * i)});
  const std::string typed = "person 15";
  for (std::size_t i = 0; i < typed.size(); ++i) steps.push_back({{typed[i]}, "Search: " + typed.substr(0, i + 1)});
  std::vector<double> milliseconds;
  for (const Step& step : steps) {
    const auto start = std::chrono::steady_clock::now();
    session.type(step.keys);
    ASSERT_TRUE(session.waitFor(step.shown)) << session.screen().text();
    milliseconds.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
  }
  std::ranges::sort(milliseconds);
  std::cout << "a key is answered in " << milliseconds[milliseconds.size() / 2] << " ms, the slowest in "
            << milliseconds.back() << " ms\n";
  EXPECT_LT(milliseconds[milliseconds.size() / 2], 100);
}

TEST_F(PickTest, SaysWhenItCannotBeShown) {
  TerminalSession dumb(24, 80, [] {
    setenv("TERM", "dumb", 1);
    return pick({})();
  });
  EXPECT_TRUE(dumb.waitFor("the picker can't be shown on this terminal")) << dumb.screen().text();
  EXPECT_EQ(dumb.finish(), 1);
  TerminalSession none(24, 80, [] {
    // A leader can't leave its session, and the terminal goes with it.
    const pid_t child = fork();
    if (child == 0) {
      setsid();
      _exit(pick({})());
    }
    waitpid(child, nullptr, 0);
    return 0;
  });
  EXPECT_TRUE(none.waitFor("there is no terminal to show the picker on")) << none.screen().text();
}
