#pragma once

#include <string>
#include <vector>

// What other plug-ins of the family bring along, as far as values of theirs reach this one.

struct ForeignTime {
  const char* className;  // of the host
  const char* encoding;   // of the structure
};
const std::vector<ForeignTime>& foreignTimes();

// The host classes, each with a data block that holds any of the structures, and their conversions on NSValue.
void registerForeignTimes(bool withConversions = true);

// VXRREALobjectWrapper, which retains a host object.
void registerObjectWrapper();

// A host class whose first word is a framework object that it doesn't own.
void registerHoldingClass(const std::string& name);
