#pragma once

#include "platform/contacts/entry_codec.h"
#include "platform/contacts/multi_value.h"
#include "platform/contacts/vcard/editor.h"

#include <string_view>

// The parts of changedCard (card_changes.h).
namespace contacts {

// Makes the property's lines those of the value; nil removes them. Lines of entries that stay the same stay untouched.
void writeEntries(vcard::Editor& editor, const EntryCodec& codec, std::string_view uid, ABMultiValue value);

}  // namespace contacts
