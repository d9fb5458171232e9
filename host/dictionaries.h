#pragma once

#include "host/value.h"

#include <initializer_list>
#include <utility>

namespace host {

// An object of the class "Dictionary", entries in the order given. Keys are compared as values are: numbers by value,
// strings by text and letter case, objects by identity.
Value dictionary(std::initializer_list<std::pair<Value, Value>> entries);

}  // namespace host
