#include "platform/contacts/person.h"

#include "platform/contacts/address_book_object.h"
#include "platform/contacts/card_entries.h"
#include "platform/contacts/errors.h"
#include "platform/contacts/group_lines.h"
#include "platform/contacts/identifier.h"
#include "platform/contacts/links.h"
#include "platform/contacts/load.h"
#include "platform/contacts/record_object.h"
#include "platform/contacts/schema_methods.h"
#include "platform/contacts/vcard/charset.h"
#include "platform/contacts/vcard/editor.h"
#include "platform/contacts/vcard/sections.h"
#include "platform/contacts/vcard/writer.h"
#include "platform/objc/class_builder.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace contacts {
namespace {

// What belongs to the card that was, not to the person: a new one is made of it.
constexpr std::string_view kOwnLines[] = {
    kLinkLine, "UID", "X-ABUID", "REV", "CREATED", "MEMBER", "X-ADDRESSBOOKSERVER-MEMBER"};

std::string withoutIdentity(std::string_view section) {
  vcard::Editor editor(section);
  for (const std::string_view line : kOwnLines) editor.dropAll(line);
  for (std::size_t i = 0; i < editor.card().lines.size(); ++i) {
    const vcard::Line& line = editor.card().lines[i];
    if (saysGroup(line)) editor.drop(i);
    std::vector<vcard::Parameter> parameters = line.parameters();
    if (std::erase_if(parameters, [](const auto& parameter) { return parameter.name == kIdentifierParameter; }) == 0) {
      continue;
    }
    editor.drop(i);
    vcard::appendLine(editor.before(i), line.group(), line.name(), parameters, line.value());
  }
  return editor.text();
}

// The first card of the data.
std::optional<std::string> importedText(NSData vCard) {
  if (!vCard) return std::nullopt;
  const std::string text = vcard::decodeFile(std::string(static_cast<const char*>(vCard.bytes()), vCard.length()));
  for (const vcard::Section& section : vcard::splitSections(text)) {
    if (section.isCard) return withoutIdentity(section.text);
  }
  return std::nullopt;
}

struct PersonObject : RecordObject {
  ABRecord init() { return initializedNew(false, nullptr); }
  ABRecord initWithAddressBook(NSObject book) { return initializedNew(false, book); }

  ABRecord initWithVCardRepresentation(NSData vCard) {
    // The receiver is the caller's no more: it is answered, or given up.
    auto owned = Retained<ABRecord>::adopt(ABRecord(this));
    std::optional<std::string> text = importedText(vCard);
    if (!text) return nullptr;
    auto card = std::make_shared<SingleCard>();
    card->setUid(newIdentifier());
    card->kept = CardText(*std::move(text));
    card->ownDigest.addAnything();
    initialized(personSchema(), std::move(card));
    return owned.leak();
  }

  [[nodiscard]] NSArray linkedPeople() {
    if (book() == nullptr) return NSArray::arrayWithObjects({ABRecord(this)});
    return book()->linkedWith(ABRecord(this));
  }

  [[nodiscard]] NSData vCardRepresentation() {
    const std::string text = changedText();
    return NSData::dataWithBytes(text.data(), text.size());
  }

  // Read when it is asked for, and not kept.
  [[nodiscard]] NSData imageData() const {
    if (const HeldValue* image = held(imageProperty())) {
      return Retained<NSObject>(image->value).autorelease().as<NSData>();
    }
    const std::string text = card().fullText();
    return imageFromCard(vcard::parseCard(text)).autorelease();
  }

  bool setImageData(NSData data) {
    if (isReadOnly()) return false;
    const bool isEmpty = !data || data.length() == 0;
    store(imageProperty(), isEmpty ? Retained<NSObject>() : Retained<NSObject>::share(data));
    return true;
  }
};

}  // namespace

void registerPerson() {
  auto builder = objc::ClassBuilder::define<PersonObject>("ABPerson", "ABRecord");
  builder.method<&PersonObject::init>("init")
      .method<&PersonObject::initWithAddressBook>("initWithAddressBook:")
      .method<&PersonObject::initWithVCardRepresentation>("initWithVCardRepresentation:")
      .method<&RecordObject::parentGroups>("parentGroups")
      .method<&PersonObject::linkedPeople>("linkedPeople")
      .method<&PersonObject::vCardRepresentation>("vCardRepresentation")
      .method<&PersonObject::imageData>("imageData")
      .method<&PersonObject::setImageData>("setImageData:");
  SchemaMethods<personSchema>::addTo(builder);
}

}  // namespace contacts
