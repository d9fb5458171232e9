#include "platform/contacts/load.h"

namespace contacts {
namespace {

const bool loaded = [] {
  registerRecords();
  registerAddressBook();
  return true;
}();

}  // namespace
}  // namespace contacts
