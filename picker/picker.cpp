#include "picker/picker.h"

#include "bridge/wrappers.h"
#include "frame/member_table.h"
#include "frame/runtime_support.h"

namespace {

constexpr Word kPickerFlags = 0x100000;
constexpr Word kPickerPropertyFlags = 0x100002;

// There is nothing to make: the picker comes with "Create".
void PickerConstructor(REALobject) {}

void PickerDestructor(REALobject self) { releaseWrapped(self); }

bool gAvailable(REALobject, Word) { return true; }

void raiseUnsupported() {
  RaiseException("UnsupportedOperationException", "This function is only for Mac OS X Carbon.", kEncodingASCII);
}

void PickerRemoveEvents(REALobject) { raiseUnsupported(); }

void PickerInstallEvents(REALobject, REALobject) { raiseUnsupported(); }

REALproperty properties[] = {
    {.name = "Available",
     .type = "Boolean",
     .flags = kPickerPropertyFlags,
     .getter = reinterpret_cast<void*>(&gAvailable)},
    handleProperty(kPickerPropertyFlags),
};

REALmethodDefinition methods[] = {
    method<"RemoveEvents">(PickerRemoveEvents, kPickerFlags),
    method<"InstallEvents(targetwindow as window)">(PickerInstallEvents, kPickerFlags),
};

REALevent events[] = {
    {"GroupSelectionChanged"},    {"NameSelectionChanged"}, {"ValueSelectionChanged"},
    {"DisplayedPropertyChanged"}, {"GroupDoubleClicked"},   {"NameDoubleClicked"},
};

}  // namespace

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
