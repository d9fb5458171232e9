#include "platform/contacts/custom_properties.h"

#include "platform/contacts/books.h"
#include "platform/contacts/change_feed.h"
#include "platform/contacts/custom_codec.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/card.h"
#include "platform/foundation/date.h"
#include "platform/foundation/number.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace contacts {
namespace {

constexpr NSInteger kFailed = -1;

void readFromFolder() {
  try {
    openDatabase().refreshProperties();
  } catch (const FolderError&) {
  } catch (const FileError&) {
  }
}

std::optional<PropertyChange> changeFor(bool isForGroups, NSObject name, NSObject type) {
  if (!name.isKindOfClass("NSString"_class)) return std::nullopt;
  PropertyChange change{isForGroups, utf8Of(name.as<NSString>()), kABErrorInProperty};
  if (!type) return change;
  if (!type.isKindOfClass("NSNumber"_class)) return std::nullopt;
  change.type = static_cast<ABPropertyType>(type.as<NSNumber>().longLongValue());
  const bool isGood = isPropertyType(change.type) && canNameLines({change.name, change.type, true});
  return isGood ? std::optional(std::move(change)) : std::nullopt;
}

// Every card with a value of one of the properties loses it.
std::vector<CardUpdate> removals(Database& database, bool isOfGroups, const std::vector<const Property*>& gone) {
  const double now = NSDate::date().timeIntervalSinceReferenceDate() + NSTimeIntervalSince1970;
  std::vector<CardUpdate> updates;
  for (const StoredCardPointer& card : database.cards()) {
    if (card->isGroup != isOfGroups) continue;
    CardUpdate update{card, {std::string(card->uid), isOfGroups, now, {}, {}, {}, {}}, false};
    const SharedText text = card->text();
    const vcard::Card lines = vcard::parseCard(text.view());
    for (const Property* property : gone) {
      const bool hasValue =
          std::ranges::any_of(lines.lines, [&](const vcard::Line& line) { return isLineOf(*property, line); });
      if (hasValue) update.changes.values.push_back({property, {}});
    }
    if (!update.changes.values.empty()) updates.push_back(std::move(update));
  }
  return updates;
}

NSInteger save(Database& database, const SaveRequest& request) {
  const SaveResult result = database.save(request);
  changeFeed().add(result.foreign, ChangeFeed::Origin::kOthers);
  changeFeed().add(result.saved, ChangeFeed::Origin::kThisProcess);
  return result.changedProperties;
}

template <class Body>
NSInteger failingQuietly(Body&& body) {
  try {
    return body();
  } catch (const FolderError&) {
    return kFailed;
  } catch (const FileError&) {
    return kFailed;
  }
}

bool isOfGroups(const Schema& schema) { return &schema == &groupSchema(); }

}  // namespace

const Property* findProperty(const Schema& schema, NSString name) {
  if (const Property* known = schema.find(name)) return known;
  readFromFolder();
  return schema.find(name);
}

std::vector<const Property*> presentProperties(const Schema& schema) {
  readFromFolder();
  return schema.properties();
}

NSInteger addCustomProperties(const Schema& schema, NSDictionary properties) {
  if (!properties) return kFailed;
  SaveRequest request;
  const NSArray names = properties.allKeys();
  for (NSUInteger i = 0; i < names.count(); ++i) {
    const NSObject name = names.objectAtIndex(i);
    std::optional<PropertyChange> change = changeFor(isOfGroups(schema), name, properties.objectForKey(name));
    if (!change) return kFailed;
    request.properties.push_back(*std::move(change));
  }
  if (request.properties.empty()) return 0;
  return failingQuietly([&] { return save(openDatabase(), request); });
}

NSInteger removeCustomProperties(const Schema& schema, NSArray names) {
  if (!names) return kFailed;
  return failingQuietly([&]() -> NSInteger {
    Database& database = openDatabase();
    changeFeed().add(database.refresh(), ChangeFeed::Origin::kOthers);
    SaveRequest request;
    std::vector<const Property*> gone;
    for (NSUInteger i = 0; i < names.count(); ++i) {
      std::optional<PropertyChange> change = changeFor(isOfGroups(schema), names.objectAtIndex(i), nullptr);
      if (!change) return kFailed;
      const Property* property = schema.find(change->name);
      if (property == nullptr || !property->isCustom) continue;
      gone.push_back(property);
      request.properties.push_back(*std::move(change));
    }
    if (gone.empty()) return 0;
    request.updates = removals(database, isOfGroups(schema), gone);
    return save(database, request);
  });
}

}  // namespace contacts
