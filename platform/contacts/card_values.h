#pragma once

#include "platform/contacts/schema.h"
#include "platform/contacts/text_properties.h"
#include "platform/contacts/vcard/card.h"
#include "platform/objc/retained.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace contacts {

// What a card with that id says of a property of persons or groups; nil when it says nothing. Not for the id itself,
// and not for views of other properties.
Retained<NSObject> valueFromCard(const Property& property, const vcard::Card& card, std::string_view uid);

// What it says of the fields of a person's name, which are asked for one after the other.
std::array<Retained<NSObject>, kNameFields> namesFromCard(const vcard::Card& card);

// Whether a name line that says something has a name whose fields stand in its value as they are.
bool isPlainName(const vcard::Line& line);
// The fields of such a value.
std::array<Retained<NSObject>, kNameFields> namesFromFields(std::string_view value);

// Whether there is more in it than fields without a text.
bool saysSomething(const vcard::Line& line);
// The first line of that name that says something.
std::optional<std::size_t> saidLine(const vcard::Card& card, std::string_view name);
// Whether a card that doesn't say so is shown as a company: it has no name but a company's.
bool isNamedAsCompany(const vcard::Card& card);

}  // namespace contacts
