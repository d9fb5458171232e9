#include "platform/contacts/people_picker/names.h"

#include "platform/contacts/case_folding.h"
#include "platform/contacts/people_picker/values.h"
#include "platform/contacts/preferences.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/cf_string.h"
#include "platform/foundation/number.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace contacts {
namespace {

std::u16string textOf(ABRecord record, NSString property) {
  return unitsOf(record.valueForProperty(property).as<NSString>());
}

bool isCombiningMark(char16_t unit) { return unit >= 0x300 && unit < 0x370; }

std::u16string decomposed(std::u16string_view text) {
  const auto copy =
      Retained<NSMutableString>::adopt(NSString::stringWithCharacters(text.data(), text.size()).mutableCopy());
  CFStringNormalize(bridge<CFMutableStringRef>(copy.get()), kCFStringNormalizationFormD);
  return unitsOf(copy.get());
}

void append(std::u16string& text, std::u16string_view part, std::u16string_view separator) {
  if (part.empty()) return;
  if (!text.empty()) text += separator;
  text += part;
}

std::u16string personName(ABRecord person) {
  const int flags = person.valueForProperty(kABPersonFlags).as<NSNumber>().intValue();
  const std::u16string company = textOf(person, kABOrganizationProperty);
  if ((flags & kABShowAsMask) != kABShowAsPerson && !company.empty()) return company;
  int ordering = flags & kABNameOrderingMask;
  if (ordering == kABDefaultNameOrdering) ordering = defaultNameOrdering();
  const bool isLastFirst = ordering == kABLastNameFirst;
  std::u16string name = textOf(person, kABTitleProperty);
  if (isLastFirst) append(name, textOf(person, kABLastNameProperty), u" ");
  append(name, textOf(person, kABFirstNameProperty), u" ");
  append(name, textOf(person, kABMiddleNameProperty), u" ");
  if (!isLastFirst) append(name, textOf(person, kABLastNameProperty), u" ");
  append(name, textOf(person, kABSuffixProperty), u" ");
  if (name.empty()) name = textOf(person, kABNicknameProperty);
  return name.empty() ? company : name;
}

bool isGroup(ABRecord record) { return objectOf(record).isGroup(); }

NameRow rowOf(ABRecord record, const std::string& displayedProperty) {
  NameRow row{Retained<ABRecord>::share(record), displayName(record), {}};
  std::u16string key = row.name + u'\n';
  if (!isGroup(record)) {
    append(key, textOf(record, kABNicknameProperty), u" ");
    append(key, textOf(record, kABOrganizationProperty), u" ");
    for (const PickerValue& value : valuesOf(record, displayedProperty)) append(key, value.text, u" ");
  }
  row.key = searchable(key);
  return row;
}

// The records of the groups, each once.
std::vector<ABRecord> membersOf(std::vector<ABGroup> groups) {
  std::vector<ABRecord> members;
  std::unordered_set<objc::Object*> seen;
  const auto addAll = [&](NSArray records) {
    for (NSUInteger i = 0; i < records.count(); ++i) {
      const auto record = records.objectAtIndex(i).as<ABRecord>();
      if (seen.insert(record.get()).second) members.push_back(record);
    }
  };
  std::unordered_set<objc::Object*> opened;
  while (!groups.empty()) {
    const ABGroup group = groups.back();
    groups.pop_back();
    if (!opened.insert(group.get()).second) continue;
    addAll(group.members());
    const NSArray subgroups = group.subgroups();
    addAll(subgroups);
    for (NSUInteger i = 0; i < subgroups.count(); ++i) groups.push_back(subgroups.objectAtIndex(i).as<ABGroup>());
  }
  return members;
}

}  // namespace

std::u16string displayName(ABRecord record) {
  std::u16string name = isGroup(record) ? textOf(record, kABGroupNameProperty) : personName(record);
  return name.empty() ? u"No Name" : name;
}

std::u16string searchable(std::u16string_view text) {
  const bool isPlain = std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
  std::u16string folded = caseFolded(isPlain ? std::u16string(text) : decomposed(text));
  std::erase_if(folded, isCombiningMark);
  return folded;
}

std::vector<NameRow> groupRows() {
  std::vector<NameRow> rows;
  const NSArray groups = pickerBook().groups();
  for (NSUInteger i = 0; i < groups.count(); ++i) rows.push_back(rowOf(groups.objectAtIndex(i).as<ABRecord>(), {}));
  std::ranges::stable_sort(rows, {}, &NameRow::key);
  rows.insert(rows.begin(), NameRow{{}, u"All", {}});
  return rows;
}

void NameList::load(const PickerModel& model) {
  const AutoreleasePool pool;
  const std::vector<ABGroup> groups = model.selectedGroups();
  std::vector<ABRecord> records;
  if (groups.empty()) {
    const NSArray people = pickerBook().people();
    for (NSUInteger i = 0; i < people.count(); ++i) records.push_back(people.objectAtIndex(i).as<ABRecord>());
  } else {
    records = membersOf(groups);
    if (!model.allowsGroups()) std::erase_if(records, isGroup);
  }
  rows_.clear();
  rows_.reserve(records.size());
  for (const ABRecord record : records) {
    const AutoreleasePool rowPool;
    rows_.push_back(rowOf(record, model.displayedProperty()));
  }
  std::ranges::stable_sort(rows_, {}, &NameRow::key);
  filter(model.searchText);
}

void NameList::filter(std::string_view text) {
  const AutoreleasePool pool;
  const std::u16string searched = searchable(unitsOf(NSString::stringWithUTF8(text)));
  std::vector<std::u16string> words;
  for (std::size_t begin = 0; begin < searched.size();) {
    const std::size_t end = std::min(searched.find(u' ', begin), searched.size());
    if (end > begin) words.push_back(searched.substr(begin, end - begin));
    begin = end + 1;
  }
  shown_.clear();
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const bool isFound = std::ranges::all_of(
        words, [&](const std::u16string& word) { return rows_[i].key.find(word) != std::u16string::npos; });
    if (isFound) shown_.push_back(i);
  }
}

std::size_t NameList::indexOf(ABRecord record) const {
  const auto found = std::ranges::find_if(shown_, [&](std::size_t i) { return rows_[i].record.get() == record; });
  return static_cast<std::size_t>(found - shown_.begin());
}

}  // namespace contacts
