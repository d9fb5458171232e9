#pragma once

#include "platform/contacts/group_lines.h"
#include "platform/contacts/schema.h"
#include "platform/contacts/vcard/card.h"
#include "platform/foundation/data.h"
#include "platform/objc/retained.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

// What is to be changed in a card. Whatever isn't named stays as the card has it, so that changes can be applied to a
// card that others have changed meanwhile.
struct CardChanges {
  struct Value {
    const Property* property;  // no view of another
    Retained<NSObject> value;  // nil removes
  };

  std::string uid;
  bool isGroup = false;
  double time = 0;  // of the change, in seconds since 1970
  // When the card was made, where it doesn't say so itself.
  std::optional<double> created;
  std::vector<Value> values;
  std::vector<MemberChange> members;        // one a member
  std::vector<Distribution> distributions;  // one a member and property
};

// A person's picture, as a property that no schema has.
const Property& imageProperty();
// The bytes of the first picture that is in the card itself; nil when there is none.
Retained<NSData> imageFromCard(const vcard::Card& card);

// The card in version 3.0 with the changes made. An empty text stands for a card that is still to be made.
std::string changedCard(std::string_view text, const CardChanges& changes);

}  // namespace contacts
