#pragma once

#include "host/value.h"

#include <string>

// The class "Date": six fields of wall-clock time, kept as they are set.
namespace host {

Value date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
bool isDate(REALobject object);
// "2012-07-14 09:05:07"
std::string dateText(REALobject date);

}  // namespace host
