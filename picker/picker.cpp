#include "picker/picker.h"

#include "bridge/dictionaries.h"
#include "bridge/exceptions.h"
#include "bridge/instance_registry.h"
#include "bridge/strings.h"
#include "bridge/wrappers.h"
#include "frame/host_ref.h"
#include "frame/member_table.h"
#include "frame/runtime_support.h"
#include "picker/readable_text.h"
#include "platform/contacts/people_picker.h"
#include "platform/objc/retained.h"

REALobject globalinstance = nullptr;
EventHandlerUPP eventHandler = nullptr;

namespace {

constexpr Word kPickerFlags = 0x100000;
constexpr Word kPickerPropertyFlags = 0x100002;

ABPickerRef pickerOf(REALobject self) { return reinterpret_cast<ABPickerRef>(*dataBlock(self)); }

void setPicker(REALobject self, ABPickerRef picker) { *dataBlock(self) = reinterpret_cast<Word>(picker); }

// What a Copy function of the picker answered.
template <objc::HandleType Handle>
Retained<Handle> adoptCopy(CFTypeRef copy) {
  return Retained<Handle>::adopt(bridge<Handle>(copy));
}

void raiseUnsupported() {
  RaiseException("UnsupportedOperationException", "This function is only for Mac OS X Carbon.", kEncodingASCII);
}

void releasePicker(REALobject self) {
  if (ABPickerRef picker = pickerOf(self)) CFRelease(picker);
  setPicker(self, nullptr);
}

void PickerConstructor(REALobject) {
  // The records that the user selects may be the first objects of the plug-in that are wrapped.
  CocoaInit();
  if (eventHandler == nullptr) eventHandler = MyEventHandler;
}

void PickerRemoveEvents(REALobject) { raiseUnsupported(); }

void PickerInstallEvents(REALobject, REALobject) { raiseUnsupported(); }

void PickerDestructor(REALobject self) {
  if (globalinstance == self) {
    PickerRemoveEvents(self);
    globalinstance = nullptr;
  }
  releasePicker(self);
}

void PickerCreate(REALobject self) {
  releasePicker(self);
  if (PLATFORM_HAS(ABPickerCreate)) setPicker(self, ABPickerCreate());
}

// A side of the frame: Part is HIRect's, Side the part's.
template <auto Part, auto Side>
float frameSide(REALobject self, Word) {
  HIRect frame{};
  if (ABPickerRef picker = pickerOf(self)) ABPickerGetFrame(picker, &frame);
  return frame.*Part.*Side;
}

template <auto Part, auto Side>
void setFrameSide(REALobject self, Word, float value) {
  ABPickerRef picker = pickerOf(self);
  if (picker == nullptr) return;
  HIRect frame{};
  ABPickerGetFrame(picker, &frame);
  frame.*Part.*Side = value;
  ABPickerSetFrame(picker, &frame);
}

constexpr auto gLeft = frameSide<&HIRect::origin, &HIPoint::x>;
constexpr auto sLeft = setFrameSide<&HIRect::origin, &HIPoint::x>;
constexpr auto gTop = frameSide<&HIRect::origin, &HIPoint::y>;
constexpr auto sTop = setFrameSide<&HIRect::origin, &HIPoint::y>;
constexpr auto gWidth = frameSide<&HIRect::size, &HISize::width>;
constexpr auto sWidth = setFrameSide<&HIRect::size, &HISize::width>;
constexpr auto gHeight = frameSide<&HIRect::size, &HISize::height>;
constexpr auto sHeight = setFrameSide<&HIRect::size, &HISize::height>;

bool gVisible(REALobject self, Word) {
  ABPickerRef picker = pickerOf(self);
  return picker != nullptr && ABPickerIsVisible(picker);
}

void sVisible(REALobject self, Word, bool value) {
  if (ABPickerRef picker = pickerOf(self)) ABPickerSetVisibility(picker, value);
}

bool gAvailable(REALobject, Word) { return true; }

template <ABPickerAttributes Attribute>
bool attribute(REALobject self, Word) {
  ABPickerRef picker = pickerOf(self);
  return picker != nullptr && (ABPickerGetAttributes(picker) & Attribute) != 0;
}

template <ABPickerAttributes Attribute>
void setAttribute(REALobject self, Word, bool value) {
  if (ABPickerRef picker = pickerOf(self)) {
    ABPickerChangeAttributes(picker, value ? Attribute : 0, value ? 0 : Attribute);
  }
}

constexpr auto gAllowSingleValueSelection = attribute<kABPickerSingleValueSelection>;
constexpr auto sAllowSingleValueSelection = setAttribute<kABPickerSingleValueSelection>;
constexpr auto gAllowMultipleValueSelection = attribute<kABPickerMultipleValueSelection>;
constexpr auto sAllowMultipleValueSelection = setAttribute<kABPickerMultipleValueSelection>;
constexpr auto gAllowGroupSelection = attribute<kABPickerAllowGroupSelection>;
constexpr auto sAllowGroupSelection = setAttribute<kABPickerAllowGroupSelection>;
constexpr auto gAllowMultipleSelection = attribute<kABPickerAllowMultipleSelection>;
constexpr auto sAllowMultipleSelection = setAttribute<kABPickerAllowMultipleSelection>;

REALstring gDisplayedProperty(REALobject self, Word) {
  ABPickerRef picker = pickerOf(self);
  if (picker == nullptr) return nullptr;
  return NSStringRB(adoptCopy<NSString>(ABPickerCopyDisplayedProperty(picker)).get());
}

// Calls the picker's function with the text, if there are both.
template <auto Function>
void withText(REALobject self, REALstring text) {
  ABPickerRef picker = pickerOf(self);
  NSString converted = NewNSString(text);
  if (picker != nullptr && converted) Function(picker, bridge<CFStringRef>(converted));
}

void sDisplayedProperty(REALobject self, Word, REALstring value) {
  withText<ABPickerSetDisplayedProperty>(self, value);
}

REALstringArray PickerCopyProperties(REALobject self) {
  auto result = adoptHost(REALCreateArrayString(-1));
  if (ABPickerRef picker = pickerOf(self)) {
    FillStringArray(result.get(), adoptCopy<NSArray>(ABPickerCopyProperties(picker)).get());
  }
  return result.handOver();
}

REALstring PickerCopyColumnTitle(REALobject self, REALstring property) {
  ABPickerRef picker = pickerOf(self);
  NSString name = NewNSString(property);
  if (picker == nullptr || !name) return nullptr;
  return NSStringRB(adoptCopy<NSString>(ABPickerCopyColumnTitle(picker, bridge<CFStringRef>(name))).get());
}

// As for the getter, the parameter is the property; the platform wants the title first.
void PickerSetColumnTitle(REALobject self, REALstring property, REALstring title) {
  ABPickerRef picker = pickerOf(self);
  NSString name = NewNSString(property);
  NSString converted = NewNSString(title);
  if (picker == nullptr || !name || !converted) return;
  ABPickerSetColumnTitle(picker, bridge<CFStringRef>(converted), bridge<CFStringRef>(name));
}

REALobjectArray PickerCopySelectedGroups(REALobject self) {
  auto result = adoptHost(REALCreateArrayObject(-1));
  guard([&] {
    if (ABPickerRef picker = pickerOf(self)) {
      FillABGroupArray(result.get(), adoptCopy<NSArray>(ABPickerCopySelectedGroups(picker)).get());
    }
  });
  return result.handOver();
}

REALobjectArray PickerCopySelectedRecords(REALobject self) {
  auto result = adoptHost(REALCreateArrayObject(-1));
  guard([&] {
    if (ABPickerRef picker = pickerOf(self)) {
      FillABRecordArray(result.get(), adoptCopy<NSArray>(ABPickerCopySelectedRecords(picker)).get());
    }
  });
  return result.handOver();
}

REALstringArray PickerCopySelectedIdentifiers(REALobject self, REALobject person) {
  auto result = adoptHost(REALCreateArrayString(-1));
  ABPickerRef picker = pickerOf(self);
  auto wanted = bridge<ABPersonRef>(wrapped<ABPerson>(person));
  if (picker != nullptr && wanted != nullptr) {
    FillStringArray(result.get(), adoptCopy<NSArray>(ABPickerCopySelectedIdentifiers(picker, wanted)).get());
  }
  return result.handOver();
}

// The selected values, or nil.
Retained<NSArray> selectedValues(REALobject self) {
  ABPickerRef picker = pickerOf(self);
  return picker == nullptr ? Retained<NSArray>() : adoptCopy<NSArray>(ABPickerCopySelectedValues(picker));
}

// Fills the array, just created, with the converted values of that class, side by side.
template <class Array, class Convert>
Array valuesOfClass(REALobject self, Array created, Class kind, Convert convert) {
  auto result = adoptHost(created);
  guard([&] {
    if (!result) return;
    const auto values = selectedValues(self);
    const NSUInteger count = values->count();
    REALinteger next = 0;
    for (NSUInteger index = 0; index < count; ++index) {
      NSObject value = values->objectAtIndex(index);
      if (!value.isKindOfClass(kind)) continue;
      const auto converted = adoptHost(convert(value));
      REALInsertArrayValue(result.get(), next++, converted.get());
    }
  });
  return result.handOver();
}

REALstringArray PickerCopySelectedValues(REALobject self) {
  return valuesOfClass(self, REALCreateArrayString(-1), "NSObject"_class,
                       [](NSObject value) { return NSStringRB(readableText(value)); });
}

REALstringArray PickerCopySelectedStrings(REALobject self) {
  return valuesOfClass(self, REALCreateArrayString(-1), "NSString"_class,
                       [](NSObject value) { return NSStringRB(value.as<NSString>()); });
}

REALdictionaryArray PickerCopySelectedDictionaries(REALobject self) {
  return valuesOfClass(self, REALCreateArrayDictionary(-1), "NSDictionary"_class,
                       [](NSObject value) { return NSDictionaryRB(value.as<NSDictionary>()); });
}

// Calls the picker's function with the record that the argument wraps, if there are both.
template <auto Function, class Reference, class... Arguments>
void withRecord(REALobject self, REALobject record, Arguments... arguments) {
  ABPickerRef picker = pickerOf(self);
  auto reference = bridge<Reference>(wrapped<ABRecord>(record));
  if (picker != nullptr && reference != nullptr) Function(picker, reference, arguments...);
}

void PickerSelectGroup(REALobject self, REALobject group, bool extendSelection) {
  withRecord<ABPickerSelectGroup, ABGroupRef>(self, group, extendSelection);
}

void PickerSelectPerson(REALobject self, REALobject person, bool extendSelection) {
  withRecord<ABPickerSelectRecord, ABRecordRef>(self, person, extendSelection);
}

void PickerSelectIdentifier(REALobject self, REALobject person, REALstring identifier, bool extendSelection) {
  NSString id = NewNSString(identifier);
  if (!id) return;
  withRecord<ABPickerSelectIdentifier, ABPersonRef>(self, person, bridge<CFStringRef>(id), extendSelection);
}

void PickerDeselectIdentifier(REALobject self, REALobject person, REALstring identifier) {
  NSString id = NewNSString(identifier);
  if (id) withRecord<ABPickerDeselectIdentifier, ABPersonRef>(self, person, bridge<CFStringRef>(id));
}

constexpr void (*PickerDeselectGroup)(REALobject, REALobject) = withRecord<ABPickerDeselectGroup, ABGroupRef>;
constexpr void (*PickerDeselectPerson)(REALobject, REALobject) = withRecord<ABPickerDeselectRecord, ABRecordRef>;

// Members that only call.
template <auto Function>
void forwardToPicker(REALobject self) {
  if (ABPickerRef picker = pickerOf(self)) Function(picker);
}

// A row compiles only if its accessors fit the declared type.
template <FixedString Name, FixedString Type, class Value>
REALproperty property(Value (*getter)(REALobject, Word),
                      std::type_identity_t<void (*)(REALobject, Word, Value)> setter = nullptr) {
  static constexpr FixedString name = Name;
  static constexpr FixedString type = Type;
  static_assert(member_table::fitsScalar<Value>(type.view()), "the accessors are not of the declared type");
  return {.name = name.text,
          .type = type.text,
          .flags = kPickerPropertyFlags,
          .getter = reinterpret_cast<void*>(getter),
          .setter = reinterpret_cast<void*>(setter)};
}

REALproperty properties[] = {
    property<"Left", "Single">(gLeft, sLeft),
    property<"Top", "Single">(gTop, sTop),
    property<"Width", "Single">(gWidth, sWidth),
    property<"Height", "Single">(gHeight, sHeight),
    property<"Visible", "Boolean">(gVisible, sVisible),
    property<"Available", "Boolean">(gAvailable),
    property<"AllowSingleValueSelection", "Boolean">(gAllowSingleValueSelection, sAllowSingleValueSelection),
    property<"AllowMultipleValueSelection", "Boolean">(gAllowMultipleValueSelection, sAllowMultipleValueSelection),
    property<"AllowGroupSelection", "Boolean">(gAllowGroupSelection, sAllowGroupSelection),
    property<"AllowMultipleSelection", "Boolean">(gAllowMultipleSelection, sAllowMultipleSelection),
    property<"DisplayedProperty", "String">(gDisplayedProperty, sDisplayedProperty),
    handleProperty(kPickerPropertyFlags),
};
static_assert(std::size(properties) == 12);

REALmethodDefinition methods[] = {
    method<"Create">(PickerCreate, kPickerFlags),
    method<"Properties as string()">(PickerCopyProperties, kPickerFlags),
    method<"AddProperty(propertyname as String)">(withText<ABPickerAddProperty>, kPickerFlags),
    method<"RemoveProperty(propertyname as String)">(withText<ABPickerRemoveProperty>, kPickerFlags),
    assignableMethod<"ColumnTitle(columntitle as String) as String">(PickerCopyColumnTitle, PickerSetColumnTitle,
                                                                     kPickerFlags),
    method<"SelectedGroups as ABGroupVXR()">(PickerCopySelectedGroups, kPickerFlags),
    method<"SelectedRecords as ABRecordVXR()">(PickerCopySelectedRecords, kPickerFlags),
    method<"SelectedIdentifiers(person as ABPersonVXR) as string()">(PickerCopySelectedIdentifiers, kPickerFlags),
    method<"SelectedValues as string()">(PickerCopySelectedValues, kPickerFlags),
    method<"SelectedStrings as String()">(PickerCopySelectedStrings, kPickerFlags),
    method<"SelectedDictionaries as Dictionary()">(PickerCopySelectedDictionaries, kPickerFlags),
    method<"SelectGroup(group as ABGroupVXR, ExtendSelection as boolean)">(PickerSelectGroup, kPickerFlags),
    method<"SelectPerson(person as ABPersonVXR, ExtendSelection as boolean)">(PickerSelectPerson, kPickerFlags),
    method<"SelectIdentifier(person as ABPersonVXR, Identifier as String, ExtendSelection as boolean)">(
        PickerSelectIdentifier, kPickerFlags),
    method<"DeselectGroup(group as ABGroupVXR)">(PickerDeselectGroup, kPickerFlags),
    method<"DeselectPerson(person as ABPersonVXR)">(PickerDeselectPerson, kPickerFlags),
    method<"DeselectIdentifier(person as ABPersonVXR, Identifier as String)">(PickerDeselectIdentifier, kPickerFlags),
    method<"DeselectAll">(forwardToPicker<ABPickerDeselectAll>, kPickerFlags),
    method<"ClearSearchField">(forwardToPicker<ABPickerClearSearchField>, kPickerFlags),
    method<"EditInAddressBook">(forwardToPicker<ABPickerEditInAddressBook>, kPickerFlags),
    method<"SelectInAddressBook">(forwardToPicker<ABPickerSelectInAddressBook>, kPickerFlags),
    method<"RemoveEvents">(PickerRemoveEvents, kPickerFlags),
    method<"InstallEvents(targetwindow as window)">(PickerInstallEvents, kPickerFlags),
};
static_assert(std::size(methods) == 23);

// In the order of the Carbon events' kinds, the first being 1.
REALevent events[] = {
    {"GroupSelectionChanged"},    {"NameSelectionChanged"}, {"ValueSelectionChanged"},
    {"DisplayedPropertyChanged"}, {"GroupDoubleClicked"},   {"NameDoubleClicked"},
};
static_assert(std::size(events) == 6);

using Handler = void(REALobject);

// The host code that handles the event; null when there is none, or it is no event for the picker.
Handler* handlerFor(REALobject picker, EventRef event) {
  if (!REALinRuntime() || picker == nullptr) return nullptr;
  const std::uint32_t kind = GetEventKind(event);
  if (GetEventClass(event) != kEventClassABPeoplePicker || kind < 1 || kind > std::size(events)) return nullptr;
  return reinterpret_cast<Handler*>(REALGetEventInstance(picker, &events[kind - 1]));
}

}  // namespace

OSStatus MyEventHandler(EventHandlerCallRef nextHandler, EventRef event, void*) {
  REALobject picker = globalinstance;
  Handler* handler = handlerFor(picker, event);
  if (handler == nullptr) return CallNextEventHandler(nextHandler, event);
  const auto kept = HostRef<REALobject>::share(picker);
  handler(picker);
  return noErr;
}

REALclassDefinition ABPickerVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABPickerVXR",
    .dataSize = sizeof(Word),
    .constructor = PickerConstructor,
    .destructor = PickerDestructor,
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
    .events = events,
    .eventCount = std::size(events),
    .flags = kPickerFlags,
};
