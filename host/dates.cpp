#include "host/dates.h"

#include "host/built_in_classes.h"
#include "host/class_records.h"
#include "host/classes.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <iterator>

namespace host {

namespace {

struct DateData {
  std::int32_t year, month, day, hour, minute, second;
};

DateData& dataOf(REALobject date) { return host::dataOf<DateData>(date, dateDefinition()); }

// A date that host code makes is the present.
void constructDate(REALobject date) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  dataOf(date) = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec};
}

REALproperty properties[] = {
    storedProperty("Year", "Int32", offsetof(DateData, year)),
    storedProperty("Month", "Int32", offsetof(DateData, month)),
    storedProperty("Day", "Int32", offsetof(DateData, day)),
    storedProperty("Hour", "Int32", offsetof(DateData, hour)),
    storedProperty("Minute", "Int32", offsetof(DateData, minute)),
    storedProperty("Second", "Int32", offsetof(DateData, second)),
};

}  // namespace

REALclassDefinition& dateDefinition() {
  static REALclassDefinition definition{.name = "Date",
                                        .dataSize = sizeof(DateData),
                                        .constructor = constructDate,
                                        .properties = properties,
                                        .propertyCount = std::size(properties)};
  return definition;
}

Value date(int year, int month, int day, int hour, int minute, int second) {
  Value made = Value::adopt(newInstance(requireClass("Date")));
  dataOf(made.object()) = {year, month, day, hour, minute, second};
  return made;
}

bool isDate(REALobject object) { return classOf(object).definition == &dateDefinition(); }

std::string dateText(REALobject date) {
  const DateData& data = dataOf(date);
  std::array<char, 80> buffer;
  std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d %02d:%02d:%02d", data.year, data.month, data.day,
                data.hour, data.minute, data.second);
  return buffer.data();
}

}  // namespace host
