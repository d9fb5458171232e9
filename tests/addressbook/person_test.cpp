#include "platform/contacts/person.h"
#include "host/memory_blocks.h"
#include "platform/appkit/image.h"
#include "platform/appkit/workspace.h"
#include "platform/objc/class_builder.h"
#include "tests/addressbook/framework_calls.h"

namespace {

using host::Value;

const std::vector<Card> kContacts{person("Ada", "Lovelace", "p1")};

// What the workspace was asked to open.
std::string opened;

bool noteOpened(NSWorkspace, NSURL url) {
  opened = url.absoluteString().UTF8String();
  return true;
}

bool isPoolGone = false;

struct PoolMarker : objc::Object {
  ~PoolMarker() { isPoolGone = true; }
};

NSData raiseBesideMarker(ABPerson) {
  objc_autorelease(class_createInstance(Class("PoolMarker").record()));
  NSException::raise("Refused"_ns, "because"_ns);
}

}  // namespace

TEST(Person, IsMadeOfAVCardOrEmpty) {
  const Host host{.contacts = kContacts};
  const Value card = host::memoryBlock("BEGIN:VCARD\nVERSION:3.0\nUID:p1\nN:Turing;Alan\nEND:VCARD\n");
  constexpr const char* kMember = "NewPersonWithVCardRepresentation";
  const Value book = bookOf(host);
  for (const Value& alan :
       {host.make("ABPersonVXR", card), book.call(kMember, card), emptyInstance(kBook).call(kMember, card)}) {
    EXPECT_EQ(alan.call("DisplayName"), "Alan Turing");
    EXPECT_TRUE(book.call("recordForUniqueId", alan.call("uniqueId")).isNil());
  }
  for (const char* garbage : {"", "no card", "BEGIN:VCARD", "END:VCARD\nBEGIN:VCARD\n"}) {
    EXPECT_EQ(host.make("ABPersonVXR", host::memoryBlock(garbage)).get("Handle"), 0) << garbage;
    EXPECT_TRUE(book.call(kMember, host::memoryBlock(garbage)).isNil()) << garbage;
  }
  EXPECT_TRUE(book.call(kMember, nullptr).isNil());
  const Sends sends("dataWithBytes:length:", 1);
  EXPECT_EQ(thrownBy([&] { book.call(kMember, card); }), kRefused);
}

TEST(Person, OpensItsPageInTheContactsApplication) {
  const Host host{.contacts = kContacts};
  objc::ClassBuilder(Class("NSWorkspace")).method<&noteOpened>("openURL:");
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

  ada.assign("imageData", host::memoryBlock(kPicture));
  const Value image = ada.call("image");
  EXPECT_NE(ada.call("image"), image);
  ada.assign("image", image);
  EXPECT_EQ(shown(ada.call("imageData")), shown(image.call("TIFFRepresentation")));
  EXPECT_NE(host::bytesOf(ada.call("imageData")), kPicture);
  EXPECT_FALSE(ada.call("image").isNil());

  // Assigning nothing takes it away, each way.
  const std::pair<const char*, Value> nothings[] = {{"imageData", nullptr},
                                                    {"imageData", host::memoryBlock("")},
                                                    {"image", nullptr},
                                                    {"image", emptyInstance("NSImageVXR")}};
  for (const auto& [member, nothing] : nothings) {
    ada.call("setImageData", host::memoryBlock(kPicture));
    ada.assign(member, nothing);
    EXPECT_TRUE(ada.call("imageData").isNil()) << member;
  }
  EXPECT_EQ(ada.call("setImageData", nullptr), true);

  const Value empty = emptyInstance("ABPersonVXR");
  empty.assign("imageData", host::memoryBlock(kPicture));
  empty.assign("image", image);
  EXPECT_TRUE(empty.call("imageData").isNil());
}

TEST(Picture, EndsItsPoolBeforeTheExceptionIsReported) {
  static bool wasPoolGone = false;
  objc::ClassBuilder::define<PoolMarker>("PoolMarker", "NSObject");
  objc::ClassBuilder(Class("ABPerson")).method<&raiseBesideMarker>("imageData");
  const Host host{.contacts = kContacts};
  const Value ada = adaOf(host);
  objc_setSendHook([](objc::Object*, objc::Selector sent) {
    if (sent == "reason"_sel) wasPoolGone = isPoolGone;
  });
  EXPECT_EQ(thrownBy([&] { ada.call("image"); }), kRefused);
  objc_setSendHook(nullptr);
  EXPECT_TRUE(wasPoolGone);
}
