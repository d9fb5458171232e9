#pragma once

#include "platform/contacts/entry_codec.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/vcard/line.h"

// Custom properties stand in lines of their own: X-ABPROPERTY;X-NAME=<the property>:<typed_text.h>.
namespace contacts {

// Whether lines can have the property's name: it comes back as it is.
bool canNameLines(const Property& custom);
bool isLineOf(const Property& custom, const vcard::Line& line);
// For the one value of a property that isn't multi-valued, and for one entry of one that is.
Retained<NSObject> customValue(const Property& custom, const EntryLine& line);
LineDraft customDraft(const Property& custom, NSObject value);

}  // namespace contacts
