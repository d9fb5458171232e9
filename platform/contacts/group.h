#pragma once

#include "platform/contacts/person.h"

// A named set of people and of other groups.
class ABGroup : public ABRecord {
 public:
  using ABRecord::ABRecord;

  static ABGroup alloc() { return ::alloc<ABGroup>("ABGroup"_class); }
  // In no address book.
  [[nodiscard]] ABGroup init() const { return send<ABGroup>(*this, "init"_sel); }
  // Stored when the book is saved.
  [[nodiscard]] ABGroup initWithAddressBook(NSObject book) const {
    return send<ABGroup>(*this, "initWithAddressBook:"_sel, book);
  }

  static NSArray properties() { return send<NSArray>("ABGroup"_class, "properties"_sel); }
  static NSInteger typeOfProperty(NSString property) {
    return send<NSInteger>("ABGroup"_class, "typeOfProperty:"_sel, property);
  }
  static NSInteger addPropertiesAndTypes(NSDictionary properties) {
    return send<NSInteger>("ABGroup"_class, "addPropertiesAndTypes:"_sel, properties);
  }
  static NSInteger removeProperties(NSArray properties) {
    return send<NSInteger>("ABGroup"_class, "removeProperties:"_sel, properties);
  }
  static ABSearchElement searchElement(NSString property, NSString label, NSString key, NSObject value,
                                       NSInteger comparison) {
    return send<ABSearchElement>("ABGroup"_class, "searchElementForProperty:label:key:value:comparison:"_sel, property,
                                 label, key, value, comparison);
  }

  // Direct members, subgroups and parents only.
  [[nodiscard]] NSArray members() const { return send<NSArray>(*this, "members"_sel); }
  [[nodiscard]] NSArray subgroups() const { return send<NSArray>(*this, "subgroups"_sel); }
  [[nodiscard]] NSArray parentGroups() const { return send<NSArray>(*this, "parentGroups"_sel); }
  // False when nothing changed. Nil raises NSInvalidArgumentException.
  bool addMember(ABPerson person) const { return send<bool>(*this, "addMember:"_sel, person); }
  bool removeMember(ABPerson person) const { return send<bool>(*this, "removeMember:"_sel, person); }
  bool addSubgroup(ABGroup group) const { return send<bool>(*this, "addSubgroup:"_sel, group); }
  bool removeSubgroup(ABGroup group) const { return send<bool>(*this, "removeSubgroup:"_sel, group); }

  // Which entry of the person's multi-value the group uses; the primary one where none was set.
  [[nodiscard]] NSString distributionIdentifier(NSString property, ABPerson person) const {
    return send<NSString>(*this, "distributionIdentifierForProperty:person:"_sel, property, person);
  }
  bool setDistributionIdentifier(NSString identifier, NSString property, ABPerson person) const {
    return send<bool>(*this, "setDistributionIdentifier:forProperty:person:"_sel, identifier, property, person);
  }
};
