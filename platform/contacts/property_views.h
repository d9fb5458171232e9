#pragma once

#include "platform/contacts/schema.h"
#include "platform/objc/retained.h"

#include <string_view>

// Some properties show what another one holds: a birthday as a date instead of its components, one service's entries
// out of all instant messages. What they hold is kept, read and written as that other property.
namespace contacts {

struct PropertyView {
  std::string_view property;
  std::string_view source;
  // What the view shows of the source's value, which may be nil; nil when that is nothing.
  Retained<NSObject> (*read)(const PropertyView& view, NSObject source);
  // The source's value after the view was given a new one; both values may be nil.
  Retained<NSObject> (*write)(const PropertyView& view, NSObject source, NSObject value);
};

// Null where none of the framework's own properties of that name is a view.
const PropertyView* findPropertyView(std::string_view property);

}  // namespace contacts
