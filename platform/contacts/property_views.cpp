#include "platform/contacts/property_views.h"

#include "platform/contacts/constants.h"
#include "platform/contacts/date_values.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/dictionary.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace contacts {
namespace {

std::vector<MultiValueEntry> entriesOf(NSObject multiValue) {
  return multiValue ? objectOf(multiValue.as<ABMultiValue>()).entries : std::vector<MultiValueEntry>();
}

NSString primaryOf(NSObject multiValue) {
  return multiValue ? multiValue.as<ABMultiValue>().primaryIdentifier() : NSString();
}

Retained<NSObject> multiValueOf(std::vector<MultiValueEntry> entries, NSString primary, ABPropertyType type) {
  if (entries.empty()) return {};
  return Retained<NSObject>::adopt(newMultiValue(std::move(entries), primary, type).leak());
}

Retained<NSObject> dateFrom(NSObject components) {
  const std::optional<vcard::Date> date = dateOf(components.as<NSDateComponents>());
  return date ? newDate(*date) : Retained<NSObject>();
}

Retained<NSObject> readDate(const PropertyView&, NSObject components) {
  return components ? dateFrom(components) : Retained<NSObject>();
}

Retained<NSObject> writeDate(const PropertyView&, NSObject, NSObject date) {
  return date ? newDateComponents(dayOf(date.as<NSDate>())) : Retained<NSObject>();
}

Retained<NSObject> readDates(const PropertyView&, NSObject source) {
  std::vector<MultiValueEntry> entries = entriesOf(source);
  for (MultiValueEntry& entry : entries) entry.value = dateFrom(entry.value.get());
  std::erase_if(entries, [](const MultiValueEntry& entry) { return !entry.value; });
  return multiValueOf(std::move(entries), primaryOf(source), kABMultiDateProperty);
}

Retained<NSObject> writeDates(const PropertyView&, NSObject, NSObject value) {
  std::vector<MultiValueEntry> entries = entriesOf(value);
  for (MultiValueEntry& entry : entries) entry.value = newDateComponents(dayOf(entry.value->as<NSDate>()));
  return multiValueOf(std::move(entries), primaryOf(value), kABMultiDateComponentsProperty);
}

// The first entry that is labelled so.
std::vector<MultiValueEntry>::iterator homePageIn(std::vector<MultiValueEntry>& entries) {
  return std::ranges::find_if(
      entries, [](const MultiValueEntry& entry) { return entry.label->isEqualToString(kABHomePageLabel); });
}

Retained<NSObject> readHomePage(const PropertyView&, NSObject source) {
  std::vector<MultiValueEntry> entries = entriesOf(source);
  const auto page = homePageIn(entries);
  return page == entries.end() ? Retained<NSObject>() : page->value;
}

Retained<NSObject> writeHomePage(const PropertyView&, NSObject source, NSObject value) {
  std::vector<MultiValueEntry> entries = entriesOf(source);
  const auto page = homePageIn(entries);
  if (!value) {
    if (page != entries.end()) entries.erase(page);
  } else if (page != entries.end()) {
    page->value = Retained<NSObject>::share(value);
  } else {
    entries.insert(entries.begin(), {Retained<NSObject>::share(value), Retained<NSString>::share(kABHomePageLabel),
                                     Retained<NSString>::share(makeString(newIdentifier()))});
  }
  return multiValueOf(std::move(entries), primaryOf(source), kABMultiStringProperty);
}

// The view's own name is the service's.
bool isOfService(const PropertyView& view, const MultiValueEntry& entry) {
  const NSObject service = entry.value->as<NSDictionary>().objectForKey(kABInstantMessageServiceKey);
  return service && service.isKindOfClass("NSString"_class) && utf8Of(service.as<NSString>()) == view.property;
}

Retained<NSObject> readMessages(const PropertyView& view, NSObject source) {
  std::vector<MultiValueEntry> entries = entriesOf(source);
  std::erase_if(entries, [&](const MultiValueEntry& entry) { return !isOfService(view, entry); });
  for (MultiValueEntry& entry : entries) {
    const NSObject username = entry.value->as<NSDictionary>().objectForKey(kABInstantMessageUsernameKey);
    entry.value = Retained<NSObject>::share(username ? username : ""_ns);
  }
  return multiValueOf(std::move(entries), primaryOf(source), kABMultiStringProperty);
}

// The service's entries in the order of the new value, in the places that the old ones had.
Retained<NSObject> writeMessages(const PropertyView& view, NSObject source, NSObject value) {
  std::vector<MultiValueEntry> added = entriesOf(value);
  const Retained<NSString> service = Retained<NSString>::share(makeString(view.property));
  for (MultiValueEntry& entry : added) {
    entry.value = Retained<NSObject>::share(NSDictionary::dictionaryWithObjects(
        NSArray::arrayWithObjects({service.get(), entry.value.get()}),
        NSArray::arrayWithObjects({kABInstantMessageServiceKey, kABInstantMessageUsernameKey})));
  }
  std::vector<MultiValueEntry> entries = entriesOf(source);
  const auto isReplaced = [&](const MultiValueEntry& entry) { return isOfService(view, entry); };
  const auto place = std::ranges::find_if(entries, isReplaced) - entries.begin();
  std::erase_if(entries, isReplaced);
  // One value given to two services makes two entries.
  for (MultiValueEntry& entry : added) {
    const bool isTaken = std::ranges::any_of(entries, [&](const MultiValueEntry& other) {
      return other.identifier->isEqualToString(entry.identifier.get());
    });
    if (isTaken) entry.identifier = Retained<NSString>::share(makeString(newIdentifier()));
  }
  entries.insert(entries.begin() + place, added.begin(), added.end());
  const NSString primary = source ? primaryOf(source) : primaryOf(value);
  return multiValueOf(std::move(entries), primary, kABMultiDictionaryProperty);
}

constexpr std::array kViews{
    PropertyView{"Birthday", "BirthdayComponents", readDate, writeDate},
    PropertyView{"ABDate", "ABDateComponents", readDates, writeDates},
    PropertyView{"HomePage", "URLs", readHomePage, writeHomePage},
    PropertyView{"AIMInstant", "InstantMessage", readMessages, writeMessages},
    PropertyView{"JabberInstant", "InstantMessage", readMessages, writeMessages},
    PropertyView{"MSNInstant", "InstantMessage", readMessages, writeMessages},
    PropertyView{"YahooInstant", "InstantMessage", readMessages, writeMessages},
    PropertyView{"ICQInstant", "InstantMessage", readMessages, writeMessages},
};

}  // namespace

const PropertyView* findPropertyView(std::string_view property) {
  auto found = std::ranges::find(kViews, property, &PropertyView::property);
  return found == kViews.end() ? nullptr : &*found;
}

}  // namespace contacts
