#pragma once

#include <cstdint>
#include <string>

// The Gregorian calendar without time zones. A "wall clock" is the number of seconds from 1970-01-01 00:00:00 to a date
// and time of day, both read in one zone.
namespace foundation {

struct DateFields {
  std::int64_t year;
  int month;   // 1 to 12
  int day;     // 1 to 31
  int hour;    // 0 to 23
  int minute;  // 0 to 59
  int second;  // 0 to 59
};

// Instants farther away than this, some four million years, are not told apart: days since year 1 fit in 32 bits.
inline constexpr std::int64_t kFarthestInstant = std::int64_t{1} << 47;

// Days from 1970-01-01 to the date. Month and day may be out of range: they roll over.
std::int64_t daysSince1970(std::int64_t year, std::int64_t month, std::int64_t day);
DateFields fieldsOfWallClock(std::int64_t wallClock);

// The whole second at or before an instant that is given since the reference date, counted from 1970, within
// kFarthestInstant; the earliest one for a NaN.
std::int64_t wholeSecondSince1970(double sinceReferenceDate);

// "2010-12-09 20:25:30 +0100", the offset being the zone's, in seconds.
std::string descriptionOfWallClock(std::int64_t wallClock, int secondsFromGMT);

}  // namespace foundation
