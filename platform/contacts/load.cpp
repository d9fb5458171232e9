#include "platform/contacts/load.h"

namespace contacts {
namespace {

const bool loaded = [] {
  registerRecord();
  registerPerson();
  registerGroup();
  registerMultiValues();
  registerSearchElement();
  registerAddressBook();
  registerPeoplePicker();
  return true;
}();

}  // namespace
}  // namespace contacts
