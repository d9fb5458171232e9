#pragma once

#include "platform/contacts/record.h"
#include "platform/contacts/search_element.h"
#include "platform/foundation/array.h"
#include "platform/foundation/data.h"
#include "platform/foundation/dictionary.h"
#include "platform/foundation/object.h"

class ABPerson : public ABRecord {
 public:
  using ABRecord::ABRecord;

  static ABPerson alloc() { return ::alloc<ABPerson>("ABPerson"_class); }
  // In no address book.
  [[nodiscard]] ABPerson init() const { return send<ABPerson>(*this, "init"_sel); }
  // Stored when the book is saved.
  [[nodiscard]] ABPerson initWithAddressBook(NSObject book) const {
    return send<ABPerson>(*this, "initWithAddressBook:"_sel, book);
  }
  // The first card of the data, in no address book; nil for what is no vCard.
  [[nodiscard]] ABPerson initWithVCardRepresentation(NSData vCard) const {
    return send<ABPerson>(*this, "initWithVCardRepresentation:"_sel, vCard);
  }

  // The property names of all people, in order.
  static NSArray properties() { return send<NSArray>("ABPerson"_class, "properties"_sel); }
  // 0 for an unknown name.
  static NSInteger typeOfProperty(NSString property) {
    return send<NSInteger>("ABPerson"_class, "typeOfProperty:"_sel, property);
  }
  // How many were added, of a dictionary of types (NSNumber) by name; -1 on error.
  static NSInteger addPropertiesAndTypes(NSDictionary properties) {
    return send<NSInteger>("ABPerson"_class, "addPropertiesAndTypes:"_sel, properties);
  }
  static NSInteger removeProperties(NSArray properties) {
    return send<NSInteger>("ABPerson"_class, "removeProperties:"_sel, properties);
  }
  static ABSearchElement searchElement(NSString property, NSString label, NSString key, NSObject value,
                                       NSInteger comparison) {
    return send<ABSearchElement>("ABPerson"_class, "searchElementForProperty:label:key:value:comparison:"_sel, property,
                                 label, key, value, comparison);
  }

  [[nodiscard]] NSArray parentGroups() const { return send<NSArray>(*this, "parentGroups"_sel); }
  // The person itself and all that are linked with it.
  [[nodiscard]] NSArray linkedPeople() const { return send<NSArray>(*this, "linkedPeople"_sel); }
  [[nodiscard]] NSData vCardRepresentation() const { return send<NSData>(*this, "vCardRepresentation"_sel); }
  [[nodiscard]] NSData imageData() const { return send<NSData>(*this, "imageData"_sel); }
  // Nil removes the picture.
  bool setImageData(NSData data) const { return send<bool>(*this, "setImageData:"_sel, data); }
};
