#include "tests/sweeps/member_calls.h"

#include "host/arrays.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/error.h"
#include "host/exceptions.h"
#include "host/folder_items.h"
#include "host/memory_blocks.h"
#include "host/native_value.h"
#include "host/objects.h"

#include <algorithm>
#include <cctype>

namespace {

using host::Value;

constexpr const char* kBook = "ABAddressBookVXR";
// Custom properties: one that is there, one that isn't, one of dictionaries.
constexpr const char* kHere = "sweep.here";
constexpr const char* kNew = "sweep.new";
constexpr const char* kRich = "sweep.rich";

const std::string kLongText = "Ünusually long: " + std::string(200, 'x');

// One white pixel.
const std::string kPicture(
    "GIF89a\x01\0\x01\0\x80\0\0\xff\xff\xff\0\0\0,\0\0\0\0\x01\0\x01\0\0\x02\x02"
    "D\x01\0;",
    35);

Value emptyInstance(std::string_view className) {
  host::HostClass* found = host::findClass(className);
  return found == nullptr ? Value() : Value::adopt(host::newInstance(*found));
}

Value richDictionary() {
  return host::dictionary({{"text", kLongText},
                           {"whole", 1},
                           {"real", 2.5},
                           {"date", host::date(2012, 7, 14, 9, 5, 7)},
                           {"data", host::memoryBlock("abc")},
                           {"list", host::objectArray({"a", std::int64_t{1} << 40, nullptr})},
                           {"in", host::dictionary({{"City", "Ghent"}})}});
}

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

host::Parameter parameterOf(const char* name, const host::Type& type) { return {.name = name, .type = type}; }

// What host code can't have, on a host or a platform that lacks something, is nil.
template <class Make>
Value tried(Make make) {
  try {
    return make();
  } catch (const host::HostException&) {
  } catch (const host::Error&) {
  }
  return nullptr;
}

void dropReference(REALobject object) { host::unlock(object); }

}  // namespace

Value dictionaryOfEveryKind() {
  return host::dictionary({{"rich", richDictionary()},
                           {2, host::array(host::ElementType::int32, {1, 2})},
                           {"flags", host::array(host::ElementType::boolean, {true, false})},
                           {"dates", host::array(host::ElementType::date, {host::date(2012, 7, 14), nullptr})},
                           {"file", host::folderItem("/")},
                           {nullptr, true},
                           {"size", emptyInstance("NSSizeVXR")},
                           {"image", emptyInstance("NSImageVXR")}});
}

std::string MemberCall::name() const {
  constexpr const char* kGiven[] = {"nil", "empty", "typical", "odd", "rich"};
  return std::string(owner->name()) + "." + member + ", " + kGiven[static_cast<int>(given)] + " arguments" +
         (isSelfEmpty ? " to an empty object" : "");
}

std::vector<MemberCall> callsOf(const host::HostClass& owner) {
  std::vector<MemberCall> rows;
  const auto addMethods = [&](const std::vector<host::Method>& methods, bool hasSelf) {
    for (const host::Method& method : methods) {
      const auto& [name, parameters, result] = method.declaration;
      rows.push_back({&owner, method.record->declaration, method.record->function, hasSelf, parameters, result});
      if (method.record->setter == nullptr) continue;
      rows.push_back({&owner, "set " + name, method.record->setter, hasSelf, parameters});
      rows.back().parameters.push_back(parameterOf("assigned", result));
    }
  };
  addMethods(owner.sharedMethods, false);
  addMethods(owner.methods, true);
  for (const host::Property& property : owner.properties) {
    if (property.record->getter == kHostAccessor) continue;
    const host::Parameter word = parameterOf("word", host::namedType("Integer"));
    rows.push_back({&owner, property.record->name, property.record->getter, true, {word}, property.type});
    if (property.record->setter == nullptr) continue;
    const host::Parameter assigned = parameterOf("assigned", property.type);
    rows.push_back(
        {&owner, std::string("set ") + property.record->name, property.record->setter, true, {word, assigned}});
  }
  if (owner.definition->constructor != nullptr) {
    rows.push_back({&owner, "class constructor", reinterpret_cast<void*>(owner.definition->constructor)});
  }
  if (owner.definition->destructor != nullptr) {
    rows.push_back({&owner, "class destructor", reinterpret_cast<void*>(dropReference)});
  }
  // The shared object is made once in a process and stays: last, and the longer way first.
  std::ranges::stable_sort(rows, {}, [](const MemberCall& row) {
    return row.is("sharedAddressbookMT") ? 1 : row.is("sharedAddressbook") ? 2 : 0;
  });

  std::vector<MemberCall> calls;
  for (MemberCall& row : rows) {
    if (row.hasSelf && !row.is("Constructor") && !row.is("class")) {
      row.isSelfEmpty = true;
      calls.push_back(row);
      row.isSelfEmpty = false;
    }
    const auto isRich = [](const host::Type& type) {
      return type.kind == host::TypeKind::variant || host::sameName(type.name, "Dictionary");
    };
    const bool takesRich = isRich(row.result) || std::ranges::any_of(row.parameters, isRich, &host::Parameter::type);
    const bool takesNothing = row.parameters.empty() || row.parameters.back().name == "word";
    for (const Given given : {Given::typical, Given::nothing, Given::empty, Given::odd, Given::rich}) {
      if (given == Given::rich ? !takesRich : takesNothing && given != Given::typical) continue;
      row.given = given;
      calls.push_back(row);
    }
  }
  return calls;
}

const std::vector<Card>& sweptCards() {
  static const std::vector<Card> cards{
      ::person(
          "Ada", "Lovelace", "p1",
          {"EMAIL:ada@x.org", "EMAIL:2@x.org", "TEL;TYPE=HOME;X-ABID=t1:1", "TEL;TYPE=WORK;X-ABID=t2:2",
           "ADR;TYPE=HOME;X-ABID=d1:;;12 Main St;Springfield;IL;62701;USA", "BDAY:1815-12-10", "NOTE:" + kLongText}),
      ::person("Grace", "Hopper", "p2", {"EMAIL:ADA@x.org"}), group("Play", "g2", {"p2"}),
      group("Work", "g1", {"p1", "g2"})};
  return cards;
}

Scene::Scene(const MemberCall& call) : call_(call) {
  const bool isOfSchema = call.is("addProperty") || call.is("removePropert") || call.is("properties");
  for (const char* schema : {"ABPersonVXR", "ABGroupVXR"}) {
    if (isOfSchema) {
      for (const char* name : {kNew, kHere, kRich}) {
        tried([&] { return host::callShared(schema, "removeProperty", name); });
      }
      tried([&] { return host::callShared(schema, "addProperty", kHere, 1); });
    } else if (call.given == Given::rich) {
      tried([&] { return host::callShared(schema, "addProperty", kRich, 6); });
    }
  }
  if (call.hasSelf && !call.isSelfEmpty && !call.is("Constructor") && !call.is("class constructor")) {
    self_ = typical(call.owner->name());
  }
  if (call.hasSelf && self_.isNil()) self_ = emptyInstance(call.owner->name());
  for (const host::Parameter& parameter : call.parameters) {
    arguments_.push_back(parameter.name == "word" ? Value(0) : tried([&] { return argument(parameter); }));
  }
}

Value Scene::book() {
  if (book_.isNil()) book_ = host::callShared(kBook, "addressBook");
  return book_;
}

Value Scene::person() {
  return tried([this] { return book().call("personForUniqueId", "p1:ABPerson"); });
}

Value Scene::typical(std::string_view className) {
  return tried([&]() -> Value {
    if (className == kBook) return call_.is("class") ? host::newObject(kBook) : book();
    if (className == "ABPersonVXR" || className == "ABRecordVXR") {
      const Value record = person();
      if (call_.is("valueForProperty") && call_.given == Given::rich) {
        record.call("setValue", richDictionary(), kRich);
        record.call("setImageData", host::memoryBlock(kPicture));
      }
      if (call_.is("image")) record.call("setImageData", host::memoryBlock(kPicture));
      return record;
    }
    if (className == "ABGroupVXR") return book().call("groupForUniqueId", "g1:ABGroup");
    if (className == "ABMultiValueVXR") {
      return person().call("valueForProperty", call_.given == Given::rich ? "Address" : "Phone");
    }
    if (className == "ABMutableMultiValueVXR") return typical("ABMultiValueVXR").call("edit");
    if (className == "ABSearchElementVXR") {
      return host::callShared("ABPersonVXR", "searchElementForProperty", "First", "", "", "Ada", 0);
    }
    if (className == "NSImageVXR") return host::newObject(className, host::memoryBlock(kPicture));
    if (className != "ABPickerVXR") return emptyInstance(className);
    const Value picker = host::newObject(className);
    if (call_.is("class")) return picker;
    picker.call("Create");
    const char* property = call_.is("SelectedDictionaries") ? "Address" : "Phone";
    picker.call("AddProperty", property);
    picker.set("DisplayedProperty", property);
    const Value shown = host::newObject(kBook);
    picker.call("SelectGroup", shown.call("groupForUniqueId", "g1:ABGroup"), false);
    picker.call("SelectPerson", shown.call("personForUniqueId", "p1:ABPerson"), false);
    return picker;
  });
}

Value Scene::text(const std::string& parameter) {
  const bool isOdd = call_.given == Given::odd;
  if (call_.is("addProperty")) return isOdd ? "Phone" : kNew;
  if (call_.is("removeProperty")) return isOdd ? "Phone" : kHere;
  if (parameter.find("property") != std::string::npos) {
    return isOdd ? "Note" : call_.given == Given::rich ? kRich : "Phone";
  }
  if (parameter == "uniqueid") return isOdd ? "g1:ABGroup" : "p1:ABPerson";
  if (parameter == "identifier" && !isOdd) return "t1";
  if (parameter == "label" && !isOdd) return "_$!<Home>!$_";
  if (parameter == "key" && !isOdd) return "";
  if (parameter == "columntitle") return "Phone";
  if (parameter == "name" && !isOdd) return "Work";
  if (parameter == "email" && !isOdd) return "ada@X.org";
  return isOdd ? kLongText : "Ada";
}

Value Scene::argument(const host::Parameter& parameter) {
  const host::Type& type = parameter.type;
  const bool isOdd = call_.given == Given::odd;
  const bool isMade = isOdd || call_.given == Given::typical || call_.given == Given::rich;
  if (type.isArray) {
    if (call_.given == Given::nothing) return nullptr;
    const bool isOfStrings = type.kind == host::TypeKind::string;
    if (!isMade) return isOfStrings ? host::stringArray({}) : host::objectArray({});
    if (isOfStrings) return host::stringArray({isOdd ? "" : kHere, kNew});
    return host::objectArray({isOdd ? Value() : typical(type.name), emptyInstance(type.name)});
  }
  switch (type.kind) {
    case host::TypeKind::string:
      return isMade ? text(lowerCase(parameter.name)) : call_.given == Given::empty ? Value("") : Value();
    case host::TypeKind::boolean:
      return isMade;
    case host::TypeKind::single:
      return isOdd ? -1e30F : isMade ? 100.5F : 0.0F;
    case host::TypeKind::uint32:
      return isOdd ? Value(0xFFFFFFFFU) : Value(0U);
    case host::TypeKind::integer:
      return isOdd ? -1 : isMade && call_.is("addProperty") ? 257 : 0;
    case host::TypeKind::variant:
      if (!isMade) return call_.given == Given::empty ? Value("") : Value();
      if (call_.given == Given::rich) return richDictionary();
      if (isOdd) return Value(kLongText);
      return call_.is("setValue") ? person().call("valueForProperty", "Phone") : Value("Ada");
    case host::TypeKind::object:
      break;
    default:
      return nullptr;
  }
  if (call_.given == Given::nothing) return nullptr;
  if (host::sameName(type.name, "Dictionary")) {
    if (isOdd) return dictionaryOfEveryKind();
    return call_.given == Given::rich ? richDictionary()
           : isMade                   ? host::dictionary({{"City", "Ghent"}, {"Street", kLongText}})
                                      : host::dictionary({});
  }
  if (host::sameName(type.name, "MemoryBlock")) {
    const bool isPicture = call_.member.find("mage") != std::string::npos;
    if (!isMade || isOdd) return host::memoryBlock(isMade ? "abc" : "");
    return host::memoryBlock(isPicture ? kPicture
                                       : "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Alan\r\nN:;Alan;;;\r\nEND:VCARD\r\n");
  }
  if (!isMade || parameter.isByReference || (isOdd && host::sameName(type.name, kBook)))
    return emptyInstance(type.name);
  if (!isOdd) return typical(type.name);
  // Of no book, or of another class than expected.
  if (host::sameName(type.name, "ABRecordVXR") || host::sameName(type.name, "ABGroupVXR")) {
    return tried([] { return host::newObject("ABGroupVXR"); });
  }
  return tried([&] { return host::newObject(type.name); });
}

Value Scene::call() {
  host::NativeCall native;
  host::ObjectRef self = host::ObjectRef::share(call_.hasSelf ? self_.object() : nullptr);
  if (call_.hasSelf) native.addWord(reinterpret_cast<Word>(self.get()));
  // It has the last reference.
  if (call_.is("class destructor")) {
    book_ = self_ = nullptr;
    (void)self.leak();
  }
  std::vector<host::NativeValue> values;
  values.reserve(arguments_.size());
  for (std::size_t i = 0; i < arguments_.size(); ++i) {
    host::NativeValue& value = values.emplace_back(call_.parameters[i].type, arguments_[i]);
    if (!call_.parameters[i].isByReference) {
      value.passTo(native);
      continue;
    }
    arguments_[i] = nullptr;
    native.addWord(reinterpret_cast<Word>(value.address()));
  }
  const Value result = host::NativeValue::resultOf(native, call_.function, call_.result).value();
  for (std::size_t i = 0; i < arguments_.size(); ++i) {
    if (call_.parameters[i].isByReference) arguments_[i] = values[i].value();
  }
  return result;
}

std::vector<Value> Scene::objects() const {
  std::vector<Value> all = arguments_;
  all.push_back(self_);
  std::erase_if(all, [](const Value& value) { return !std::holds_alternative<host::ObjectRef>(value.data()); });
  return all;
}
