#pragma once

#include "platform/contacts/record.h"
#include "platform/foundation/array.h"

// A condition on people or on groups, or several of them combined.
class ABSearchElement : public NSObject {
 public:
  using NSObject::NSObject;

  // No children raise NSInvalidArgumentException.
  static ABSearchElement searchElementForConjunction(NSInteger conjunction, NSArray children) {
    return send<ABSearchElement>("ABSearchElement"_class, "searchElementForConjunction:children:"_sel, conjunction,
                                 children);
  }

  [[nodiscard]] bool matchesRecord(ABRecord record) const { return send<bool>(*this, "matchesRecord:"_sel, record); }
};
