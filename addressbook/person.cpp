#include "platform/contacts/person.h"

#include "addressbook/class_tables.h"
#include "addressbook/forward.h"
#include "addressbook/pool.h"
#include "addressbook/schema.h"
#include "addressbook/search_element.h"
#include "bridge/data.h"
#include "bridge/instance_registry.h"
#include "frame/member_table.h"
#include "platform/appkit/image.h"
#include "platform/appkit/workspace.h"
#include "platform/objc/retained.h"

namespace {

void Constructor1(REALobject self) {
  guard([&] { adoptWrapped(self, ABPerson::alloc().init()); });
}

void Constructor2(REALobject self, REALobject addressBook) {
  guard([&] { adoptWrapped(self, ABPerson::alloc().initWithAddressBook(wrapped<NSObject>(addressBook))); });
}

void Constructor3(REALobject self, REALmemoryBlock vCardData) {
  guard([&] {
    NSData vCard = NewNSData(vCardData);
    adoptWrapped(self, ABPerson::alloc().initWithVCardRepresentation(vCard));
  });
}

bool setImageData(REALobject self, REALmemoryBlock data) {
  bool result = false;
  guard([&] {
    if (auto person = wrapped<ABPerson>(self)) result = person.setImageData(NewNSData(data));
  });
  return result;
}

void assignImageData(REALobject self, REALmemoryBlock data) { setImageData(self, data); }

REALobject image(REALobject self) {
  REALobject result = nullptr;
  CocoaInit();
  guard([&] {
    inPool([&] {
      NSData data = wrapped<ABPerson>(self).imageData();
      if (!data) return;
      const auto decoded = Retained<NSImage>::adopt(NSImage::alloc().initWithData(data));
      result = NewNSImageVXR(decoded.get());
    });
  });
  return result;
}

void assignImage(REALobject self, REALobject image) {
  guard([&] {
    if (auto person = wrapped<ABPerson>(self)) person.setImageData(wrapped<NSImage>(image).TIFFRepresentation());
  });
}

// Opens the person in the contacts application, with what the format makes of the unique id.
bool openInAddressbook(REALobject self, NSString format) {
  bool result = false;
  CocoaInit();
  guard([&] {
    auto person = wrapped<ABPerson>(self);
    if (!person) return;
    NSString address = NSString::stringWithFormat(format, person.uniqueId());
    result = NSWorkspace::sharedWorkspace().openURL(NSURL::URLWithString(address));
  });
  return result;
}

bool ShowInAddressbook(REALobject self) { return openInAddressbook(self, "addressbook://%@"_ns); }

bool EditInAddressbook(REALobject self) { return openInAddressbook(self, "addressbook://%@?edit"_ns); }

// A schema method that may be the first of the plug-in to run.
template <auto Method>
struct Initialised;

template <class Result, class... Parameters, Result (*Method)(Parameters...)>
struct Initialised<Method> {
  static Result call(Parameters... parameters) {
    CocoaInit();
    return Method(parameters...);
  }
};

REALmethodDefinition methods[] = {
    method<"Constructor">(Constructor1),
    method<"Constructor(addressBook as ABAddressBookVXR)">(Constructor2),
    method<"Constructor(vCardData as Memoryblock)">(Constructor3),
    method<"vCardRepresentation as Memoryblock">(forward<&ABPerson::vCardRepresentation>),
    method<"parentGroups as ABGroupVXR()">(forwardList<&ABPerson::parentGroups, FillABGroupArray>),
    assignableMethod<"imageData as Memoryblock">(forward<&ABPerson::imageData>, assignImageData),
    assignableMethod<"image as NSImageVXR">(image, assignImage),
    method<"setImageData(data as Memoryblock) as boolean">(setImageData),
    method<"ShowInAddressbook as boolean">(ShowInAddressbook),
    method<"EditInAddressbook as boolean">(EditInAddressbook),
    method<"linkedPeople as ABPersonVXR()">(forwardList<&ABPerson::linkedPeople, FillABPersonArray>),
};
static_assert(std::size(methods) == 11);

using People = Schema<ABPerson>;

REALmethodDefinition sharedMethods[] = {
    sharedMethod<"searchElementForProperty(PropertyName as string, Label as string, Key as string, value as variant, "
                 "comparison as integer) as ABSearchElementVXR">(PersonSearchElementForProperty),
    sharedMethod<"properties as string()">(Initialised<People::properties>::call),
    sharedMethod<"removeProperties(properties() as string) as integer">(Initialised<People::removeProperties>::call),
    sharedMethod<"removeProperty(propertyName as string) as integer">(Initialised<People::removeProperty>::call),
    sharedMethod<"typeOfProperty(propertyName as string) as integer">(Initialised<People::typeOfProperty>::call),
    sharedMethod<"addProperty(propertyName as string, type as integer) as integer">(
        Initialised<People::addProperty>::call),
};
static_assert(std::size(sharedMethods) == 6);

}  // namespace

REALclassDefinition ABPersonVXR = {
    .version = kPluginInterfaceVersion,
    .name = "ABPersonVXR",
    .superName = "ABRecordVXR",
    .methods = methods,
    .methodCount = std::size(methods),
    .flags = kClassFlags,
    .sharedMethods = sharedMethods,
    .sharedMethodCount = std::size(sharedMethods),
};
