#include "platform/foundation/error.h"

#include "platform/foundation/exception.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <string>

const NSString NSLocalizedDescriptionKey = NSString(NSConstantString("NSLocalizedDescription"));
const NSString NSUnderlyingErrorKey = NSString(NSConstantString("NSUnderlyingError"));
const NSString NSPOSIXErrorDomain = NSString(NSConstantString("NSPOSIXErrorDomain"));

namespace foundation {
namespace {

struct ErrorObject : objc::Object {
  Retained<NSString> domain;
  NSInteger code = 0;
  Retained<NSDictionary> userInfo;

  NSString getDomain() const { return domain.get(); }
  NSInteger getCode() const { return code; }
  NSDictionary getUserInfo() const { return userInfo.get(); }

  NSString localizedDescription() const {
    if (const NSObject given = userInfo->objectForKey(NSLocalizedDescriptionKey)) return given.as<NSString>();
    return makeString("The operation couldn’t be completed. (" + utf8Of(domain.get()) + " error " +
                      std::to_string(code) + ".)");
  }

  NSString description() const {
    return makeString("Error Domain=" + utf8Of(domain.get()) + " Code=" + std::to_string(code) + " \"" +
                      utf8Of(localizedDescription()) + '"');
  }
};

NSError errorWithDomain(Class errorClass, NSString domain, NSInteger code, NSDictionary userInfo) {
  if (!domain) {
    NSException::raise(NSInvalidArgumentException, "+[NSError errorWithDomain:code:userInfo:]: the domain is nil");
  }
  auto* error = objc::createInstance<ErrorObject>(errorClass);
  auto owned = Retained<NSError>::adopt(NSError(error));
  error->domain = Retained<NSString>::adopt(domain.copy());
  error->code = code;
  error->userInfo = userInfo ? Retained<NSDictionary>::adopt(userInfo.copy())
                             : Retained<NSDictionary>::share(NSDictionary::dictionary());
  return owned.autorelease();
}

}  // namespace

void registerError() {
  objc::ClassBuilder::define<ErrorObject>("NSError", "NSObject")
      .classMethod<&errorWithDomain>("errorWithDomain:code:userInfo:")
      .method<&ErrorObject::getDomain>("domain")
      .method<&ErrorObject::getCode>("code")
      .method<&ErrorObject::getUserInfo>("userInfo")
      .method<&ErrorObject::localizedDescription>("localizedDescription")
      .method<&ErrorObject::description>("description");
}

}  // namespace foundation
