#pragma once

#include "platform/foundation/dictionary.h"
#include "platform/foundation/string.h"

// What observers are told.
class NSNotification : public NSObject {
 public:
  using NSObject::NSObject;

  [[nodiscard]] NSString name() const { return send<NSString>(*this, "name"_sel); }
  // The sender; may be nil.
  [[nodiscard]] NSObject object() const { return send<NSObject>(*this, "object"_sel); }
  // May be nil.
  [[nodiscard]] NSDictionary userInfo() const { return send<NSDictionary>(*this, "userInfo"_sel); }
};

class NSNotificationCenter : public NSObject {
 public:
  using NSObject::NSObject;

  static NSNotificationCenter defaultCenter() {
    return send<NSNotificationCenter>("NSNotificationCenter"_class, "defaultCenter"_sel);
  }

  // Sends the selector, with the notification, to the observer for every notification of that name and sender; nil
  // stands for any. Observer and sender are not retained.
  void addObserver(NSObject observer, objc::Selector selector, NSString name, NSObject object) const {
    send<void>(*this, "addObserver:selector:name:object:"_sel, observer, selector, name, object);
  }
  // Ends the observer's registrations of that name and sender; nil stands for any.
  void removeObserver(NSObject observer, NSString name, NSObject object) const {
    send<void>(*this, "removeObserver:name:object:"_sel, observer, name, object);
  }
  // Observers run on this thread, in the order in which they registered, before the call returns. One that is removed
  // by another on the way is not called any more.
  void postNotification(NSString name, NSObject object, NSDictionary userInfo) const {
    send<void>(*this, "postNotificationName:object:userInfo:"_sel, name, object, userInfo);
  }
};
