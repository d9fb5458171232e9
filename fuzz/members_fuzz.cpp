// Programs of host code: members of the plug-in's classes called as they are declared, in any order, with any values
// that the declarations take, objects of earlier calls among them. None does harm, and none leaves anything behind.

#include "bridge/instance_registry.h"
#include "bridge/wrappers.h"
#include "fuzz/samples.h"
#include "fuzz/started_host.h"
#include "fuzz/target.h"
#include "host/arrays.h"
#include "host/classes.h"
#include "host/entries.h"
#include "host/events.h"
#include "host/exceptions.h"
#include "host/memory_blocks.h"
#include "host/options.h"
#include "host/strings.h"
#include "platform/carbon/gestalt.h"
#include "platform/contacts/address_book.h"
#include "platform/foundation/cf_dictionary.h"
#include "tests/contacts/contacts_folder.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

using host::HostClass;
using host::Value;

constexpr const char* kBook = "ABAddressBookVXR";
constexpr std::size_t kMostKept = 40;
constexpr std::size_t kHugeLength = 70'000;
constexpr int kCallsBetweenChecks = 16;
constexpr const char* kCard =
    "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lovelace;Ada\r\nNICKNAME:Countess\r\nBDAY:1815-12-10\r\nX-KEPT:1\r\n"
    "EMAIL;TYPE=HOME:ada@home.example\r\nEMAIL;TYPE=WORK,pref:ada@work.example\r\n"
    "ADR;TYPE=HOME:;;12 Main St;Springfield;IL;62701;USA\r\nEND:VCARD\r\n";

enum class Use { call, assign, read, write, callShared, make };

struct Member {
  Use use;
  const HostClass* owner;
  std::string name;
  std::vector<host::Parameter> parameters;  // of what is written too
};

// What there is to call, read off the classes, and words that mean something to it.
struct Catalogue {
  std::map<const HostClass*, std::vector<Member>> ofObjects;  // what each class adds to its superclass
  std::vector<Member> others;                                 // shared methods and constructors
  std::vector<Value> words;                                   // what the string constants answer
};

void addMethod(Catalogue& catalogue, const host::Method& method) {
  Member member{Use::call, method.owner, method.declaration.name, method.declaration.parameters};
  if (host::sameName(member.name, "Constructor")) {
    // Of an object that is there already it forgets what that had wrapped.
    member.use = Use::make;
    catalogue.others.push_back(member);
    return;
  }
  catalogue.ofObjects[method.owner].push_back(member);
  if (method.record->setter == nullptr) return;
  member.use = Use::assign;
  member.parameters.push_back({.type = method.declaration.result});
  catalogue.ofObjects[method.owner].push_back(member);
}

Catalogue readClasses() {
  Catalogue catalogue;
  for (const HostClass* owner : host::pluginClasses()) {
    if (owner->definition->constructor != nullptr) catalogue.others.push_back({Use::make, owner, "Constructor", {}});
    for (const host::Method& method : owner->methods) addMethod(catalogue, method);
    for (const host::Property& property : owner->properties) {
      const std::string name = property.record->name;
      catalogue.ofObjects[owner].push_back({Use::read, owner, name, {}});
      // A handle is an address.
      if (property.record->setter == nullptr || name == "Handle") continue;
      catalogue.ofObjects[owner].push_back({Use::write, owner, name, {{.type = property.type}}});
    }
    for (const host::Method& method : owner->sharedMethods) {
      const host::Declaration& declaration = method.declaration;
      if (declaration.parameters.empty() && declaration.result.text() == "string") {
        catalogue.words.push_back(host::callShared(owner->name(), declaration.name));
      } else {
        catalogue.others.push_back({Use::callShared, owner, declaration.name, declaration.parameters});
      }
    }
  }
  return catalogue;
}

// The running program's variables. Events reach them too.
std::vector<Value> objects;
std::vector<Value> texts;
std::size_t callCount = 0;

class Program {
 public:
  Program(const Catalogue& catalogue, Input input) : catalogue_(catalogue), input_(input) {}

  void run() {
    const Value book = host::callShared(kBook, "sharedAddressbook");
    const Value person = book.call("NewPersonWithVCardRepresentation", host::memoryBlock(kCard));
    for (const Value& object : {book, person, person.call("valueForProperty", "Email").call("edit"),
                                host::newObject("ABGroupVXR", book), host::newObject("ABPickerVXR")}) {
      keep(object);
    }
    book.call("addRecord", person);
    for (int step = 1; !input_.hasEnded(); ++step) {
      try {
        takeStep();
      } catch (const host::HostException&) {
        // As host code may do it.
      }
      host::failMemoryBlock(0);
      if (step % kCallsBetweenChecks == 0) check();
    }
    check();
  }

 private:
  void takeStep() {
    const int choice = input_.number() % 16;
    const Value object = objects.empty() ? Value() : one(objects);
    if (choice == 0) {
      std::erase(objects, object);
    } else if (choice == 1) {
      host::idle();
    } else if (choice == 2) {
      failing_ = input_.number() % 4;
    } else if (choice < 5) {
      use(one(catalogue_.others), nullptr);
    } else if (!object.isNil()) {
      useObject(object);
    }
  }

  void useObject(const Value& self) {
    std::vector<const Member*> members;
    for (const HostClass* owner = &host::classOf(self.object()); owner != nullptr; owner = owner->superclass) {
      const auto found = catalogue_.ofObjects.find(owner);
      if (found == catalogue_.ofObjects.end()) continue;
      for (const Member& member : found->second) members.push_back(&member);
    }
    if (!members.empty()) use(*one(members), self);
  }

  void use(const Member& member, const Value& self) {
    static const bool isShown = std::getenv("SHOW_CALLS") != nullptr;
    if (isShown) std::fprintf(stderr, "%s.%s\n", member.owner->name(), member.name.c_str());
    ++callCount;
    std::vector<Value> values;
    for (const host::Parameter& parameter : member.parameters) values.push_back(valueOf(parameter.type));
    host::Arguments arguments;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const bool isByReference = member.parameters[i].isByReference;
      arguments.push_back(isByReference ? host::Argument(host::Ref(values[i])) : host::Argument(values[i]));
    }
    host::failMemoryBlock(std::exchange(failing_, 0));
    keep(result(member, self, arguments, values));
    for (const Value& value : values) keep(value);
  }

  static Value result(const Member& member, const Value& self, const host::Arguments& arguments,
                      const std::vector<Value>& values) {
    switch (member.use) {
      case Use::call:
        return host::callMember(self, member.name, arguments);
      case Use::assign:
        return host::assignMember(self, member.name, arguments), nullptr;
      case Use::read:
        return self.get(member.name);
      case Use::write:
        return self.set(member.name, values.front()), nullptr;
      case Use::callShared:
        return host::callSharedMember(member.owner->name(), member.name, arguments);
      case Use::make:
        return host::newObjectWith(member.owner->name(), arguments);
    }
    return nullptr;
  }

  // Objects of every class, elements of arrays too, and texts.
  void keep(const Value& value) {
    if (std::holds_alternative<host::StringRef>(value.data())) put(texts, value);
    if (!std::holds_alternative<host::ObjectRef>(value.data())) return;
    put(objects, value);
    if (!value.typeName().ends_with("()")) return;
    for (const Value& element : value.elements()) keep(element);
  }

  static void put(std::vector<Value>& kept, const Value& value) {
    if (kept.size() == kMostKept) kept.erase(kept.begin());
    kept.push_back(value);
  }

  template <class T>
  const T& one(const std::vector<T>& list) {
    return list[input_.number<std::uint16_t>() % list.size()];
  }

  Value textValue() {
    const int choice = input_.number() % 8;
    if (choice == 0) return Value::adopt(REALstring());
    if (choice == 1) return std::string(input_.text());
    if (choice == 2) return Value::adopt(host::newString(input_.text(), kEncodingUTF16));
    if (choice == 3) return std::string(input_.number() % 8 == 0 ? kHugeLength : 1, 'x');
    return choice < 6 && !texts.empty() ? one(texts) : one(catalogue_.words);
  }

  std::int64_t wholeNumber() {
    static const std::vector<std::int64_t> kSpecial{
        -1, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max(), 0x100, 0x10000, 4};
    const std::uint8_t choice = input_.number();
    return choice % 4 == 0 ? one(kSpecial) : choice % 16;
  }

  // One that is there, an empty one, or nil.
  Value objectOfClass(const std::string& name) {
    HostClass& wanted = host::requireClass(name);
    const std::uint8_t choice = input_.number();
    if (choice % 8 == 0) return nullptr;
    if (choice % 8 == 1) return Value::adopt(host::newInstance(wanted));
    std::vector<Value> fitting;
    for (const Value& object : objects) {
      if (host::classOf(object.object()).isKindOf(wanted)) fitting.push_back(object);
    }
    return fitting.empty() ? Value() : one(fitting);
  }

  Value arrayOf(host::Type type) {
    if (input_.number() % 8 == 0) return nullptr;
    type.isArray = false;
    std::vector<Value> elements;
    for (int count = input_.number() % 6; count > 0; --count) elements.push_back(valueOf(type));
    return type.kind == host::TypeKind::string ? host::stringArray(elements) : host::objectArray(elements);
  }

  Value valueOf(const host::Type& type) {
    using enum host::TypeKind;
    if (type.isArray) return arrayOf(type);
    if (type.kind == boolean) return input_.number() % 2 != 0;
    if (type.kind == single) return input_.number<float>();
    if (type.kind == uint32) return static_cast<std::uint32_t>(wholeNumber());
    if (type.kind == integer) return wholeNumber();
    const int choice = input_.number() % 4;
    if (type.kind == variant && choice < 2) return takeSample(input_).value;
    if (type.kind == variant && choice == 2 && !objects.empty()) return one(objects);
    if (type.kind == variant || type.kind == string) return textValue();
    if (host::sameName(type.name, "MemoryBlock") && choice == 0) return host::memoryBlock(input_.text());
    if (host::sameName(type.name, "MemoryBlock") && choice == 1) return host::memoryBlock(kCard);
    if (host::sameName(type.name, "Dictionary") && choice < 2) return takeDictionary(input_).value;
    return objectOfClass(type.name);
  }

  // The registry knows each wrapper by what it wraps, but for address books, of which several may wrap the same.
  void check() const {
    expect(!host::takePendingException(), "nothing is pending between calls");
    static const std::array kRegistered{&host::requireClass("ABRecordVXR"), &host::requireClass("ABMultiValueVXR"),
                                        &host::requireClass("ABSearchElementVXR")};
    for (const Value& object : objects) {
      const auto isRegistered = [&](const HostClass* one) { return host::classOf(object.object()).isKindOf(*one); };
      if (std::ranges::none_of(kRegistered, isRegistered)) continue;
      const auto held = wrapped<NSObject>(object.object());
      expect(!held || FindInstance(held) == object.object(), "a wrapper is registered");
    }
  }

  const Catalogue& catalogue_;
  Input input_;
  int failing_ = 0;  // the nth memory block of the next call
};

// Of the registry's entries only the shared address book's may be left. It goes with the first wrapper of several.
void expectNothingRegistered() {
  constexpr OSType kRegistrySelector = 0x56585269;  // 'VXRi'
  std::intptr_t registry = 0;
  expect(Gestalt(kRegistrySelector, &registry) == noErr, "there is a registry");
  const bool isSharedRegistered = FindInstance(ABAddressBook::sharedAddressBook()) != nullptr;
  expect(CFDictionaryGetCount(reinterpret_cast<CFDictionaryRef>(registry)) == (isSharedRegistered ? 1 : 0),
         "dead wrappers are not registered");
}

// The contacts of all programs, which start without any: the shared address book lives as long as the process.
class Contacts {
 public:
  Contacts() : folder_(inMemory()) {
    // Nothing is to be opened elsewhere, and no window shown.
    setenv("PATH", folder_.path().c_str(), 1);
    if (const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY); terminal >= 0) {
      ioctl(terminal, TIOCNOTTY);
      ::close(terminal);
    }
    host::options().messageBox = [](const std::string&) {};
  }
  ~Contacts() { std::fprintf(stderr, "%zu calls\n", callCount); }

  // What every program finds.
  void open() {
    host::handleClassEvent(kBook, "DatabaseChanged", [](const Value&, auto) {
      if (!objects.empty()) objects.pop_back();
    });
    host::callShared(kBook, "sharedAddressbook").call("EnableEvent");
    clear();
  }

  void clear() {
    objects.clear();
    texts.clear();
    host::takePendingException();
    const Value book = host::callShared(kBook, "sharedAddressbook");
    for (const char* member : {"people", "groups"}) {
      for (const Value& record : book.call(member).elements()) book.call("removeRecord", record);
    }
    for (const char* name : {"ABPersonVXR", "ABGroupVXR"}) {
      host::callShared(name, "removeProperties", host::callShared(name, "properties"));
    }
    book.call("setMe", nullptr);
    expect(book.call("save") == true, "the contacts are removed");
    host::idle();
  }

 private:
  static ContactsFolder inMemory() {
    if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 1);
    return {};
  }

  ContactsFolder folder_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Contacts contacts;
  static Catalogue catalogue;
  static const StartedHost kHost({}, [] {
    catalogue = readClasses();
    contacts.open();
  });
  const auto outcome = kHost.run([&] {
    Program(catalogue, Input(data, size)).run();
    contacts.clear();
    return "";
  });
  expectNothingRegistered();
  expectEqual(outcome.text, "", "what members raise the guard turns into host exceptions");
  return 0;
}
