#include "platform/contacts/links.h"

#include "platform/contacts/group_lines.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/card.h"

#include <algorithm>
#include <unordered_set>

namespace contacts {
namespace {

// Few cards do: it isn't worth reading all the others line by line.
bool mayHaveLinks(std::string_view text) {
  return std::search(text.begin(), text.end(), kLinkLine.begin(), kLinkLine.end(),
                     [](char a, char b) { return vcard::upper(a) == b; }) != text.end();
}

}  // namespace

void Links::add(const StoredCard& card) {
  const SharedText text = card.text();
  if (!mayHaveLinks(text.view())) return;
  const vcard::Card lines = vcard::parseCard(text.view());
  for (const vcard::Line& line : lines.lines) {
    if (!line.is(kLinkLine)) continue;
    const std::string other = uidOf(line, lines.version);
    others_[std::string(card.uid)].push_back(other);
    others_[other].emplace_back(card.uid);
  }
}

std::vector<std::string> Links::linkedWith(const std::string& uid) const {
  std::vector<std::string> linked{uid};
  std::unordered_set<std::string> seen{uid};
  for (std::size_t i = 0; i < linked.size(); ++i) {
    auto found = others_.find(linked[i]);
    if (found == others_.end()) continue;
    for (const std::string& other : found->second) {
      if (seen.insert(other).second) linked.push_back(other);
    }
  }
  return linked;
}

}  // namespace contacts
