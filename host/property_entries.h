#pragma once

#include "frame/host_types.h"

// The services that read and write properties by name. They answer whether they did: whether there is such a property
// and it is of that sort. Strings and objects come with one reference for the caller.
namespace host {

// Whole numbers, cut to the width, and booleans.
bool getPropValueInt(REALobject object, const char* name, std::int32_t* out);
bool getPropValueInt64(REALobject object, const char* name, std::int64_t* out);
// Numbers of any type.
bool getPropValueSingle(REALobject object, const char* name, float* out);
bool getPropValueDouble(REALobject object, const char* name, double* out);
bool getPropValueString(REALobject object, const char* name, REALstring* out);
bool getPropValueObject(REALobject object, const char* name, REALobject* out);
bool setPropValueInt(REALobject object, const char* name, std::int32_t value);
bool setPropValueString(REALobject object, const char* name, REALstring value);

}  // namespace host
