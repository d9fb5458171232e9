#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/memory_blocks.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <utility>

// People as vCards that host code hands to other programs.
namespace {

namespace fs = std::filesystem;
using host::Value;

void addMultiValue(const Value& record, const char* property,
                   const std::vector<std::pair<Value, std::string>>& entries) {
  const Value values = host::newObject("ABMutableMultiValueVXR");
  for (const auto& [value, label] : entries) values.call("addValue", value, label);
  values.call("setPrimaryIdentifier", values.call("identifierAtIndex", static_cast<int>(entries.size() - 1)));
  EXPECT_EQ(record.call("setValue", values, property), true) << property;
}

// Everything that a person can have, with what vCards must escape, fold and encode.
Value richPerson() {
  const Value person = host::newObject("ABPersonVXR");
  const std::pair<const char*, Value> values[] = {
      {"First", "Zoë; the \"first\""},
      {"Last", "Ångström, geb. \\ Berg"},
      {"Middle", "Anna"},
      {"FirstPhonetic", "Tso-e"},
      {"Organization", "Ships; Boats & Co."},
      {"JobTitle", "Head: of \"x\""},
      {"HomePage", "http://example.org/?a=1;b=2,3"},
      {"Birthday", host::date(1975, 3, 9, 12)},
      {"Note", "first line\nsecond: \xF0\x9F\x9A\xA2, " + std::string(300, 'x') + "; end"},
      {"ABPersonFlags", 17},
  };
  for (const auto& [property, value] : values) EXPECT_EQ(person.call("setValue", value, property), true) << property;
  addMultiValue(person, "Phone", {{"+32 9 1", "_$!<HomeFAX>!$_"}, {"2", "boat; \"x\""}, {"3", "_$!<Mobile>!$_"}});
  addMultiValue(person, "Email", {{"a@example.org", "_$!<Work>!$_"}, {"b@example.org", "_$!<Home>!$_"}});
  addMultiValue(person, "URLs", {{"http://example.org", "_$!<HomePage>!$_"}});
  addMultiValue(person, "ABRelatedNames", {{"Jo, the \"other\"", "_$!<Brother>!$_"}, {"Kim", "neighbour"}});
  addMultiValue(
      person, "Address",
      {{host::dictionary({{"Street", "1 Quay;\nback, yard"}, {"City", "Ghent"}, {"ZIP", "9000"}}), "harbour"},
       {host::dictionary({{"City", "London"}, {"Country", "England"}, {"CountryCode", "gb"}}), "_$!<Work>!$_"}});
  addMultiValue(person, "ABDate", {{host::date(2012, 7, 14, 12), "_$!<Anniversary>!$_"}});
  addMultiValue(person, "AIMInstant", {{"zoe", "_$!<Home>!$_"}});
  person.call("setImageData", host::memoryBlock(std::string("\0\1\2 picture \xFF", 13)));
  return person;
}

// The rich one, an empty one, and one of each example's card.
std::vector<Value> people() {
  std::vector<Value> all{richPerson(), host::newObject("ABPersonVXR")};
  for (const auto& file : fs::directory_iterator(fs::path(__FILE__).parent_path() / "../../examples/contacts")) {
    if (file.path().extension() != ".vcf") continue;
    all.push_back(host::newObject("ABPersonVXR", host::memoryBlock(bytesOf(file.path()))));
  }
  return all;
}

// Of Debian's own Python, whatever else is called so.
constexpr const char* kFindReader = "/usr/bin/python3 -c 'import vobject'";

bool runs(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

// Reads each file as one card, holds it to the rules of its version, and compares the name with the file beside it.
constexpr const char* kReader = R"py(
import pathlib, sys, vobject
for file in sorted(pathlib.Path(sys.argv[1]).glob("*.vcf")):
    card = vobject.readOne(file.read_text(encoding="utf-8"))
    card.validate(raiseException=True)
    name = file.with_suffix(".name").read_text(encoding="utf-8")
    assert card.n.value.family == name, (card.n.value.family, name)
    print(file.name, len(list(card.lines())), "lines")
)py";

}  // namespace

TEST(VCards, AreReadByAnotherProgram) {
  const std::string scripts = (fs::path(__FILE__).parent_path() / "../../scripts").string();
  if (!runs(kFindReader)) runs(scripts + "/install-packages interop");
  if (!runs(kFindReader)) GTEST_SKIP() << "python3-vobject is not here and can't be installed";

  const Host host{};
  int count = 0;
  for (const Value& person : people()) {
    const std::string file = (host.folder() / ("card" + std::to_string(++count))).string();
    std::ofstream(file + ".vcf") << host::bytesOf(person.call("vCardRepresentation"));
    const Value last = person.call("valueForProperty", "Last");
    std::ofstream(file + ".name") << (last.isNil() ? "" : last.text());
  }
  const std::string reader = (host.folder() / "read.py").string();
  std::ofstream(reader) << kReader;
  EXPECT_EQ(std::system(("/usr/bin/python3 " + reader + " " + host.folder().string()).c_str()), 0);
}
