#include "platform/contacts/person.h"
#include "host/memory_blocks.h"
#include "platform/appkit/image.h"
#include "platform/appkit/workspace.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/book_text.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Value;

constexpr const char* kBook = "ABAddressBookVXR";

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1"), group("Work", "g1", {"p1"}),
                                  group("Play", "g2", {"p1"})};

Value adaOf(const Host& host) {
  return host.shared(kBook, "sharedAddressbook").call("recordForUniqueId", "p1:ABPerson");
}

// One white pixel.
std::string picture() {
  constexpr char kGif[] =
      "GIF89a\x01\0\x01\0\x80\0\0\xff\xff\xff\0\0\0,\0\0\0\0\x01\0\x01\0\0\x02\x02"
      "D\x01\0;";
  return {kGif, sizeof kGif - 1};
}

// What the workspace was asked to open.
std::string opened;

bool noteOpened(NSWorkspace, NSURL url) {
  opened = url.absoluteString().UTF8String();
  return true;
}

void replaceWorkspace() { objc::ClassBuilder(Class("NSWorkspace")).method<&noteOpened>("openURL:"); }

}  // namespace

TEST(Person, LeavesAnUnknownSelectorToTheFramework) {
  const Host host{.contacts = kContacts, .withoutSelectors = {"linkedPeople"}};
  EXPECT_NE(thrownBy([&] { adaOf(host).call("linkedPeople"); }).find("unrecognized selector"), std::string::npos);
}

TEST(Person, IsMadeWithOrWithoutABook) {
  const Host host{.contacts = kContacts};
  const Value book = host.shared(kBook, "sharedAddressbook");
  const Value own = host.make("ABPersonVXR");
  EXPECT_NE(own.get("Handle"), 0);
  EXPECT_TRUE(book.call("recordForUniqueId", own.call("uniqueId")).isNil());
  for (const Value& nobody : {Value(), emptyInstance(kBook)}) {
    EXPECT_TRUE(book.call("recordForUniqueId", host.make("ABPersonVXR", nobody).call("uniqueId")).isNil());
  }
  const Value added = host.make("ABPersonVXR", book);
  EXPECT_EQ(book.call("recordForUniqueId", added.call("uniqueId")), added);  // registered
  EXPECT_EQ(book.call("people").size(), 2U);
}

TEST(Person, IsMadeOfAVCardOrEmpty) {
  const Host host{.contacts = kContacts};
  const Value ada = adaOf(host);
  const Value again = host.make("ABPersonVXR", ada.call("vCardRepresentation"));
  EXPECT_EQ(again.call("DisplayName"), "Ada Lovelace");
  EXPECT_NE(again.call("uniqueId"), ada.call("uniqueId"));
  for (const char* garbage : {"", "no card", "BEGIN:VCARD", "END:VCARD\nBEGIN:VCARD\n"}) {
    EXPECT_EQ(host.make("ABPersonVXR", host::memoryBlock(garbage)).get("Handle"), 0) << garbage;
  }
}

TEST(Person, OpensItsPageInTheContactsApplication) {
  const Host host{.contacts = kContacts};
  replaceWorkspace();
  const Value ada = adaOf(host);
  EXPECT_EQ(ada.call("ShowInAddressbook"), true);
  EXPECT_EQ(opened, "addressbook://p1:ABPerson");
  EXPECT_EQ(ada.call("EditInAddressbook"), true);
  EXPECT_EQ(opened, "addressbook://p1:ABPerson?edit");
}

TEST(Picture, IsBytesAndAnImage) {
  const Host host{.contacts = kContacts};
  const Value ada = adaOf(host);
  EXPECT_TRUE(ada.call("image").isNil());
  ada.assign("imageData", host::memoryBlock("no picture"));
  EXPECT_EQ(host::bytesOf(ada.call("imageData")), "no picture");
  EXPECT_TRUE(ada.call("image").isNil());

  ada.assign("imageData", host::memoryBlock(picture()));
  const Value image = ada.call("image");
  EXPECT_NE(ada.call("image"), image);
  ada.assign("image", image);
  EXPECT_EQ(shown(ada.call("imageData")), shown(image.call("TIFFRepresentation")));
  EXPECT_NE(host::bytesOf(ada.call("imageData")), picture());
  EXPECT_FALSE(ada.call("image").isNil());

  // Assigning nothing takes it away, each way.
  for (const char* member : {"imageData", "image"}) {
    for (const Value& nothing :
         {Value(), member == std::string("image") ? emptyInstance("NSImageVXR") : host::memoryBlock("")}) {
      ada.call("setImageData", host::memoryBlock(picture()));
      ada.assign(member, nothing);
      EXPECT_TRUE(ada.call("imageData").isNil()) << member;
    }
  }
  EXPECT_EQ(ada.call("setImageData", nullptr), true);

  const Value empty = emptyInstance("ABPersonVXR");
  empty.assign("imageData", host::memoryBlock(picture()));
  empty.assign("image", image);
  EXPECT_TRUE(empty.call("imageData").isNil());
}

TEST(Picture, IsNilWhereTheHostHasNoImages) {
  const Host host{.contacts = kContacts, .without = {"NSImageVXR"}};
  const Value ada = adaOf(host);
  ada.assign("imageData", host::memoryBlock(picture()));
  EXPECT_TRUE(ada.call("image").isNil());
}

TEST(Picture, LeavesTheExceptionToHostCode) {
  const Host host{.contacts = kContacts};
  const Value ada = adaOf(host);
  ada.assign("imageData", host::memoryBlock(picture()));
  const Value image = ada.call("image");
  const struct {
    const char* selector;
    std::function<void()> action;
  } cases[] = {{"imageData", [&] { ada.call("image"); }},
               {"setImageData:", [&] { ada.assign("image", image); }},
               {"TIFFRepresentation", [&] { ada.assign("image", image); }},
               {"setImageData:", [&] { ada.assign("imageData", nullptr); }}};
  for (const auto& given : cases) {
    const Sends sends(given.selector, 1);
    EXPECT_EQ(thrownBy(given.action), kRefused) << given.selector;
  }
  EXPECT_FALSE(ada.call("image").isNil());
}
