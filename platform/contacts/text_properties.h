#pragma once

#include "platform/contacts/constants.h"

#include <array>
#include <string_view>

namespace contacts {

inline constexpr int kWholeValue = -1;

// A property that is one line's value or one field of it.
struct TextProperty {
  std::string_view property;
  std::string_view line;
  int field;
};

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

// What the lines that hold a person's flags say for a flag.
struct PersonFlagWord {
  std::string_view line;
  std::string_view word;
  int mask;
  int flag;
};

inline constexpr std::array kPersonFlagWords{
    PersonFlagWord{"X-ABSHOWAS", "PERSON", kABShowAsMask, kABShowAsPerson},
    PersonFlagWord{"X-ABSHOWAS", "COMPANY", kABShowAsMask, kABShowAsCompany},
    PersonFlagWord{"X-ABSHOWAS", "RESOURCE", kABShowAsMask, kABShowAsResource},
    PersonFlagWord{"X-ABSHOWAS", "ROOM", kABShowAsMask, kABShowAsRoom},
    PersonFlagWord{"X-ABORDER", "FIRST", kABNameOrderingMask, kABFirstNameFirst},
    PersonFlagWord{"X-ABORDER", "LAST", kABNameOrderingMask, kABLastNameFirst},
};

}  // namespace contacts
