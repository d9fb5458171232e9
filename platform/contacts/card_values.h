#pragma once

#include "platform/contacts/schema.h"
#include "platform/contacts/vcard/card.h"
#include "platform/objc/retained.h"

namespace contacts {

// What a card says of a property; nil when it says nothing. The property may be of either kind of record.
Retained<NSObject> valueFromCard(const Property& property, const vcard::Card& card);

}  // namespace contacts
