#include "platform/contacts/person.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/load.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/schema_methods.h"
#include "platform/objc/class_builder.h"

namespace contacts {
namespace {

struct PersonObject : RecordObject {
  ABRecord init() { return initializedNew(false, nullptr); }
  ABRecord initWithAddressBook(NSObject book) { return initializedNew(false, book); }
};

}  // namespace

void registerPerson() {
  auto builder = objc::ClassBuilder::define<PersonObject>("ABPerson", "ABRecord");
  builder.method<&PersonObject::init>("init").method<&PersonObject::initWithAddressBook>("initWithAddressBook:");
  SchemaMethods<personSchema>::addTo(builder);
}

}  // namespace contacts
