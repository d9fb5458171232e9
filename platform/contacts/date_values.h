#pragma once

#include "platform/contacts/entry_codec.h"
#include "platform/contacts/vcard/dates.h"
#include "platform/foundation/date.h"
#include "platform/foundation/date_components.h"

namespace contacts {

// A day as a card's line gives it: the year 1604, and one named by X-APPLE-OMIT-YEAR, stand in for one that isn't
// known.
std::optional<vcard::Date> dateOnLine(std::string_view text, const std::vector<vcard::Parameter>& parameters);
// Makes the draft's value of it, in the form that version 3.0 has for a day without a year.
void writeDate(LineDraft& draft, NSDateComponents components);

Retained<NSObject> newDateComponents(const vcard::Date& date);
// Nothing when month or day is missing or out of range.
std::optional<vcard::Date> dateOf(NSDateComponents components);

// Noon GMT of the day; of a year that stands in where there is none.
Retained<NSObject> newDate(const vcard::Date& date);
// The day that an instant falls on in the local time zone, except that an instant made by newDate gives its day back.
vcard::Date dayOf(NSDate date);

// In the local time zone.
vcard::Date today();

}  // namespace contacts
