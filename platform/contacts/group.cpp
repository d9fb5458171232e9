#include "platform/contacts/group.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/load.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/schema_methods.h"
#include "platform/objc/class_builder.h"

namespace contacts {
namespace {

struct GroupObject : RecordObject {
  ABRecord init() { return initializedNew(true, nullptr); }
  ABRecord initWithAddressBook(NSObject book) { return initializedNew(true, book); }
};

}  // namespace

void registerGroup() {
  auto builder = objc::ClassBuilder::define<GroupObject>("ABGroup", "ABRecord");
  builder.method<&GroupObject::init>("init").method<&GroupObject::initWithAddressBook>("initWithAddressBook:");
  SchemaMethods<groupSchema>::addTo(builder);
}

}  // namespace contacts
