#include "fuzz/samples.h"

#include "bridge/wrappers.h"
#include "fuzz/target.h"
#include "host/arrays.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/folder_items.h"
#include "host/memory.h"
#include "host/memory_blocks.h"
#include "host/strings.h"
#include "host/variants.h"
#include "platform/contacts/vcard/charset.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <limits>
#include <map>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using host::ElementType;

Sample sampleAt(Input& input, int depth);

template <class Real>
std::string shownReal(Real value) {
  if (std::isnan(value)) return "nan";
  std::array<char, 40> text;
  std::snprintf(text.data(), text.size(), "%a", static_cast<double>(value));
  return text.data();
}

template <class Number>
Sample numberSample(Number value) {
  if constexpr (std::is_floating_point_v<Number>) {
    return {value, shown(value), true, ""};
  } else {
    return {value, shown(value), true, "n:" + std::to_string(value)};
  }
}

template <class Number>
Sample takeNumber(Input& input) {
  return numberSample(input.number<Number>());
}

// The host's Int64 variants hold the unsigned types too, as the nearest value.
template <class Unsigned>
Sample takeUnsigned(Input& input) {
  const auto value = input.number<Unsigned>();
  constexpr auto kMost = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
  Sample sample = numberSample(static_cast<std::int64_t>(std::min<std::uint64_t>(value, kMost)));
  sample.value = value;
  return sample;
}

Sample booleanSample(Input& input) {
  const bool value = input.number() % 2 != 0;
  return {value, shown(value), true, value ? "n:1" : "n:0"};
}

std::string cutAtZero(std::string_view text) { return std::string(text.substr(0, text.find('\0'))); }

std::string utf8Identity(const std::string& whole, const std::string& cut) { return whole == cut ? "s:" + cut : ""; }

Sample textSample(Input& input) {
  const std::string bytes(input.text());
  const std::string cut = cutAtZero(bytes);
  if (!vcard::isValidUtf8(cut)) return {bytes, "''", true, "s:"};
  return {bytes, "'" + cut + "'", true, utf8Identity(bytes, cut)};
}

Sample utf16Sample(Input& input) {
  const std::string_view bytes = input.text();
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), 2 * units.size());
  const host::Value value = host::Value::adopt(host::newString(bytes, kEncodingUTF16));
  const std::string whole = vcard::utf8FromUtf16(units);
  const bool hasUnpaired =
      whole.find("\xEF\xBF\xBD") != std::string::npos && units.find(u'\uFFFD') == std::u16string::npos;
  if (hasUnpaired) return {value, "''", true, ""};
  // With a real replacement character in it, it may have an unpaired surrogate or none.
  const bool isKnown = units.find(u'\uFFFD') == std::u16string::npos;
  const std::string cut = cutAtZero(whole);
  return {value, "'" + cut + "'", isKnown, isKnown ? utf8Identity(whole, cut) : ""};
}

Sample dateSample(Input& input) {
  std::array<int, 6> fields;  // some beyond their range
  fields[0] = input.number<std::int16_t>();
  fields[1] = input.number() % 14;
  fields[2] = input.number() % 34;
  for (std::size_t i = 3; i < fields.size(); ++i) fields[i] = input.number<std::int8_t>();
  const auto [year, month, day, hour, minute, second] = fields;
  Sample sample{host::date(year, month, day, hour, minute, second)};
  sample.expected = shown(sample.value);
  sample.identity = sample.expected;
  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  local.tm_hour = hour;
  local.tm_min = minute;
  local.tm_sec = second;
  local.tm_isdst = -1;
  // Known where the fields are such that a clock shows them.
  const std::tm given = local;
  const bool isInRange = year >= 1970 && year < 2038 && std::mktime(&local) != -1;
  sample.isKnown = isInRange && local.tm_mon == given.tm_mon && local.tm_mday == given.tm_mday &&
                   local.tm_hour == given.tm_hour && local.tm_min == given.tm_min && local.tm_sec == given.tm_sec;
  if (!sample.isKnown) sample.identity.clear();
  return sample;
}

Sample blockSample(Input& input) {
  const std::string bytes(input.text());
  Sample sample{host::memoryBlock(bytes)};
  if (!bytes.empty()) sample.expected = shown(sample.value), sample.identity = "data:" + bytes;
  return sample;
}

Sample itemSample(Input& input) {
  const std::uint8_t choice = input.number();
  if (choice == 0) return {host::Value::adopt(REALnewInstance("FolderItem"))};  // is nowhere
  if (choice == 1) return {host::folderItem("/no-such-folder/item")};
  const std::string path = choice == 2 ? "/" : "/no-such-item-" + std::to_string(choice);
  return {host::folderItem(path), "item " + path, true, "url:" + path};
}

Sample structureSample(Input& input) {
  constexpr std::array<std::pair<const char*, std::size_t>, 4> kStructures{
      {{"NSSizeVXR", 8}, {"NSRectVXR", 16}, {"NSRangeVXR", 8}, {"NSPointVXR", 8}}};
  const auto [className, size] = kStructures[input.number() % kStructures.size()];
  Sample sample{host::Value::adopt(REALnewInstance(className))};
  const std::string_view bytes = input.take(size);
  std::memcpy(dataBlock(sample.value.object()), bytes.data(), bytes.size());
  sample.expected = shown(sample.value);
  sample.identity.clear();
  return sample;
}

Sample otherTypeSample(Input& input) {
  const std::uint8_t code = input.number();
  const std::map<int, Sample> others{{2, numberSample(std::int32_t{1})},
                                     {3, numberSample(std::int64_t{1})},
                                     {4, numberSample(1.0F)},
                                     {5, numberSample(1.0)},
                                     {8, {1, "'1'", true, "s:1"}},
                                     {11, {1, shown(true), true, "n:1"}},
                                     {16, numberSample(std::int32_t{1})}};
  const auto known = others.find(code);
  Sample sample = known == others.end() ? Sample{} : known->second;
  sample.value = host::variantOfType(code, 1);
  return sample;
}

template <class Take>
std::vector<Sample> takeSamples(Input& input, Take take) {
  std::vector<Sample> samples;
  for (int count = input.number(); count > 0 && !input.hasEnded(); --count) samples.push_back(take(input));
  return samples;
}

// Elements without a counterpart are left out.
Sample arrayOf(ElementType type, const std::vector<Sample>& elements) {
  std::vector<host::Value> values;
  Sample sample{nullptr, "", true, "array:", 2};
  for (const Sample& element : elements) {
    values.push_back(element.value);
    sample.isKnown = sample.isKnown && element.isKnown;
    sample.depth = std::max(sample.depth, element.depth + 1);
    if (!element.hasCounterpart()) continue;
    sample.expected += (sample.expected.empty() ? "" : " ") + element.expected;
    if (element.identity.empty()) sample.identity.clear();
    if (!sample.identity.empty()) sample.identity += std::to_string(element.identity.size()) + element.identity;
  }
  sample.expected = "[" + sample.expected + "]";
  sample.value = host::array(type, values);
  return sample;
}

// In an array of strings one that can't be read is nothing, in a variant it is the empty string.
Sample stringElement(Input& input) {
  Sample sample = textSample(input);
  const std::string bytes = sample.value.text();
  if (bytes.empty() || !vcard::isValidUtf8(cutAtZero(bytes))) sample.expected = "Nil";
  return sample;
}

Sample typedArraySample(Input& input) {
  constexpr std::array<std::pair<ElementType, Sample (*)(Input&)>, 7> kKinds{
      {{ElementType::int32, takeNumber<std::int32_t>},
       {ElementType::int64, takeNumber<std::int64_t>},
       {ElementType::single, takeNumber<float>},
       {ElementType::real, takeNumber<double>},
       {ElementType::boolean, booleanSample},
       {ElementType::date, dateSample},
       {ElementType::string, stringElement}}};
  const auto [type, take] = kKinds[input.number() % kKinds.size()];
  return arrayOf(type, takeSamples(input, take));
}

using Entries = std::vector<std::pair<Sample, Sample>>;

// The first key of those that are the same stays, and the last value.
template <class IsSame>
void set(Entries& entries, const Sample& key, const Sample& value, IsSame isSame) {
  const auto found = std::ranges::find_if(entries, [&](const auto& entry) { return isSame(entry.first, key); });
  if (found == entries.end()) {
    entries.emplace_back(key, value);
  } else {
    found->second = value;
  }
}

// For the host a Boolean is no number, an object is only the same as itself, and what Foundation can't tell apart may
// be two keys.
bool isSameInTheHost(const Sample& a, const Sample& b) {
  const auto isPlain = [](const Sample& key) { return !std::holds_alternative<host::ObjectRef>(key.value.data()); };
  const auto isBoolean = [](const Sample& key) { return std::holds_alternative<bool>(key.value.data()); };
  return isPlain(a) && isPlain(b) && isBoolean(a) == isBoolean(b) && a.identity == b.identity && a.value == b.value;
}

bool isSameInFoundation(const Sample& a, const Sample& b) { return a.identity == b.identity; }

// The keys come in no order that could be relied on.
std::string joined(const std::multiset<std::string>& entries) {
  std::string list;
  for (const std::string& entry : entries) list += (list.empty() ? "" : " ") + entry;
  return list;
}

Sample dictionaryAt(Input& input, int depth) {
  Sample sample{host::dictionary({}), "", true, "", 1};
  Entries inHost;
  for (int count = input.number(); count > 0 && !input.hasEnded(); --count) {
    const Sample key = sampleAt(input, depth + 1);
    const Sample value = sampleAt(input, depth + 1);
    sample.value.assign("Value", key.value, value.value);
    sample.depth = std::max({sample.depth, 1 + key.depth, 1 + value.depth});
    sample.isKnown = sample.isKnown && key.isKnown && value.isKnown && !key.identity.empty();
    // What has the key nil is left out.
    if (!std::holds_alternative<std::monostate>(key.value.data())) set(inHost, key, value, isSameInTheHost);
  }
  Entries entries;
  for (const auto& [key, value] : inHost) set(entries, key, value, isSameInFoundation);
  // Which of several values comes last is up to the host.
  if (entries.size() != inHost.size() && host::isHostile()) sample.isKnown = false;
  std::multiset<std::string> texts;
  for (const auto& [key, value] : entries) texts.insert(key.expected + "=" + value.expected);
  sample.expected = "{" + joined(texts) + "}";
  return sample;
}

Sample sampleAt(Input& input, int depth) {
  constexpr std::array<Sample (*)(Input&), 13> kFlat{
      takeNumber<std::int32_t>,
      takeNumber<std::int64_t>,
      takeUnsigned<std::uint32_t>,
      takeUnsigned<std::uint64_t>,
      takeNumber<float>,
      takeNumber<double>,
      booleanSample,
      textSample,
      utf16Sample,
      dateSample,
      blockSample,
      itemSample,
      typedArraySample,
  };
  const std::size_t kind = depth < kGreatestDepth ? input.number() % 17U : 0;
  if (kind == 0) return {};
  if (kind <= kFlat.size()) return kFlat[kind - 1](input);
  if (kind == 15) return dictionaryAt(input, depth);
  if (kind == 16) return input.number() % 2 == 0 ? structureSample(input) : otherTypeSample(input);
  return arrayOf(ElementType::object, takeSamples(input, [depth](Input& from) { return sampleAt(from, depth + 1); }));
}

// Nil for the key that isn't a number, under which nothing is found again.
host::Value valueOf(const host::Value& dictionary, const host::Value& key) {
  return dictionary.call("HasKey", key) == host::Value(true) ? dictionary.call("Value", key) : host::Value();
}

std::string shownEntries(const host::Value& dictionary) {
  std::multiset<std::string> entries;
  for (std::int64_t i = 0; i < dictionary.get("Count").integer(); ++i) {
    const host::Value key = dictionary.call("Key", static_cast<int>(i));
    entries.insert(shown(key) + "=" + shown(valueOf(dictionary, key)));
  }
  return joined(entries);
}

std::string shownObject(const host::Value& object) {
  const std::string type = object.typeName();
  if (type == "Date") return host::dateText(object.object());
  if (type == "MemoryBlock") return "block " + host::bytesOf(object);
  if (type == "FolderItem") return "item " + host::pathOf(object).native();
  if (type == "Dictionary") return "{" + shownEntries(object) + "}";
  if (type.ends_with("()")) {
    std::string list;
    for (const host::Value& element : object.elements()) list += (list.empty() ? "" : " ") + shown(element);
    return "[" + list + "]";
  }
  // A structure.
  std::string text = type;
  const auto* bytes = reinterpret_cast<const unsigned char*>(dataBlock(object.object()));
  for (std::size_t i = 0; i < (type == "NSRectVXR" ? 16U : 8U); ++i) text += ' ' + std::to_string(bytes[i]);
  return text;
}

}  // namespace

Sample takeSample(Input& input) { return sampleAt(input, 1); }

Sample takeDictionary(Input& input) { return dictionaryAt(input, 1); }

void expectStays(const host::Value& once, host::Value (*roundTrip)(const host::Value&)) {
  const host::Value twice = roundTrip(once);
  const std::string text = shown(twice);
  if (shown(once).find("Nil=") == std::string::npos) expectEqual(text, shown(once), "the second time around");
  expectEqual(shown(roundTrip(twice)), text, "the third time around");
}

std::string shown(const host::Value& value) {
  return std::visit(
      [&](const auto& data) -> std::string {
        using T = std::remove_cvref_t<decltype(data)>;
        if constexpr (std::is_same_v<T, std::monostate>) {
          return "Nil";
        } else if constexpr (std::is_same_v<T, host::StringRef>) {
          return "'" + value.text() + "'";
        } else if constexpr (std::is_same_v<T, host::ObjectRef>) {
          return shownObject(value);
        } else if constexpr (std::is_floating_point_v<T>) {
          return value.typeName() + " " + shownReal(data);
        } else {
          return value.typeName() + " " + std::to_string(data);
        }
      },
      value.data());
}
