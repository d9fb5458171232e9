#pragma once

#include "platform/objc/send.h"

// The object that stands for nothing in collections, which can't hold nil. There is one.
class NSNull : public NSObject {
 public:
  using NSObject::NSObject;

  static NSNull null() { return send<NSNull>("NSNull"_class, "null"_sel); }
};
