#include "platform/contacts/localization.h"

#include "platform/contacts/address_book.h"
#include "platform/contacts/strings.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace contacts {
namespace {

const std::unordered_map<std::string_view, std::string_view>& englishNames() {
  static const auto* names = new std::unordered_map<std::string_view, std::string_view>{
      {"_$!<Home>!$_", "home"},
      {"_$!<Work>!$_", "work"},
      {"_$!<Other>!$_", "other"},
      {"_$!<Mobile>!$_", "mobile"},
      {"_$!<Main>!$_", "main"},
      {"_$!<HomeFAX>!$_", "home fax"},
      {"_$!<WorkFAX>!$_", "work fax"},
      {"_$!<Pager>!$_", "pager"},
      {"_$!<HomePage>!$_", "home page"},
      {"_$!<MobileMe>!$_", "MobileMe"},
      {"_$!<Anniversary>!$_", "anniversary"},
      {"_$!<Father>!$_", "father"},
      {"_$!<Mother>!$_", "mother"},
      {"_$!<Parent>!$_", "parent"},
      {"_$!<Brother>!$_", "brother"},
      {"_$!<Sister>!$_", "sister"},
      {"_$!<Child>!$_", "child"},
      {"_$!<Friend>!$_", "friend"},
      {"_$!<Spouse>!$_", "spouse"},
      {"_$!<Partner>!$_", "partner"},
      {"_$!<Assistant>!$_", "assistant"},
      {"_$!<Manager>!$_", "manager"},
      {"First", "First"},
      {"Last", "Last"},
      {"Middle", "Middle"},
      {"FirstPhonetic", "Phonetic First"},
      {"LastPhonetic", "Phonetic Last"},
      {"MiddlePhonetic", "Phonetic Middle"},
      {"Title", "Prefix"},
      {"Suffix", "Suffix"},
      {"Nickname", "Nickname"},
      {"MaidenName", "Maiden Name"},
      {"Organization", "Company"},
      {"ABDepartment", "Department"},
      {"JobTitle", "Job Title"},
      {"Birthday", "Birthday"},
      {"BirthdayComponents", "Birthday"},
      {"Phone", "Phone"},
      {"Email", "Email"},
      {"Address", "Address"},
      {"HomePage", "Home Page"},
      {"URLs", "URL"},
      {"calendarURIs", "Calendar URL"},
      {"ABRelatedNames", "Related Names"},
      {"ABDate", "Dates"},
      {"ABDateComponents", "Dates"},
      {"Note", "Note"},
      {"AIMInstant", "AIM"},
      {"JabberInstant", "Jabber"},
      {"MSNInstant", "MSN"},
      {"YahooInstant", "Yahoo"},
      {"ICQInstant", "ICQ"},
      {"InstantMessage", "Instant Message"},
      {"InstantMessageUsername", "User Name"},
      {"InstantMessageService", "Service"},
      {"FacebookInstant", "Facebook"},
      {"GaduGaduInstant", "Gadu-Gadu"},
      {"GoogleTalkInstant", "Google Talk"},
      {"QQInstant", "QQ"},
      {"SkypeInstant", "Skype"},
      {"SocialProfile", "Social Profile"},
      {"UID", "Unique ID"},
      {"ABPersonFlags", "Flags"},
      {"Creation", "Creation Date"},
      {"Modification", "Modification Date"},
      {"GroupName", "Group Name"},
      {"Street", "Street"},
      {"City", "City"},
      {"State", "State"},
      {"ZIP", "ZIP"},
      {"Country", "Country"},
      {"CountryCode", "Country Code"},
  };
  return *names;
}

}  // namespace

NSString localizedPropertyOrLabel(NSString text) {
  if (!text) return text;
  auto found = englishNames().find(utf8Of(text));
  return found == englishNames().end() ? text : makeString(found->second);
}

}  // namespace contacts

objc::Object* ABLocalizedPropertyOrLabel(objc::Object* propertyOrLabel) {
  return contacts::localizedPropertyOrLabel(NSString(propertyOrLabel)).get();
}
