#pragma once

#include "platform/carbon/events.h"
#include "platform/carbon/geometry.h"
#include "platform/foundation/cf_base.h"

// The people picker: a window with the columns groups, names and, once a property was added, values, in which the user
// selects from the shared address book. It shows on the terminal that the process runs on; without one it is all the
// same to programs, which select for themselves. Main thread only.

using ABPickerRef = struct OpaqueABPicker*;

// The framework's own record objects.
using ABRecordRef = void*;
using ABPersonRef = struct OpaqueABPerson*;
using ABGroupRef = struct OpaqueABGroup*;

using ABPickerAttributes = std::uint32_t;
// One value for each selected person, or any number of them. The one is the stricter and rules where both are set.
inline constexpr ABPickerAttributes kABPickerSingleValueSelection = 1 << 0;
inline constexpr ABPickerAttributes kABPickerMultipleValueSelection = 1 << 1;
// Without it, a group that the user opens has at least one of its people selected.
inline constexpr ABPickerAttributes kABPickerAllowGroupSelection = 1 << 2;
// Of groups and of names.
inline constexpr ABPickerAttributes kABPickerAllowMultipleSelection = 1 << 3;

// What the user did, sent to the picker's delegate; a program's own calls send nothing.
inline constexpr OSType kEventClassABPeoplePicker = 0x61627070;       // 'abpp'
inline constexpr EventParamName kEventParamABPickerRef = 0x61627070;  // typeCFTypeRef
enum : std::uint32_t {
  kEventABPeoplePickerGroupSelectionChanged = 1,
  kEventABPeoplePickerNameSelectionChanged,
  kEventABPeoplePickerValueSelectionChanged,
  kEventABPeoplePickerDisplayedPropertyChanged,
  kEventABPeoplePickerGroupDoubleClicked,
  kEventABPeoplePickerNameDoubleClicked,
};

extern "C" {

// A hidden picker for the caller to CFRelease, with the attributes single value and multiple selection and no property.
// Its search field starts with the text of the environment's ADDRESSBOOK_PICKER_SEARCH.
PLATFORM_API ABPickerRef ABPickerCreate();

// Kept for programs; a terminal is used whole.
PLATFORM_API void ABPickerSetFrame(ABPickerRef picker, const HIRect* frame);
PLATFORM_API void ABPickerGetFrame(ABPickerRef picker, HIRect* frame);
// The window is served by the run loop. It hides itself when the user is done: with the selection when he chose, with
// nothing selected when he gave up. It stays hidden on a terminal that can't be drawn on, or that shows another picker.
PLATFORM_API void ABPickerSetVisibility(ABPickerRef picker, bool visible);
PLATFORM_API bool ABPickerIsVisible(ABPickerRef picker);

PLATFORM_API ABPickerAttributes ABPickerGetAttributes(ABPickerRef picker);
// Sets, then clears; all other bits stay.
PLATFORM_API void ABPickerChangeAttributes(ABPickerRef picker, ABPickerAttributes attributesToSet,
                                           ABPickerAttributes attributesToClear);

// The properties that the user can show in the values column. The first that is added is the displayed one; when that
// is removed, the first that is left.
PLATFORM_API void ABPickerAddProperty(ABPickerRef picker, CFStringRef property);
PLATFORM_API void ABPickerRemoveProperty(ABPickerRef picker, CFStringRef property);
// Results of the Copy functions are the caller's to release.
PLATFORM_API CFArrayRef ABPickerCopyProperties(ABPickerRef picker);
PLATFORM_API void ABPickerSetColumnTitle(ABPickerRef picker, CFStringRef title, CFStringRef property);
// The title that was set, else the property's localized name; null for a property that is neither built in nor added.
PLATFORM_API CFStringRef ABPickerCopyColumnTitle(ABPickerRef picker, CFStringRef property);
// A property that wasn't added changes nothing.
PLATFORM_API void ABPickerSetDisplayedProperty(ABPickerRef picker, CFStringRef property);
// Null while there is none.
PLATFORM_API CFStringRef ABPickerCopyDisplayedProperty(ABPickerRef picker);

// Everything that was selected, in that order, as far as it is still in the address book.
PLATFORM_API CFArrayRef ABPickerCopySelectedGroups(ABPickerRef picker);
// People and, where groups may be selected, groups of the names column.
PLATFORM_API CFArrayRef ABPickerCopySelectedRecords(ABPickerRef picker);
// Of the person's selected values; null unless the displayed property has several values.
PLATFORM_API CFArrayRef ABPickerCopySelectedIdentifiers(ABPickerRef picker, ABPersonRef person);
// The values as the records hold them: texts, dictionaries, dates.
PLATFORM_API CFArrayRef ABPickerCopySelectedValues(ABPickerRef picker);

// A selection that isn't extended, or can't be, is replaced. A person's primary value is selected with it. Records that
// the shared address book doesn't have, by their unique id, change nothing.
PLATFORM_API void ABPickerSelectGroup(ABPickerRef picker, ABGroupRef group, bool extendSelection);
PLATFORM_API void ABPickerSelectRecord(ABPickerRef picker, ABRecordRef record, bool extendSelection);
PLATFORM_API void ABPickerSelectIdentifier(ABPickerRef picker, ABPersonRef person, CFStringRef identifier,
                                           bool extendSelection);
PLATFORM_API void ABPickerDeselectGroup(ABPickerRef picker, ABGroupRef group);
PLATFORM_API void ABPickerDeselectRecord(ABPickerRef picker, ABRecordRef record);
PLATFORM_API void ABPickerDeselectIdentifier(ABPickerRef picker, ABPersonRef person, CFStringRef identifier);
PLATFORM_API void ABPickerDeselectAll(ABPickerRef picker);

// Not retained; null for none.
PLATFORM_API void ABPickerSetDelegate(ABPickerRef picker, EventTargetRef delegate);
PLATFORM_API EventTargetRef ABPickerGetDelegate(ABPickerRef picker);

PLATFORM_API void ABPickerClearSearchField(ABPickerRef picker);
// The first selected record in the desktop's contacts application.
PLATFORM_API void ABPickerEditInAddressBook(ABPickerRef picker);
PLATFORM_API void ABPickerSelectInAddressBook(ABPickerRef picker);
}
