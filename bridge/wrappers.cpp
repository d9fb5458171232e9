#include "bridge/wrappers.h"

#include "bridge/collections.h"
#include "bridge/exceptions.h"
#include "bridge/instance_registry.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "platform/objc/retained.h"

#include <array>
#include <cstdio>

namespace {

void setWrapped(REALobject object, NSObject value) { *dataBlock(object) = reinterpret_cast<Word>(value.get()); }

HostRef<REALobject> makeWrapper(NSObject object, const char* className) {
  auto wrapper = adoptHost(REALnewInstance(className));
  if (wrapper) setWrapped(wrapper.get(), Retained<NSObject>::share(object).leak());
  return wrapper;
}

HostRef<REALobject> findOrMakeWrapper(NSObject object, const char* className) {
  if (!object) return {};
  if (REALobject found = FindInstance(object)) return HostRef<REALobject>::share(found);
  auto wrapper = makeWrapper(object, className);
  if (wrapper) RegisterInstance(wrapper.get(), object);
  return wrapper;
}

}  // namespace

void adoptWrapped(REALobject object, NSObject value) {
  setWrapped(object, value);
  RegisterInstance(object, value);
}

void releaseWrapped(REALobject object) {
  Retained<NSObject>::adopt(wrapped<NSObject>(object));
  setWrapped(object, nullptr);
}

REALobject NewABPersonVXR(ABPerson person) { return findOrMakeWrapper(person, "ABPersonVXR").handOver(); }

REALobject NewABGroupVXR(ABGroup group) { return findOrMakeWrapper(group, "ABGroupVXR").handOver(); }

REALobject NewABRecordVXR(ABRecord record) {
  if (IsABPerson(record)) return NewABPersonVXR(record.as<ABPerson>());
  if (IsABGroup(record)) return NewABGroupVXR(record.as<ABGroup>());
  return nullptr;
}

REALobject NewABSearchElementVXR(ABSearchElement element) {
  return findOrMakeWrapper(element, "ABSearchElementVXR").handOver();
}

REALobject NewABMultiValueVXR(ABMultiValue multiValue) {
  return findOrMakeWrapper(multiValue, "ABMultiValueVXR").handOver();
}

REALobject NewABMutableMultiValueVXR(ABMutableMultiValue multiValue) {
  return findOrMakeWrapper(multiValue, "ABMutableMultiValueVXR").handOver();
}

REALobject NewNSErrorVXR(NSError error) { return findOrMakeWrapper(error, "NSErrorVXR").handOver(); }

REALobject NewNSImageVXR(NSImage image) { return findOrMakeWrapper(image, "NSImageVXR").handOver(); }

REALobject NewNSObjectVXR(NSObject object) {
  constexpr std::size_t kNameBufferSize = 200;
  if (!object) return nullptr;
  for (Class candidate = object.objectClass(); candidate; candidate = candidate.superclass()) {
    std::array<char, kNameBufferSize> name{};
    const int length = std::snprintf(name.data(), name.size(), "%sVXR", candidate.name());
    if (static_cast<std::size_t>(length) >= name.size()) continue;
    if (auto wrapper = makeWrapper(object, name.data())) return wrapper.handOver();
  }
  return nullptr;
}

REALobject NewNSObjectVXR(NSObject object, Class requiredClass) {
  if (!object || !requiredClass || !object.isKindOfClass(requiredClass)) return nullptr;
  return NewNSObjectVXR(object);
}

REALobject NewNSAttributedStringVXR(NSAttributedString string) {
  return NewNSObjectVXR(string, "NSAttributedString"_class);
}

bool IsABPerson(NSObject record) { return record.isKindOfClass("ABPerson"_class); }

bool IsABGroup(NSObject record) { return record.isKindOfClass("ABGroup"_class); }

void FillABPersonArray(REALobjectArray array, NSArray objects) {
  fillHostArray(array, objects, [](NSObject person) { return NewABPersonVXR(person.as<ABPerson>()); });
}

void FillABGroupArray(REALobjectArray array, NSArray objects) {
  fillHostArray(array, objects, [](NSObject group) { return NewABGroupVXR(group.as<ABGroup>()); });
}

void FillABRecordArray(REALobjectArray array, NSArray objects) {
  fillHostArray(array, objects, [](NSObject record) { return NewABRecordVXR(record.as<ABRecord>()); });
}

NSMutableArray CreateNSObjectArray(REALobjectArray array, bool nilIfEmpty) {
  return arrayFromHost(
      array, nilIfEmpty, [array](REALinteger index) { return adoptHost(REALGetArrayObject(array, index)); },
      [](const HostRef<REALobject>& element) { return wrapped<NSObject>(element.get()); });
}

void constructWrapper(REALobject) { CocoaInit(); }

void destroyWrapper(REALobject object) {
  CocoaInit();
  guard([&] {
    auto held = wrapped<NSObject>(object);
    if (!held) return;
    UnregisterInstance(held);
    releaseWrapped(object);
  });
}

void DummyConstructor(REALobject) {}
