#include "platform/contacts/group_lines.h"

#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"
#include "platform/contacts/vcard/writer.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

namespace contacts {
namespace {

constexpr std::string_view kUrnPrefix = "urn:uuid:";
constexpr std::string_view kMemberLine = "X-ADDRESSBOOKSERVER-MEMBER";
// The member's UID, the property and the identifier as fields.
constexpr std::string_view kDistributionLine = "X-ABDISTRIBUTION";

bool isMemberLine(const vcard::Line& line) { return line.is(kMemberLine) || line.is("MEMBER"); }

std::optional<Distribution> distributionOn(const vcard::Line& line, vcard::Version version) {
  if (!line.is(kDistributionLine)) return std::nullopt;
  std::vector<std::string> fields = vcard::splitFields(vcard::decodedValue(line), ';', version);
  if (fields.size() != 3) return std::nullopt;
  return Distribution{std::move(fields[0]), std::move(fields[1]), std::move(fields[2])};
}

}  // namespace

std::string uidOf(const vcard::Line& line, vcard::Version version) {
  const std::string text = vcard::unescape(vcard::decodedValue(line), version);
  std::string_view uid = vcard::trimmed(text);
  if (vcard::equalsIgnoringCase(uid.substr(0, kUrnPrefix.size()), kUrnPrefix)) uid.remove_prefix(kUrnPrefix.size());
  return std::string(uid);
}

bool saysGroup(const vcard::Line& line) {
  return (line.is("KIND") || line.is("X-ADDRESSBOOKSERVER-KIND")) &&
         vcard::equalsIgnoringCase(vcard::trimmed(line.value()), "group");
}

std::vector<std::string> membersFromCard(const vcard::Card& card) {
  std::vector<std::string> uids;
  std::unordered_set<std::string> seen;
  for (const vcard::Line& line : card.lines) {
    if (!isMemberLine(line)) continue;
    std::string uid = uidOf(line, card.version);
    if (!uid.empty() && seen.insert(uid).second) uids.push_back(std::move(uid));
  }
  return uids;
}

std::vector<Distribution> distributionsFromCard(const vcard::Card& card) {
  std::vector<Distribution> distributions;
  for (const vcard::Line& line : card.lines) {
    if (auto distribution = distributionOn(line, card.version)) distributions.push_back(*std::move(distribution));
  }
  return distributions;
}

void writeMembers(vcard::Editor& editor, const std::vector<MemberChange>& changes) {
  if (changes.empty()) return;
  const vcard::Card& card = editor.card();
  std::unordered_set<std::string> added;
  std::unordered_set<std::string> removed;
  for (const MemberChange& change : changes) (change.isAdded ? added : removed).insert(change.uid);
  std::size_t place = editor.newLinePlace();
  for (std::size_t i = 0; i < card.lines.size(); ++i) {
    if (!isMemberLine(card.lines[i])) continue;
    place = vcard::Editor::behind(i);
    const std::string uid = uidOf(card.lines[i], card.version);
    if (removed.contains(uid)) editor.drop(i);
    added.erase(uid);
  }
  for (const MemberChange& change : changes) {
    if (!change.isAdded || added.erase(change.uid) == 0) continue;
    vcard::appendLine(editor.before(place), "", kMemberLine, {}, vcard::escape(std::string(kUrnPrefix) + change.uid));
  }
}

void writeDistributions(vcard::Editor& editor, const std::vector<Distribution>& changes) {
  const vcard::Card& card = editor.card();
  auto isOfChange = [&](const vcard::Line& line) {
    const auto old = distributionOn(line, card.version);
    return old && std::ranges::any_of(changes, [&](const Distribution& change) {
             return change.uid == old->uid && change.property == old->property;
           });
  };
  for (std::size_t i = 0; i < card.lines.size(); ++i) {
    if (isOfChange(card.lines[i])) editor.drop(i);
  }
  for (const Distribution& change : changes) {
    if (change.identifier.empty()) continue;
    vcard::appendLine(
        editor.before(editor.newLinePlace()), "", kDistributionLine, {},
        vcard::escape(change.uid) + ";" + vcard::escape(change.property) + ";" + vcard::escape(change.identifier));
  }
}

}  // namespace contacts
