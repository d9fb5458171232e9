#pragma once

#include "platform/foundation/dictionary.h"
#include "platform/foundation/string.h"

class NSError : public NSObject {
 public:
  using NSObject::NSObject;

  // userInfo may be nil.
  static NSError errorWithDomain(NSString domain, NSInteger code, NSDictionary userInfo) {
    return send<NSError>("NSError"_class, "errorWithDomain:code:userInfo:"_sel, domain, code, userInfo);
  }

  [[nodiscard]] NSString domain() const { return send<NSString>(*this, "domain"_sel); }
  [[nodiscard]] NSInteger code() const { return send<NSInteger>(*this, "code"_sel); }
  // Empty rather than nil.
  [[nodiscard]] NSDictionary userInfo() const { return send<NSDictionary>(*this, "userInfo"_sel); }
  // What userInfo has under NSLocalizedDescriptionKey, else a sentence made of domain and code.
  [[nodiscard]] NSString localizedDescription() const { return send<NSString>(*this, "localizedDescription"_sel); }
};

extern "C" {
// The key of a sentence for the user, an NSString.
extern PLATFORM_API const NSString NSLocalizedDescriptionKey;
// The key of the NSError that led to this one.
extern PLATFORM_API const NSString NSUnderlyingErrorKey;
// The domain of errno's codes.
extern PLATFORM_API const NSString NSPOSIXErrorDomain;
}
