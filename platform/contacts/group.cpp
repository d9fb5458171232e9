#include "platform/contacts/group.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/group_object.h"
#include "platform/contacts/load.h"
#include "platform/contacts/multi_value_object.h"
#include "platform/contacts/schema_methods.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/exception.h"
#include "platform/objc/class_builder.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace contacts {
namespace {

void requireArgument(NSObject argument, const char* message) {
  if (!argument) NSException::raise(NSInvalidArgumentException, message);
}

}  // namespace

const std::vector<std::string>& GroupObject::memberUids() {
  if (!memberUids_) {
    memberUids_ = membersFromCard(lines());
    for (const MemberChange& change : memberChanges_) {
      std::erase(*memberUids_, change.uid);
      if (change.isAdded) memberUids_->push_back(change.uid);
    }
  }
  return *memberUids_;
}

ABRecord GroupObject::member(const std::string& uid) const {
  if (book() == nullptr) return nullptr;
  const ABRecord person = book()->find(uid + ":ABPerson");
  return person ? person : book()->find(uid + ":ABGroup");
}

NSArray GroupObject::membersOfKind(bool areGroups) {
  NSMutableArray records = NSMutableArray::array();
  for (const std::string& uid : memberUids()) {
    const ABRecord record = member(uid);
    if (record && objectOf(record).isGroup() == areGroups) records.addObject(record);
  }
  return records;
}

bool GroupObject::has(const RecordObject& record) {
  const std::vector<std::string>& uids = memberUids();
  if (std::ranges::find(uids, record.card().uid) == uids.end()) return false;
  const ABRecord found = member(record.uid());
  return found && objectOf(found).isGroup() == record.isGroup();
}

bool GroupObject::add(const RecordObject& record) {
  if (book() == nullptr || isReadOnly() || !book()->find(record.card().uniqueId()) || has(record)) return false;
  memberChanges_.push_back({record.uid(), true});
  memberUids_->push_back(record.uid());
  noteChange();
  return true;
}

bool GroupObject::remove(const RecordObject& record) {
  if (isReadOnly() || !has(record)) return false;
  forget(record);
  return true;
}

void GroupObject::forget(const RecordObject& record) {
  if (!has(record)) return;
  const std::string uid = record.uid();
  memberChanges_.push_back({uid, false});
  std::erase(*memberUids_, uid);
  std::erase_if(distributionChanges_, [&](const Distribution& change) { return change.uid == uid; });
  for (const Distribution& distribution : distributionsFromCard(lines())) {
    if (distribution.uid == uid) distributionChanges_.push_back({uid, distribution.property, {}});
  }
  noteChange();
}

// A person that was never saved has no place in a group yet.
bool GroupObject::addMember(ABPerson person) {
  requireArgument(person, "addMember: the person is nil");
  const RecordObject& record = objectOf(ABRecord(person));
  return record.card().database != nullptr && !record.isGroup() && add(record);
}

bool GroupObject::removeMember(ABPerson person) {
  requireArgument(person, "removeMember: the person is nil");
  return remove(objectOf(ABRecord(person)));
}

bool GroupObject::addSubgroup(ABGroup group) {
  requireArgument(group, "addSubgroup: the group is nil");
  const RecordObject& record = objectOf(ABRecord(group));
  return record.isGroup() && !objectOf(group).leadsTo(*this) && add(record);
}

bool GroupObject::removeSubgroup(ABGroup group) {
  requireArgument(group, "removeSubgroup: the group is nil");
  return remove(objectOf(ABRecord(group)));
}

// Whether the record is this group, or in it, or in a group in it. Cards of others may hold each other.
bool GroupObject::leadsTo(const RecordObject& record) {
  std::vector<GroupObject*> open{this};
  std::unordered_set<const GroupObject*> seen{this};
  while (!open.empty()) {
    GroupObject* group = open.back();
    open.pop_back();
    if (group->card().uniqueId() == record.card().uniqueId()) return true;
    for (const std::string& uid : group->memberUids()) {
      const ABRecord found = group->member(uid);
      if (!found || !objectOf(found).isGroup()) continue;
      auto* subgroup = static_cast<GroupObject*>(&objectOf(found));
      if (seen.insert(subgroup).second) open.push_back(subgroup);
    }
  }
  return false;
}

NSString GroupObject::distributionIdentifier(NSString property, ABPerson person) {
  requireArgument(property, "distributionIdentifierForProperty:person: the property is nil");
  requireArgument(person, "distributionIdentifierForProperty:person: the person is nil");
  const NSObject value = person.valueForProperty(property);
  if (!value || !value.isKindOfClass("ABMultiValue"_class)) return nullptr;
  const auto entries = value.as<ABMultiValue>();
  std::string identifier;
  for (const auto& known : {distributionsFromCard(lines()), distributionChanges_}) {
    for (const Distribution& distribution : known) {
      const bool isMeant =
          distribution.uid == objectOf(ABRecord(person)).card().uid && distribution.property == utf8Of(property);
      if (isMeant) identifier = distribution.identifier;
    }
  }
  const NSString found = makeString(identifier);
  return entries.indexForIdentifier(found) == NSNotFound ? entries.primaryIdentifier() : found;
}

bool GroupObject::setDistributionIdentifier(NSString identifier, NSString property, ABPerson person) {
  requireArgument(property, "setDistributionIdentifier:forProperty:person: the property is nil");
  requireArgument(person, "setDistributionIdentifier:forProperty:person: the person is nil");
  const RecordObject& record = objectOf(ABRecord(person));
  const NSObject value = person.valueForProperty(property);
  if (isReadOnly() || !has(record) || !value || !value.isKindOfClass("ABMultiValue"_class)) return false;
  if (identifier && value.as<ABMultiValue>().indexForIdentifier(identifier) == NSNotFound) return false;
  distributionChanges_.push_back({record.uid(), utf8Of(property), utf8Of(identifier)});
  noteChange();
  return true;
}

void GroupObject::addChangesTo(CardChanges& changes) const {
  // Of what was done to one member, the last counts.
  for (const MemberChange& change : memberChanges_) {
    std::erase_if(changes.members, [&](const MemberChange& earlier) { return earlier.uid == change.uid; });
    changes.members.push_back(change);
  }
  for (const Distribution& change : distributionChanges_) {
    std::erase_if(changes.distributions, [&](const Distribution& earlier) {
      return earlier.uid == change.uid && earlier.property == change.property;
    });
    changes.distributions.push_back(change);
  }
}

void GroupObject::dropMembers(bool withChanges) {
  memberUids_.reset();
  if (!withChanges) return;
  memberChanges_.clear();
  distributionChanges_.clear();
}

void registerGroup() {
  auto builder = objc::ClassBuilder::define<GroupObject>("ABGroup", "ABRecord");
  builder.method<&GroupObject::init>("init")
      .method<&GroupObject::initWithAddressBook>("initWithAddressBook:")
      .method<&GroupObject::members>("members")
      .method<&GroupObject::subgroups>("subgroups")
      .method<&RecordObject::parentGroups>("parentGroups")
      .method<&GroupObject::addMember>("addMember:")
      .method<&GroupObject::removeMember>("removeMember:")
      .method<&GroupObject::addSubgroup>("addSubgroup:")
      .method<&GroupObject::removeSubgroup>("removeSubgroup:")
      .method<&GroupObject::distributionIdentifier>("distributionIdentifierForProperty:person:")
      .method<&GroupObject::setDistributionIdentifier>("setDistributionIdentifier:forProperty:person:");
  SchemaMethods<groupSchema>::addTo(builder);
}

}  // namespace contacts
