#pragma once

#include "platform/contacts/address_book.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/objc/retained.h"
#include "tests/contacts/contacts_folder.h"
#include "tests/contacts/in_child.h"
#include "tests/contacts/shown.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A test with a folder of its own, and a pool for what books answer.
class BookTest : public testing::Test {
 protected:
  AutoreleasePool pool_;
  ContactsFolder folder_;
};

// The elements, to loop over.
template <class Element = ABPerson>
std::vector<Element> each(NSArray array) {
  std::vector<Element> elements;
  for (NSUInteger i = 0; i < array.count(); ++i) elements.push_back(array.objectAtIndex(i).as<Element>());
  return elements;
}

// The ids as cards have them, without the class: "a b".
inline std::string uids(NSArray records) {
  std::string text;
  for (const ABRecord record : each<ABRecord>(records)) {
    const std::string id = shown(record.uniqueId());
    text += (text.empty() ? "" : " ") + id.substr(0, id.rfind(':'));
  }
  return text;
}

inline ABPerson personIn(ABAddressBook book, const std::string& uid) {
  return book.recordForUniqueId(NSString::stringWithUTF8(uid + ":ABPerson")).as<ABPerson>();
}

// One of no book, or a new one of the book.
inline Retained<ABPerson> newPerson(ABAddressBook book = nullptr) {
  return Retained<ABPerson>::adopt(book ? ABPerson::alloc().initWithAddressBook(book) : ABPerson::alloc().init());
}

// Nil for what is no card.
inline Retained<ABPerson> imported(const std::string& card) {
  const NSData data = NSData::dataWithBytes(card.data(), card.size());
  return Retained<ABPerson>::adopt(ABPerson::alloc().initWithVCardRepresentation(data));
}
