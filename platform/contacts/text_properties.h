#pragma once

#include "platform/contacts/constants.h"
#include "platform/contacts/schema.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace contacts {

inline constexpr int kWholeValue = -1;
// Of the N line.
inline constexpr std::size_t kNameFields = 5;
inline constexpr std::size_t kFirstNameField = 1;

// A property that is one line's value or one field of it.
struct TextProperty {
  std::string_view property;
  std::string_view line;
  int field;
};

// The name's fields come first, in their order.
inline constexpr std::array kTextProperties{
    TextProperty{"Last", "N", 0},
    TextProperty{"First", "N", 1},
    TextProperty{"Middle", "N", 2},
    TextProperty{"Title", "N", 3},
    TextProperty{"Suffix", "N", 4},
    TextProperty{"Nickname", "NICKNAME", kWholeValue},
    TextProperty{"MaidenName", "X-MAIDENNAME", kWholeValue},
    TextProperty{"FirstPhonetic", "X-PHONETIC-FIRST-NAME", kWholeValue},
    TextProperty{"MiddlePhonetic", "X-PHONETIC-MIDDLE-NAME", kWholeValue},
    TextProperty{"LastPhonetic", "X-PHONETIC-LAST-NAME", kWholeValue},
    TextProperty{"Organization", "ORG", 0},
    TextProperty{"ABDepartment", "ORG", 1},
    TextProperty{"JobTitle", "TITLE", kWholeValue},
    TextProperty{"Note", "NOTE", kWholeValue},
    TextProperty{"GroupName", "FN", kWholeValue},
};

inline bool isNameField(const Property& property) { return property.text != nullptr && property.text->line == "N"; }

inline constexpr std::string_view kShowAsLine = "X-ABShowAs";
inline constexpr std::string_view kOrderLine = "X-ABOrder";
// A number that holds more than the words of the other two can say.
inline constexpr std::string_view kFlagsLine = "X-ABFLAGS";

// What the lines that hold a person's flags say for a flag.
struct PersonFlagWord {
  std::string_view line;
  std::string_view word;
  int mask;
  int flag;
};

inline constexpr std::array kPersonFlagWords{
    PersonFlagWord{kShowAsLine, "PERSON", kABShowAsMask, kABShowAsPerson},
    PersonFlagWord{kShowAsLine, "COMPANY", kABShowAsMask, kABShowAsCompany},
    PersonFlagWord{kShowAsLine, "RESOURCE", kABShowAsMask, kABShowAsResource},
    PersonFlagWord{kShowAsLine, "ROOM", kABShowAsMask, kABShowAsRoom},
    PersonFlagWord{kOrderLine, "FIRST", kABNameOrderingMask, kABFirstNameFirst},
    PersonFlagWord{kOrderLine, "LAST", kABNameOrderingMask, kABLastNameFirst},
};

}  // namespace contacts
