#pragma once

#include "platform/contacts/custom_properties.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/search_element_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/array.h"
#include "platform/objc/class_builder.h"

namespace contacts {

// The class methods by which persons and groups show their schema.
template <Schema& (*schema)()>
struct SchemaMethods {
  static ABPropertyType typeOfProperty(Class, NSString name) {
    const Property* property = findProperty(schema(), name);
    return property == nullptr ? kABErrorInProperty : property->type;
  }

  static NSArray properties(Class) {
    NSMutableArray names = NSMutableArray::array();
    for (const Property* property : presentProperties(schema())) names.addObject(makeString(property->name));
    return names;
  }

  static NSInteger addPropertiesAndTypes(Class, NSDictionary properties) {
    return addCustomProperties(schema(), properties);
  }

  static NSInteger removeProperties(Class, NSArray names) { return removeCustomProperties(schema(), names); }

  static ABSearchElement searchElement(Class, NSString property, NSString label, NSString key, NSObject value,
                                       NSInteger comparison) {
    const bool isForGroups = &schema() == &groupSchema();
    return searchElementFor(isForGroups, schema(), property, label, key, value, comparison);
  }

  static void addTo(objc::ClassBuilder& builder) {
    builder.template classMethod<&typeOfProperty>("typeOfProperty:")
        .template classMethod<&properties>("properties")
        .template classMethod<&addPropertiesAndTypes>("addPropertiesAndTypes:")
        .template classMethod<&removeProperties>("removeProperties:")
        .template classMethod<&searchElement>("searchElementForProperty:label:key:value:comparison:");
  }
};

}  // namespace contacts
