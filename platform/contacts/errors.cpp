#include "platform/contacts/errors.h"

#include "platform/contacts/strings.h"
#include "platform/foundation/dictionary.h"

namespace contacts {

bool fail(NSError* error, NSInteger code, const std::string& message, NSString extraKey, NSObject extra) {
  if (error == nullptr) return false;
  NSMutableDictionary userInfo = NSMutableDictionary::dictionary();
  userInfo.setObject(makeString(message), NSLocalizedDescriptionKey);
  if (extra) userInfo.setObject(extra, extraKey);
  *error = NSError::errorWithDomain(ABAddressBookErrorDomain, code, userInfo);
  return false;
}

}  // namespace contacts
