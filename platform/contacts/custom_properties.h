#pragma once

#include "platform/contacts/schema.h"
#include "platform/foundation/array.h"
#include "platform/foundation/dictionary.h"

#include <string_view>
#include <vector>

// Custom properties belong to the folder and are kept at once, not with the next save of a book.
namespace contacts {

// The property of that name, which another process may just have added; null when there is none.
const Property* findProperty(const Schema& schema, NSString name);
// All of the schema, with what other processes have added. A folder that can't be read adds nothing.
std::vector<const Property*> presentProperties(const Schema& schema);

// How many names are new, of a dictionary of types (NSNumber) by name. A name or a type that can't be one, and a folder
// that can't be written, give -1, and nothing is added.
NSInteger addCustomProperties(const Schema& schema, NSDictionary properties);
// How many custom properties there were among the names; what records had of them is gone, too. -1 as above.
NSInteger removeCustomProperties(const Schema& schema, NSArray names);

}  // namespace contacts
