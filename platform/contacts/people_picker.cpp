#include "platform/contacts/people_picker.h"

#include "platform/contacts/load.h"
#include "platform/contacts/people_picker/model.h"
#include "platform/contacts/people_picker/window.h"
#include "platform/contacts/strings.h"
#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/cf_string.h"
#include "platform/foundation/notification.h"
#include "platform/foundation/run_loop_source.h"
#include "platform/foundation/url.h"
#include "platform/objc/class_builder.h"

#include <cstdlib>
#include <memory>
#include <optional>

namespace contacts {
namespace {

// What an ABPickerRef refers to.
struct PickerObject : objc::Object {
  PickerObject();
  PickerObject(const PickerObject&) = delete;
  PickerObject& operator=(const PickerObject&) = delete;
  ~PickerObject();

  void databaseChanged(NSNotification);
  // What is in sight may have changed; of the model, perhaps only what is selected.
  void refresh() const;
  void refreshSelection() const;
  void setVisible(bool visible);

  PickerModel model;
  bool isVisible = false;
  EventTargetRef delegate = nullptr;

 private:
  void serve();
  void end(PickerWindow::Outcome outcome);
  void report(const PickerModel::State& before, PickerWindow::Outcome outcome);
  void send(std::uint32_t kind);

  std::shared_ptr<PickerWindow> window_;
  std::optional<RunLoopSource> keys_;
};

PickerObject& objectOf(ABPickerRef picker) { return *reinterpret_cast<PickerObject*>(picker); }

PickerObject::PickerObject() {
  if (const char* text = std::getenv("ADDRESSBOOK_PICKER_SEARCH")) model.searchText = text;
  for (const NSString name : {kABDatabaseChangedNotification, kABDatabaseChangedExternallyNotification}) {
    NSNotificationCenter::defaultCenter().addObserver(NSObject(this), "databaseChanged:"_sel, name, nullptr);
  }
}

PickerObject::~PickerObject() {
  NSNotificationCenter::defaultCenter().removeObserver(NSObject(this), nullptr, nullptr);
}

// Anew, because the log may have been written across the window meanwhile.
void PickerObject::databaseChanged(NSNotification) {
  if (window_) window_->terminal().repaint();
  refresh();
}

void PickerObject::refresh() const {
  if (!window_) return;
  window_->reload();
  window_->draw();
}

void PickerObject::refreshSelection() const {
  if (!window_) return;
  window_->reloadSelection();
  window_->draw();
}

void PickerObject::setVisible(bool visible) {
  if (visible == isVisible) return;
  isVisible = visible;
  // A window that is being served is let go of there.
  keys_.reset();
  window_.reset();
  const int attached = visible ? attachedTerminal() : -1;
  if (attached < 0) return;
  std::unique_ptr<PickerTerminal> terminal = openPickerTerminal(attached);
  isVisible = terminal != nullptr;
  if (!terminal) return;
  const int descriptor = terminal->descriptor();
  window_ = std::make_shared<PickerWindow>(std::move(terminal), model);
  window_->draw();
  keys_.emplace(descriptor, [this] { serve(); });
}

// What the events start may hide the picker or give it up.
void PickerObject::serve() {
  const AutoreleasePool pool;
  const auto kept = Retained<NSObject>::share(NSObject(this));
  const std::shared_ptr<PickerWindow> served = window_;
  while (window_ == served) {
    const std::optional<PickerInput> input = served->terminal().next();
    if (!input) break;
    const PickerModel::State before = model.state();
    const PickerWindow::Outcome outcome = served->handle(*input);
    if (outcome == PickerWindow::Outcome::kCancelled) model.deselectAll();
    report(before, outcome);
    if (outcome != PickerWindow::Outcome::kNone && window_ == served) setVisible(false);
  }
  if (window_ == served) served->draw();
}

void PickerObject::report(const PickerModel::State& before, PickerWindow::Outcome outcome) {
  const PickerModel::State after = model.state();
  const auto recordsOf = [](const PickerModel::State& state) {
    std::vector<ABRecord> records;
    for (const PickedRecord& picked : state.records) records.push_back(picked.record.get());
    return records;
  };
  if (after.groups != before.groups) send(kEventABPeoplePickerGroupSelectionChanged);
  if (recordsOf(after) != recordsOf(before)) send(kEventABPeoplePickerNameSelectionChanged);
  if (after.displayed != before.displayed) send(kEventABPeoplePickerDisplayedPropertyChanged);
  if (after.records != before.records) send(kEventABPeoplePickerValueSelectionChanged);
  if (outcome == PickerWindow::Outcome::kGroupChosen) send(kEventABPeoplePickerGroupDoubleClicked);
  if (outcome == PickerWindow::Outcome::kNameChosen) send(kEventABPeoplePickerNameDoubleClicked);
}

void PickerObject::send(std::uint32_t kind) {
  if (delegate == nullptr) return;
  EventRef event = nullptr;
  if (CreateEvent(kCFAllocatorDefault, kEventClassABPeoplePicker, kind, 0, kEventAttributeNone, &event) != noErr)
    return;
  const CFTypeRef self = this;
  SetEventParameter(event, kEventParamABPickerRef, typeCFTypeRef, sizeof self, &self);
  SendEventToEventTarget(event, delegate);
  ReleaseEvent(event);
}

std::string textOf(CFStringRef string) { return utf8Of(bridge<NSString>(string)); }

CFStringRef copyOf(const std::string& text) {
  return text.empty() ? nullptr : bridge<CFStringRef>(Retained<NSString>::share(makeString(text)).leak());
}

CFArrayRef copyOf(NSArray array) { return bridge<CFArrayRef>(Retained<NSArray>::share(array).leak()); }

CFArrayRef copyOf(const std::vector<std::string>& texts) {
  const NSMutableArray array = NSMutableArray::array();
  for (const std::string& text : texts) array.addObject(makeString(text));
  return copyOf(array);
}

NSObject object(const void* reference) { return bridge<NSObject>(reference); }

// What the picker stands for in the desktop's contacts application.
void openSelected(ABPickerRef picker, NSString format) {
  const AutoreleasePool pool;
  const std::vector<PickedRecord> records = objectOf(picker).model.selectedRecords();
  const std::vector<ABGroup> groups = objectOf(picker).model.selectedGroups();
  ABRecord record;
  if (!groups.empty()) record = groups.front();
  if (!records.empty()) record = records.front().record.get();
  if (!record) return;
  const NSURL url = NSURL::URLWithString(NSString::stringWithFormat(format, record.uniqueId()));
  const auto workspace = send<NSObject>(Class("NSWorkspace"), "sharedWorkspace"_sel);
  if (url) send<bool>(workspace, "openURL:"_sel, url);
}

}  // namespace

void registerPeoplePicker() {
  objc::ClassBuilder::define<PickerObject>("ABPicker", "NSObject")
      .method<&PickerObject::databaseChanged>("databaseChanged:");
}

}  // namespace contacts

using contacts::objectOf;

ABPickerRef ABPickerCreate() {
  return reinterpret_cast<ABPickerRef>(objc::createInstance<contacts::PickerObject>("ABPicker"_class));
}

void ABPickerSetFrame(ABPickerRef picker, const HIRect* frame) { objectOf(picker).model.frame = *frame; }

void ABPickerGetFrame(ABPickerRef picker, HIRect* frame) { *frame = objectOf(picker).model.frame; }

void ABPickerSetVisibility(ABPickerRef picker, bool visible) { objectOf(picker).setVisible(visible); }

bool ABPickerIsVisible(ABPickerRef picker) { return objectOf(picker).isVisible; }

ABPickerAttributes ABPickerGetAttributes(ABPickerRef picker) { return objectOf(picker).model.attributes(); }

CFArrayRef ABPickerCopyProperties(ABPickerRef picker) {
  const AutoreleasePool pool;
  return contacts::copyOf(objectOf(picker).model.properties());
}

CFStringRef ABPickerCopyColumnTitle(ABPickerRef picker, CFStringRef property) {
  const AutoreleasePool pool;
  return contacts::copyOf(objectOf(picker).model.title(contacts::textOf(property)));
}

CFStringRef ABPickerCopyDisplayedProperty(ABPickerRef picker) {
  const AutoreleasePool pool;
  return contacts::copyOf(objectOf(picker).model.displayedProperty());
}

CFArrayRef ABPickerCopySelectedGroups(ABPickerRef picker) {
  const AutoreleasePool pool;
  const NSMutableArray groups = NSMutableArray::array();
  for (const ABGroup group : objectOf(picker).model.selectedGroups()) groups.addObject(group);
  return contacts::copyOf(groups);
}

CFArrayRef ABPickerCopySelectedRecords(ABPickerRef picker) {
  const AutoreleasePool pool;
  const NSMutableArray records = NSMutableArray::array();
  for (const auto& picked : objectOf(picker).model.selectedRecords()) records.addObject(picked.record.get());
  return contacts::copyOf(records);
}

CFArrayRef ABPickerCopySelectedIdentifiers(ABPickerRef picker, ABPersonRef person) {
  const AutoreleasePool pool;
  const contacts::PickerModel& model = objectOf(picker).model;
  if (!model.displaysSeveralValues()) return nullptr;
  return contacts::copyOf(model.selectedIdentifiers(contacts::object(person).as<ABRecord>()));
}

CFArrayRef ABPickerCopySelectedValues(ABPickerRef picker) {
  const AutoreleasePool pool;
  return contacts::copyOf(objectOf(picker).model.selectedValues());
}

EventTargetRef ABPickerGetDelegate(ABPickerRef picker) { return objectOf(picker).delegate; }

void ABPickerSetDelegate(ABPickerRef picker, EventTargetRef delegate) { objectOf(picker).delegate = delegate; }

void ABPickerEditInAddressBook(ABPickerRef picker) { contacts::openSelected(picker, "addressbook://%@?edit"_ns); }

void ABPickerSelectInAddressBook(ABPickerRef picker) { contacts::openSelected(picker, "addressbook://%@"_ns); }

// The program's own changes, which a window shows at once.
namespace {

template <class Change>
void change(ABPickerRef picker, Change change) {
  const AutoreleasePool pool;
  change(objectOf(picker).model);
  objectOf(picker).refresh();
}

template <class Change>
void changeSelection(ABPickerRef picker, Change change) {
  const AutoreleasePool pool;
  change(objectOf(picker).model);
  objectOf(picker).refreshSelection();
}

}  // namespace

void ABPickerChangeAttributes(ABPickerRef picker, ABPickerAttributes attributesToSet,
                              ABPickerAttributes attributesToClear) {
  change(picker, [&](auto& model) { model.changeAttributes(attributesToSet, attributesToClear); });
}

void ABPickerAddProperty(ABPickerRef picker, CFStringRef property) {
  change(picker, [&](auto& model) { model.addProperty(contacts::textOf(property)); });
}

void ABPickerRemoveProperty(ABPickerRef picker, CFStringRef property) {
  change(picker, [&](auto& model) { model.removeProperty(contacts::textOf(property)); });
}

void ABPickerSetColumnTitle(ABPickerRef picker, CFStringRef title, CFStringRef property) {
  change(picker, [&](auto& model) { model.setTitle(contacts::textOf(title), contacts::textOf(property)); });
}

void ABPickerSetDisplayedProperty(ABPickerRef picker, CFStringRef property) {
  change(picker, [&](auto& model) { model.setDisplayedProperty(contacts::textOf(property)); });
}

void ABPickerSelectGroup(ABPickerRef picker, ABGroupRef group, bool extendSelection) {
  change(picker, [&](auto& model) { model.selectGroup(contacts::object(group), extendSelection); });
}

void ABPickerSelectRecord(ABPickerRef picker, ABRecordRef record, bool extendSelection) {
  changeSelection(picker, [&](auto& model) { model.selectRecord(contacts::object(record), extendSelection); });
}

void ABPickerSelectIdentifier(ABPickerRef picker, ABPersonRef person, CFStringRef identifier, bool extendSelection) {
  changeSelection(picker, [&](auto& model) {
    model.selectIdentifier(contacts::object(person), contacts::textOf(identifier), extendSelection);
  });
}

void ABPickerDeselectGroup(ABPickerRef picker, ABGroupRef group) {
  change(picker, [&](auto& model) { model.deselectGroup(contacts::object(group)); });
}

void ABPickerDeselectRecord(ABPickerRef picker, ABRecordRef record) {
  changeSelection(picker, [&](auto& model) { model.deselectRecord(contacts::object(record)); });
}

void ABPickerDeselectIdentifier(ABPickerRef picker, ABPersonRef person, CFStringRef identifier) {
  changeSelection(
      picker, [&](auto& model) { model.deselectIdentifier(contacts::object(person), contacts::textOf(identifier)); });
}

void ABPickerDeselectAll(ABPickerRef picker) {
  change(picker, [](auto& model) { model.deselectAll(); });
}

void ABPickerClearSearchField(ABPickerRef picker) {
  change(picker, [](auto& model) { model.searchText.clear(); });
}
