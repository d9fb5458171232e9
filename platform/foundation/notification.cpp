#include "platform/foundation/notification.h"

#include "platform/foundation/load.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace {

struct NotificationObject : objc::Object {
  Retained<NSString> name;
  NSObject object;  // the poster keeps it alive for as long as the notification is on its way
  Retained<NSDictionary> userInfo;

  NSString getName() { return name.get(); }
  NSObject getObject() { return object; }
  NSDictionary getUserInfo() { return userInfo.get(); }
};

struct Registration {
  NSObject observer;
  objc::Selector selector;
  Retained<NSString> name;  // nil: any
  NSObject object;          // nil: any

  [[nodiscard]] bool isFor(NSString postedName, NSObject postedObject) const {
    return (!name || name->isEqualToString(postedName)) && (!object || object == postedObject);
  }
};

struct NotificationCenterObject : objc::Object {
  // Shared with the posts that are under way, which must not lose theirs while the list changes.
  std::vector<std::shared_ptr<const Registration>> registrations;
  std::mutex lock;

  void add(NSObject observer, objc::Selector selector, NSString name, NSObject object) {
    auto registration = std::make_shared<const Registration>(
        Registration{observer, selector, Retained<NSString>::adopt(name.copy()), object});
    const std::scoped_lock guard(lock);
    registrations.push_back(std::move(registration));
  }

  void remove(NSObject observer, NSString name, NSObject object) {
    const std::scoped_lock guard(lock);
    std::erase_if(registrations, [&](const std::shared_ptr<const Registration>& registration) {
      return registration->observer == observer &&
             (!name || (registration->name && registration->name->isEqualToString(name))) &&
             (!object || registration->object == object);
    });
  }

  void post(NSString name, NSObject object, NSDictionary userInfo) {
    std::vector<std::shared_ptr<const Registration>> interested;
    {
      const std::scoped_lock guard(lock);
      std::ranges::copy_if(registrations, std::back_inserter(interested),
                           [&](const auto& registration) { return registration->isFor(name, object); });
    }
    if (interested.empty()) return;
    auto* made = objc::createInstance<NotificationObject>("NSNotification"_class);
    const auto notification = Retained<NSObject>::adopt(NSObject(made));
    made->name = Retained<NSString>::share(name);
    made->object = object;
    made->userInfo = Retained<NSDictionary>::share(userInfo);
    for (const auto& registration : interested) {
      if (isRegistered(registration)) {
        sendSelector<void>(registration->observer, registration->selector, notification.get().as<NSNotification>());
      }
    }
  }

 private:
  bool isRegistered(const std::shared_ptr<const Registration>& registration) {
    const std::scoped_lock guard(lock);
    return std::ranges::find(registrations, registration) != registrations.end();
  }
};

NSNotificationCenter makeCenter() {
  objc::Object* made = class_createInstance("NSNotificationCenter"_class.record());
  objc_makeImmortal(made);
  return NSNotificationCenter(made);
}

NSNotificationCenter defaultCenter(Class) {
  static const NSNotificationCenter center = makeCenter();
  return center;
}

}  // namespace

void foundation::registerNotification() {
  objc::ClassBuilder::define<NotificationObject>("NSNotification", "NSObject")
      .method<&NotificationObject::getName>("name")
      .method<&NotificationObject::getObject>("object")
      .method<&NotificationObject::getUserInfo>("userInfo");
  objc::ClassBuilder::define<NotificationCenterObject>("NSNotificationCenter", "NSObject")
      .classMethod<&defaultCenter>("defaultCenter")
      .method<&NotificationCenterObject::add>("addObserver:selector:name:object:")
      .method<&NotificationCenterObject::remove>("removeObserver:name:object:")
      .method<&NotificationCenterObject::post>("postNotificationName:object:userInfo:");
}
