#pragma once

#include "platform/contacts/group.h"
#include "platform/contacts/person.h"
#include "platform/contacts/record.h"
#include "platform/contacts/search_element.h"
#include "platform/foundation/array.h"
#include "platform/foundation/attributed_string.h"

// The contacts database.
class ABAddressBook : public NSObject {
 public:
  using NSObject::NSObject;

  // The process's one book. When the folder of cards can't be opened it raises NSInvalidArgumentException with the
  // folder's path and the reason, and the next call tries again; so does addressBook.
  static ABAddressBook sharedAddressBook() {
    return send<ABAddressBook>("ABAddressBook"_class, "sharedAddressBook"_sel);
  }
  // A book of its own at each call, with records of its own, over the same folder.
  static ABAddressBook addressBook() { return send<ABAddressBook>("ABAddressBook"_class, "addressBook"_sel); }

  // In the order of the cards' file names.
  [[nodiscard]] NSArray people() const { return send<NSArray>(*this, "people"_sel); }
  [[nodiscard]] NSArray groups() const { return send<NSArray>(*this, "groups"_sel); }
  // Nil when there is none; a nil id raises NSInvalidArgumentException.
  [[nodiscard]] ABRecord recordForUniqueId(NSString uniqueId) const {
    return send<ABRecord>(*this, "recordForUniqueId:"_sel, uniqueId);
  }
  // The class's name, read off the id.
  [[nodiscard]] NSString recordClassFromUniqueId(NSString uniqueId) const {
    return send<NSString>(*this, "recordClassFromUniqueId:"_sel, uniqueId);
  }
  [[nodiscard]] NSArray recordsMatchingSearchElement(ABSearchElement search) const {
    return send<NSArray>(*this, "recordsMatchingSearchElement:"_sel, search);
  }

  bool addRecord(ABRecord record) const { return send<bool>(*this, "addRecord:"_sel, record); }
  bool addRecord(ABRecord record, NSError* error) const {
    return send<bool>(*this, "addRecord:error:"_sel, record, error);
  }
  bool removeRecord(ABRecord record) const { return send<bool>(*this, "removeRecord:"_sel, record); }
  bool removeRecord(ABRecord record, NSError* error) const {
    return send<bool>(*this, "removeRecord:error:"_sel, record, error);
  }

  // True too when there was nothing to save.
  bool save() const { return send<bool>(*this, "save"_sel); }
  bool save(NSError* error) const { return send<bool>(*this, "saveAndReturnError:"_sel, error); }
  [[nodiscard]] bool hasUnsavedChanges() const { return send<bool>(*this, "hasUnsavedChanges"_sel); }

  // The owner's card.
  [[nodiscard]] ABPerson me() const { return send<ABPerson>(*this, "me"_sel); }
  void setMe(ABPerson person) const { send<void>(*this, "setMe:"_sel, person); }

  [[nodiscard]] NSString defaultCountryCode() const { return send<NSString>(*this, "defaultCountryCode"_sel); }
  [[nodiscard]] NSInteger defaultNameOrdering() const { return send<NSInteger>(*this, "defaultNameOrdering"_sel); }
  [[nodiscard]] NSAttributedString formattedAddressFromDictionary(NSDictionary address) const {
    return send<NSAttributedString>(*this, "formattedAddressFromDictionary:"_sel, address);
  }
};

extern "C" {
// What a built-in property, label or key is called in the user's language; any other text as it is.
PLATFORM_API objc::Object* ABLocalizedPropertyOrLabel(objc::Object* propertyOrLabel);
}
