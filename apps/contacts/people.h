#pragma once

#include "host/value.h"

#include <string>
#include <string_view>
#include <vector>

// Which records the user means.
namespace contacts {

// By unique id, by the whole name, by an e-mail address, or by a part of the name that no other has. Throws Failure,
// which lists the candidates where there are several.
host::Value findPerson(const host::Value& book, std::string_view text);
host::Value findGroup(const host::Value& book, std::string_view text);

// All whose names, companies, addresses, numbers, notes or other texts contain it, whatever the case; all for an empty
// text.
std::vector<host::Value> peopleWith(const host::Value& book, std::string_view text);

std::string nameOf(const host::Value& record);

}  // namespace contacts
