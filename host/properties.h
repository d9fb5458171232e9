#pragma once

#include "host/value.h"

#include <optional>
#include <string_view>

namespace host {

// The property of that name in the object's class, its superclasses, or in Variant, which every object may stand for.
// Nothing when there is none. An exception that an accessor raises stays pending.
std::optional<Value> readProperty(REALobject object, std::string_view name);
// False when there is none, it can't be written, or the value doesn't fit it.
bool writeProperty(REALobject object, std::string_view name, const Value& value);

}  // namespace host
