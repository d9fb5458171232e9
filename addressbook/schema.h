#pragma once

#include "bridge/exceptions.h"
#include "bridge/strings.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/number.h"

// The shared methods by which host code reads and changes the properties of all people or all groups. Record is the
// framework's class.
template <class Record>
struct Schema {
  static REALstringArray properties() {
    auto result = adoptHost(REALCreateArrayString(-1));
    guard([&] { FillStringArray(result.get(), Record::properties()); });
    return result.handOver();
  }

  // The number of properties removed.
  static REALinteger removeProperties(REALstringArray properties) {
    REALinteger result = 0;
    guard([&] { result = remove(CreateNSStringArray(properties, false)); });
    return result;
  }

  static REALinteger removeProperty(REALstring propertyName) {
    REALinteger result = 0;
    guard([&] { result = remove(CreateNSStringArray(propertyName)); });
    return result;
  }

  static REALinteger typeOfProperty(REALstring propertyName) {
    REALinteger result = 0;
    guard([&] {
      if (NSString name = NewNSString(propertyName)) result = Record::typeOfProperty(name);
    });
    return result;
  }

  // The number of properties added.
  static REALinteger addProperty(REALstring propertyName, REALinteger type) {
    REALinteger result = 0;
    guard([&] {
      NSString name = NewNSString(propertyName);
      if (!name) return;
      NSNumber number = NSNumber::numberWithUnsignedInt(static_cast<unsigned int>(type));
      result = Record::addPropertiesAndTypes(NSDictionary::dictionaryWithObject(number, name));
    });
    return result;
  }

 private:
  static NSInteger remove(NSArray names) { return names ? Record::removeProperties(names) : 0; }
};
