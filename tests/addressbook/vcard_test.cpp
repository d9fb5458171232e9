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

// A new person with all that the other one has, so that each line of it is written here.
Value rewritten(const Value& person) {
  const Value made = host::newObject("ABPersonVXR");
  for (const Value& property : host::callShared("ABPersonVXR", "properties").elements()) {
    const Value value = person.call("valueForProperty", property);
    if (!value.isNil()) made.call("setValue", value, property);
  }
  made.call("setImageData", person.call("imageData"));
  return made;
}

// An empty one, and one of each file of the examples and of many writers.
std::vector<Value> people() {
  std::vector<Value> all{host::newObject("ABPersonVXR")};
  const fs::path tests = fs::path(__FILE__).parent_path().parent_path();
  for (const fs::path& folder : {tests / "../examples/contacts", tests / "contacts/cards"}) {
    for (const auto& file : fs::directory_iterator(folder)) {
      if (file.path().extension() != ".vcf") continue;
      all.push_back(rewritten(host::newObject("ABPersonVXR", host::memoryBlock(bytesOf(file.path())))));
    }
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
