#pragma once

#include "platform/contacts/vcard/editor.h"

#include <string>
#include <string_view>
#include <vector>

// What a group's card says besides its name: who is in it, and which entry of a member's multi-value it uses.
namespace contacts {

struct MemberChange {
  std::string uid;
  bool isAdded;
};

struct Distribution {
  std::string uid;  // the member's
  std::string property;
  std::string identifier;  // of the entry; empty for the primary one
};

// Whether the line makes its card a group.
bool saysGroup(const vcard::Line& line);
// The UIDs of persons and groups, each once, in the order of the card.
std::vector<std::string> membersFromCard(const vcard::Card& card);
std::vector<Distribution> distributionsFromCard(const vcard::Card& card);

void writeMembers(vcard::Editor& editor, const std::vector<MemberChange>& changes);
void writeDistributions(vcard::Editor& editor, const std::vector<Distribution>& changes);

// A UID as it stands in UID and member lines, without urn:uuid:.
std::string uidOf(const vcard::Line& line, vcard::Version version);

}  // namespace contacts
