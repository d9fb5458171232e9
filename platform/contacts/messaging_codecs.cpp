#include "platform/contacts/entry_codec.h"
#include "platform/contacts/entry_labels.h"
#include "platform/contacts/strings.h"
#include "platform/contacts/vcard/ascii.h"
#include "platform/contacts/vcard/text.h"
#include "platform/foundation/dictionary.h"

#include <algorithm>
#include <array>
#include <utility>

namespace contacts {
namespace {

// A service by the word that IMPP lines have for it; the framework's name for it is the word and "Instant".
struct Service {
  std::string_view word;
  std::string_view scheme;
  std::string_view ownLine;  // the line that older programs read and write; empty when there is none
};

// The first service of a scheme is what the scheme alone means.
constexpr std::array kServices{
    Service{"AIM", "aim", "X-AIM"},       Service{"Jabber", "xmpp", "X-JABBER"}, Service{"MSN", "msnim", "X-MSN"},
    Service{"Yahoo", "ymsgr", "X-YAHOO"}, Service{"ICQ", "aim", "X-ICQ"},        Service{"Skype", "skype", ""},
    Service{"GoogleTalk", "xmpp", ""},    Service{"Facebook", "xmpp", ""},       Service{"GaduGadu", "x-apple", ""},
    Service{"QQ", "x-apple", ""},
};

struct ServiceName {
  std::string_view name;
  std::string_view word;
};

// Further lines that programs write for a service.
constexpr std::array kServiceLines{
    ServiceName{"X-YAHOO-ID", "Yahoo"},
    ServiceName{"X-SKYPE", "Skype"},
    ServiceName{"X-SKYPE-USERNAME", "Skype"},
    ServiceName{"X-GOOGLE-TALK", "GoogleTalk"},
    ServiceName{"X-GTALK", "GoogleTalk"},
    ServiceName{"X-GADUGADU", "GaduGadu"},
    ServiceName{"X-QQ", "QQ"},
    ServiceName{"X-FACEBOOK-CHAT", "Facebook"},
};

// Further schemes.
constexpr std::array kServiceSchemes{
    ServiceName{"msn", "MSN"},     ServiceName{"yahoo", "Yahoo"}, ServiceName{"icq", "ICQ"},
    ServiceName{"gg", "GaduGadu"}, ServiceName{"qq", "QQ"},       ServiceName{"gtalk", "GoogleTalk"},
};

constexpr std::string_view kInstant = "Instant";

template <class Table, class Member>
std::string_view wordFor(const Table& table, std::string_view name, Member member) {
  auto found =
      std::ranges::find_if(table, [&](const auto& row) { return vcard::equalsIgnoringCase(row.*member, name); });
  return found == table.end() ? std::string_view() : found->word;
}

DecodedEntry messageEntry(std::string_view word, std::string_view username, const EntryLine& line) {
  const NSArray objects = NSArray::arrayWithObjects({makeString(std::string(word) += kInstant), makeString(username)});
  const NSArray keys = NSArray::arrayWithObjects({kABInstantMessageServiceKey, kABInstantMessageUsernameKey});
  return {Retained<NSObject>::share(NSDictionary::dictionaryWithObjects(objects, keys)),
          labelOf(line, kPlaceWords, kOther)};
}

// "scheme:username", the service named by a parameter or else by the scheme.
std::optional<DecodedEntry> decodeImpp(const EntryLine& line) {
  const std::string uri = line.text();
  const std::size_t colon = uri.find(':');
  const std::string_view scheme =
      colon == std::string::npos ? std::string_view() : std::string_view(uri).substr(0, colon);
  const std::string_view username = std::string_view(uri).substr(colon == std::string::npos ? 0 : colon + 1);
  if (username.empty()) return std::nullopt;
  std::string_view word = vcard::firstParameter(line.parameters(), "X-SERVICE-TYPE");
  // Some programs name the service as others name its scheme.
  for (const std::string_view name : {word, scheme}) {
    std::string_view known = wordFor(kServices, name, &Service::word);
    if (known.empty()) known = wordFor(kServices, name, &Service::scheme);
    if (known.empty()) known = wordFor(kServiceSchemes, name, &ServiceName::name);
    if (!known.empty()) word = known;
    if (!word.empty()) break;
  }
  if (word.empty()) word = scheme;
  if (word.empty()) return std::nullopt;
  return messageEntry(word, username, line);
}

std::optional<DecodedEntry> decodeMessage(const EntryLine& line) {
  if (line.line.is("IMPP")) return decodeImpp(line);
  const std::string_view name = line.line.name();
  if (name.size() < 2 || name[1] != '-') return std::nullopt;
  std::string_view word = wordFor(kServices, name, &Service::ownLine);
  if (word.empty()) word = wordFor(kServiceLines, name, &ServiceName::name);
  const std::string username = word.empty() ? std::string() : line.text();
  if (username.empty()) return std::nullopt;
  return messageEntry(word, username, line);
}

std::string stringFor(NSDictionary dictionary, NSString key) {
  const NSObject value = dictionary.objectForKey(key);
  return value && value.isKindOfClass("NSString"_class) ? utf8Of(value.as<NSString>()) : std::string();
}

// A service that was named by its scheme alone keeps it.
std::string schemeFor(const std::string& word) {
  constexpr std::string_view kSchemeCharacters = "abcdefghijklmnopqrstuvwxyz0123456789+.-";
  return word.empty() || word.find_first_not_of(kSchemeCharacters) != std::string::npos ? "x-apple" : word;
}

// The line that all understand today, and the one of old for the services that have it.
std::vector<LineDraft> encodeMessage(NSObject value, const std::string& label) {
  const auto message = value.as<NSDictionary>();
  const std::string username = stringFor(message, kABInstantMessageUsernameKey);
  std::string word = stringFor(message, kABInstantMessageServiceKey);
  if (word.ends_with(kInstant)) word.erase(word.size() - kInstant.size());
  auto service = std::ranges::find(kServices, word, &Service::word);
  const bool isKnown = service != kServices.end();

  std::vector<LineDraft> drafts;
  const std::string uri = (isKnown ? std::string(service->scheme) : schemeFor(word)) + ":" + username;
  drafts.push_back({"IMPP", {{"X-SERVICE-TYPE", word}}, vcard::escapeUri(uri), {}, {}});
  writeLabel(drafts.back(), label, kPlaceWords);
  if (isKnown && !service->ownLine.empty()) {
    drafts.push_back({std::string(service->ownLine), {}, vcard::escape(username), {}, {}});
    writeLabel(drafts.back(), label, kPlaceWords);
  }
  return drafts;
}

// The dictionary's keys and the parameters that hold their values; the URL is the line's value.
const struct {
  const NSString& key;
  std::string_view parameter;
} kProfileParameters[] = {
    {kABSocialProfileUsernameKey, "X-USER"},
    {kABSocialProfileUserIdentifierKey, "X-USERID"},
};

std::optional<DecodedEntry> decodeProfile(const EntryLine& line) {
  if (!line.line.is("X-SOCIALPROFILE") && !line.line.is("SOCIALPROFILE")) return std::nullopt;
  NSMutableDictionary profile = NSMutableDictionary::dictionary();
  auto set = [&](NSString key, std::string_view text) {
    if (!text.empty()) profile.setObject(makeString(text), key);
  };
  set(kABSocialProfileURLKey, line.text());
  for (const auto& row : kProfileParameters) set(row.key, vcard::firstParameter(line.parameters(), row.parameter));
  std::string label = line.customLabel.empty() ? std::string(kOther) : line.customLabel;
  for (const vcard::Parameter& parameter : line.parameters()) {
    if (parameter.name == "SERVICE-TYPE") set(kABSocialProfileServiceKey, parameter.value);
    if (parameter.name != "TYPE") continue;
    const std::string word = vcard::uppercased(parameter.value);
    if (word == "HOME" || word == "WORK") {
      if (line.customLabel.empty()) label = word == "HOME" ? kHome : kWork;
    } else if (word != "PREF") {
      set(kABSocialProfileServiceKey, parameter.value);
    }
  }
  if (profile.count() == 0) return std::nullopt;
  return DecodedEntry{Retained<NSObject>::adopt(profile.copy()), std::move(label)};
}

std::vector<LineDraft> encodeProfile(NSObject value, const std::string& label) {
  const auto profile = value.as<NSDictionary>();
  LineDraft draft{"X-SOCIALPROFILE", {}, vcard::escapeUri(stringFor(profile, kABSocialProfileURLKey)), {}, {}};
  const std::string service = stringFor(profile, kABSocialProfileServiceKey);
  if (!service.empty()) draft.parameters.push_back({"type", service});
  for (const auto& row : kProfileParameters) {
    const std::string text = stringFor(profile, row.key);
    if (!text.empty()) draft.parameters.push_back({std::string(row.parameter), text});
  }
  if (label != kOther) writeLabel(draft, label, kPlaceWords);
  return {draft};
}

}  // namespace

bool isInServiceName(std::u16string_view text) {
  return std::ranges::any_of(kServices, [text](const Service& service) {
    const std::string name = vcard::lowercased(service.word) + vcard::lowercased(kInstant);
    return std::u16string(name.begin(), name.end()).find(text) != std::u16string::npos;
  });
}

EntryCodec instantMessageCodec() { return {"InstantMessage", decodeMessage, encodeMessage}; }
EntryCodec socialProfileCodec() { return {"SocialProfile", decodeProfile, encodeProfile}; }

}  // namespace contacts
