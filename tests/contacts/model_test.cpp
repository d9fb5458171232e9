#include "platform/foundation/run_loop.h"
#include "tests/contacts/book_test.h"
#include "tests/contacts/file_faults.h"
#include "tests/contacts/store_scenarios.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>

// Random changes, here and by another program, saves that fail and new processes: the store against a model of it.
namespace {

namespace fs = std::filesystem;

constexpr const char* kLines[] = {"NOTE", "TITLE", "X-MAIDENNAME"};
const NSString& propertyOf(const std::string& line) {
  if (line == "NOTE") return kABNoteProperty;
  return line == "TITLE" ? kABJobTitleProperty : kABMaidenNameProperty;
}

using Fields = std::map<std::string, std::string>;  // by the line that has them
using Records = std::map<std::string, Fields>;      // by nickname, which never changes

struct Model {
  Records folder;
  Records seen;     // of the folder, by the book
  Records changed;  // since it was saved; of a new record all that it has
  std::set<std::string> added;
  std::set<std::string> removed;
  int count = 0;  // of records that ever were

  [[nodiscard]] Records view() const {
    Records records = seen;
    for (const std::string& name : removed) records.erase(name);
    for (const auto& [name, fields] : changed) {
      for (const auto& [line, value] : fields) records[name][line] = value;
    }
    for (const std::string& name : added) records[name];
    return records;
  }

  void save() {
    for (const auto& [name, fields] : changed) {
      // One that the other program removed is made anew.
      if (!folder.contains(name)) folder[name] = seen[name];
      for (const auto& [line, value] : fields) folder[name][line] = value;
    }
    for (const std::string& name : added) folder[name];
    for (const std::string& name : removed) folder.erase(name);
    forget();
  }

  void forget() {
    changed.clear();
    added.clear();
    removed.clear();
    seen = folder;
  }
};

// One process's life. Both the process and its parent, which has no book, follow the same random numbers.
class Session {
 public:
  Session(Model& model, std::mt19937& random, fs::path folder, bool isReal)
      : model_(model), random_(random), folder_(std::move(folder)) {
    if (isReal) book_ = ABAddressBook::sharedAddressBook();
  }

  void run() {
    compare();
    for (int i = 0; i < 25; ++i) {
      step(below(11));
      // Whether the book comes to know of others' changes before it saves is a matter of chance.
      if (below(3) != 0) compare();
    }
    model_.forget();
  }

 private:
  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }
  std::string anyLine() { return kLines[below(std::size(kLines))]; }
  std::string anyValue() { return "value " + std::to_string(below(1000)); }
  std::optional<std::string> anyOf(const Records& records) {
    if (records.empty()) return std::nullopt;
    return std::next(records.begin(), static_cast<long>(below(static_cast<unsigned>(records.size()))))->first;
  }

  void step(unsigned kind) {
    if (kind < 2) return add();
    if (kind < 4) return change();
    if (kind == 4) return remove();
    if (kind == 5) return save(std::nullopt);
    const unsigned at = below(60);
    if (kind == 6) return save(file_faults::Fault{file_faults::Fault::Effect::kFail, EIO, below(2) == 0, int(at)});
    othersWrite();
  }

  void add() {
    const std::string name = "n" + std::to_string(model_.count++) + ".";
    model_.added.insert(name);
    if (!book_) return;
    EXPECT_TRUE(newPerson(book_)->setValue(NSString::stringWithUTF8(name.c_str()), kABNicknameProperty));
  }

  void change() {
    learn();
    const std::optional<std::string> name = anyOf(model_.view());
    if (!name) return;
    const std::string line = anyLine();
    const std::string value = anyValue();
    model_.changed[*name][line] = value;
    if (!book_) return;
    EXPECT_TRUE(person(*name).setValue(NSString::stringWithUTF8(value.c_str()), propertyOf(line)));
  }

  void remove() {
    learn();
    const std::optional<std::string> name = anyOf(model_.view());
    if (!name) return;
    if (book_) {
      EXPECT_TRUE(book_.removeRecord(person(*name)));
    }
    model_.changed.erase(*name);
    if (model_.added.erase(*name) == 0) model_.removed.insert(*name);
  }

  // Only the process knows whether it is saved: its parent is told by a file.
  void save(const std::optional<file_faults::Fault>& fault) {
    const fs::path mark = folder_ / ("saved" + std::to_string(saves_++));
    if (book_) {
      file_faults::start(fault);
      const bool isSaved = book_.save();
      file_faults::stop();
      EXPECT_TRUE(isSaved || fault);
      if (isSaved) std::ofstream(mark) << "x";
    }
    if (fs::exists(mark)) model_.save();
    if (!book_) fs::remove(mark);
    learn();
  }

  void othersWrite() {
    const std::optional<std::string> name = below(3) == 0 ? std::nullopt : anyOf(model_.folder);
    if (!name) {
      const std::string fresh = "n" + std::to_string(model_.count++) + ".";
      model_.folder[fresh][anyLine()] = anyValue();
      if (book_) write(folder_ / (fresh + "vcf"), fresh, fresh);
    } else if (below(4) == 0) {
      if (book_) fs::remove(fileOf(*name));
      model_.folder.erase(*name);
    } else {
      model_.folder[*name][anyLine()] = anyValue();
      if (book_) write(fileOf(*name), uidIn(fileOf(*name)), *name);
    }
  }

  void write(const fs::path& file, const std::string& uid, const std::string& name) {
    std::string text = "BEGIN:VCARD\nVERSION:3.0\nN:;;;;\nFN:\nUID:" + uid + "\nNICKNAME:" + name + "\n";
    for (const auto& [line, value] : model_.folder[name]) text += line + ":" + value + "\n";
    std::ofstream(folder_ / "other.tmp") << text + "END:VCARD\n";
    fs::rename(folder_ / "other.tmp", file);
  }

  [[nodiscard]] fs::path fileOf(const std::string& name) const {
    for (const auto& entry : fs::directory_iterator(folder_)) {
      if (entry.path().extension() == ".vcf" && bytesOf(entry.path()).find("NICKNAME:" + name) != std::string::npos) {
        return entry.path();
      }
    }
    ADD_FAILURE() << name << " has no file";
    return folder_ / "none.vcf";
  }

  static std::string uidIn(const fs::path& file) {
    const std::string text = bytesOf(file);
    const std::size_t start = text.find("UID:") + 4;
    return text.substr(start, text.find_first_of("\r\n", start) - start);
  }

  // The run loop brings what others did.
  void learn() {
    if (book_) CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
    model_.seen = model_.folder;
    for (const auto& [name, fields] : model_.changed) {
      if (!model_.seen.contains(name)) model_.seen[name] = lastSeen_[name];
    }
    lastSeen_ = model_.seen;
  }

  void compare() {
    learn();
    if (!book_) return;
    EXPECT_EQ(shownBook(), model_.view());
  }

  [[nodiscard]] Records shownBook() const {
    Records records;
    for (const ABPerson record : each(book_.people())) {
      Fields& fields = records[shown(record, "Nickname")];
      for (const std::string line : kLines) {
        const NSObject value = record.valueForProperty(propertyOf(line));
        if (value) fields[line] = shown(value);
      }
    }
    return records;
  }

  [[nodiscard]] ABPerson person(const std::string& name) const {
    for (const ABPerson person : each(book_.people())) {
      if (shown(person, "Nickname") == name) return person;
    }
    ADD_FAILURE() << name << " isn't there";
    return nullptr;
  }

  Model& model_;
  std::mt19937& random_;
  fs::path folder_;
  ABAddressBook book_;
  Records lastSeen_;
  int saves_ = 0;
};

TEST(Model, IsWhatTheStoreDoes) {
  store_scenarios::useMemory();
  const char* wanted = std::getenv("MODEL_SEED");
  const unsigned first =
      wanted != nullptr ? static_cast<unsigned>(std::atoi(wanted)) : std::random_device{}() % 1000000;
  const unsigned count = wanted != nullptr ? 1 : store_scenarios::isTorture() ? 1000 : 15;
  for (unsigned seed = first; seed < first + count && !HasFailure(); ++seed) {
    SCOPED_TRACE("MODEL_SEED=" + std::to_string(seed));
    const ContactsFolder folder;
    std::mt19937 random(seed);
    Model model;
    for (int process = 0; process < 4; ++process) {
      inChild([&] { Session(model, random, folder.path(), true).run(); });
      Session(model, random, folder.path(), false).run();
    }
  }
}

}  // namespace
