#include "apps/contacts/values.h"

#include "apps/contacts/failure.h"
#include "apps/contacts/text.h"
#include "host/arrays.h"
#include "host/classes.h"
#include "host/dates.h"
#include "host/dictionaries.h"
#include "host/memory_blocks.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <variant>

namespace contacts {
namespace {

// The year of dates that have none.
constexpr int kNoYear = 1604;

[[noreturn]] void refuse(std::string_view text, std::string_view expected) {
  throw Failure("\"" + printable(text) + "\" is no " + std::string(expected));
}

int daysIn(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && isLeap ? 29 : kDays[month - 1];
}

host::Value dateFrom(std::string_view text) {
  const std::string whole(text);
  int year = kNoYear;
  int month = 0;
  int day = 0;
  int end = 0;
  const bool isRead = whole.starts_with("--")
                          ? std::sscanf(whole.c_str(), "--%2d-%2d%n", &month, &day, &end) == 2
                          : std::sscanf(whole.c_str(), "%4d-%2d-%2d%n", &year, &month, &day, &end) == 3;
  if (!isRead || end != static_cast<int>(whole.size()) || year < 1 || month < 1 || month > 12 || day < 1 ||
      day > daysIn(year, month)) {
    refuse(text, "date; expected year-month-day, or --month-day");
  }
  return host::date(year, month, day, 12);
}

template <class Number>
Number numberFrom(std::string_view text, std::string_view expected) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) refuse(text, expected);
  return number;
}

}  // namespace

std::string dateText(const host::Value& date) {
  const auto field = [&](const char* name) { return static_cast<int>(date.get(name).integer()); };
  char buffer[80];
  if (field("Year") == kNoYear) {
    std::snprintf(buffer, sizeof buffer, "--%02d-%02d", field("Month"), field("Day"));
    return buffer;
  }
  return host::dateText(date.object());
}

std::string valueText(const host::Value& book, const host::Value& value) {
  const std::string type = value.typeName();
  if (value.isNil()) return {};
  if (type == "String") return value.text();
  if (type == "Date") {
    // Days are kept as their noon.
    std::string text = dateText(value);
    for (const char* noTime : {" 12:00:00", " 00:00:00"}) {
      if (text.ends_with(noTime)) text.resize(text.size() - 9);
    }
    return text;
  }
  if (type == "MemoryBlock") return std::to_string(host::bytesOf(value).size()) + " bytes";
  if (type == "Dictionary") {
    const host::Value formatted = book.isNil() ? host::Value() : book.call("formattedAddressFromDictionary", value);
    std::string text = formatted.isNil() ? std::string() : formatted.get("Text").text();
    std::string line;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find('\n', at), text.size());
      if (end > at) line += (line.empty() ? "" : ", ") + text.substr(at, end - at);
      at = end + 1;
    }
    if (!line.empty()) return line;
    for (const auto& [key, each] : entriesOf(value)) {
      line += (line.empty() ? "" : ", ") + key + ": " + valueText(book, each);
    }
    return line;
  }
  if (type.ends_with("()")) {
    std::string line;
    for (const host::Value& each : value.elements()) line += (line.empty() ? "" : ", ") + valueText(book, each);
    return line;
  }
  if (std::holds_alternative<host::ObjectRef>(value.data())) {
    static const host::Declaration description = host::parseDeclaration("Description as string");
    const bool isDescribed = host::findMethod(host::classOf(value.object()), description) != nullptr;
    return isDescribed ? value.call("Description").text() : type;
  }
  if (type == "Single" || type == "Double") {
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.15g", value.number());
    return buffer;
  }
  return std::to_string(value.integer());
}

host::Value valueFrom(std::string_view text, std::int64_t type) {
  switch (type) {
    case kString:
      return std::string(text);
    case kInteger:
      return numberFrom<std::int32_t>(text, "whole number");
    case kReal:
      return numberFrom<double>(text, "number");
    case kDate:
      return dateFrom(text);
    default:
      throw Failure("a value of type " + typeText(type) + " can't be written as text");
  }
}

std::vector<std::pair<std::string, host::Value>> entriesOf(const host::Value& dictionary) {
  std::vector<std::pair<std::string, host::Value>> entries;
  const std::int64_t count = dictionary.get("Count").integer();
  for (std::int64_t i = 0; i < count; ++i) {
    const host::Value key = dictionary.call("Key", i);
    entries.emplace_back(key.text(), dictionary.call("Value", key));
  }
  return entries;
}

host::Value dictionaryOf(const std::vector<std::pair<std::string, host::Value>>& entries) {
  const host::Value dictionary = host::dictionary({});
  for (const auto& [key, value] : entries) dictionary.assign("Value", key, value);
  return dictionary;
}

host::Value arrayOf(std::string_view type, const std::vector<host::Value>& elements) {
  constexpr std::pair<std::string_view, host::ElementType> kTypes[] = {
      {"Boolean", host::ElementType::boolean}, {"Integer", host::ElementType::int32},
      {"Int64", host::ElementType::int64},     {"Double", host::ElementType::real},
      {"String", host::ElementType::string},   {"Date", host::ElementType::date},
  };
  for (const auto& [name, code] : kTypes) {
    const auto isOfType = [expected = name](const host::Value& each) { return each.typeName() == expected; };
    if (host::sameName(name, type) && std::ranges::all_of(elements, isOfType)) return host::array(code, elements);
  }
  return host::objectArray(elements);
}

std::vector<Entry> entriesOfMultiValue(const host::Value& multiValue) {
  std::vector<Entry> entries;
  const std::string primary = multiValue.call("primaryIdentifier").text();
  const auto count = static_cast<std::uint32_t>(multiValue.call("count").integer());
  for (std::uint32_t i = 0; i < count; ++i) {
    Entry entry{multiValue.call("identifierAtIndex", i).text(), multiValue.call("labelAtIndex", i).text(),
                multiValue.call("valueAtIndex", i)};
    entry.isPrimary = entry.identifier == primary;
    entries.push_back(std::move(entry));
  }
  return entries;
}

}  // namespace contacts
