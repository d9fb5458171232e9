#pragma once

#include "platform/contacts/group.h"
#include "platform/contacts/group_lines.h"
#include "platform/contacts/record_object.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace contacts {

struct GroupObject : RecordObject {
  ABRecord init() { return initializedNew(true, nullptr); }
  ABRecord initWithAddressBook(NSObject book) { return initializedNew(true, book); }

  [[nodiscard]] NSArray members() { return membersOfKind(false); }
  [[nodiscard]] NSArray subgroups() { return membersOfKind(true); }
  bool addMember(ABPerson person);
  bool removeMember(ABPerson person);
  bool addSubgroup(ABGroup group);
  bool removeSubgroup(ABGroup group);
  [[nodiscard]] NSString distributionIdentifier(NSString property, ABPerson person);
  bool setDistributionIdentifier(NSString identifier, NSString property, ABPerson person);

  // Whether the record is a direct member.
  [[nodiscard]] bool has(const RecordObject& record);
  // Of a member, whatever it is; nothing happens for others.
  void forget(const RecordObject& record);

  [[nodiscard]] bool hasChangedMembers() const { return !memberChanges_.empty() || !distributionChanges_.empty(); }
  void addChangesTo(CardChanges& changes) const;
  // The card has changed: what was read from it counts no longer, nor do changes that it has taken in.
  void dropMembers(bool withChanges);

 private:
  [[nodiscard]] const std::vector<std::string>& memberUids();
  // Nil when it isn't in the book.
  [[nodiscard]] ABRecord member(const std::string& uid) const;
  [[nodiscard]] NSArray membersOfKind(bool areGroups);
  bool add(const RecordObject& record);
  bool remove(const RecordObject& record);
  [[nodiscard]] bool leadsTo(const RecordObject& record);

  std::optional<std::vector<std::string>> memberUids_;  // with the changes
  std::vector<MemberChange> memberChanges_;
  std::vector<Distribution> distributionChanges_;
};

inline GroupObject& objectOf(ABGroup group) { return *static_cast<GroupObject*>(group.get()); }

}  // namespace contacts
