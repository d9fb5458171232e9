#include "tests/plugin/independent_host.h"
#include "tests/contacts/contacts_folder.h"

#include <gtest/gtest.h>

// The plug-in with a host that shares no code with ours, in a program that links no framework.
namespace {

template <class Signature>
Signature* shared(const char* declaration) {
  return reinterpret_cast<Signature*>(independent_host::sharedMethod("ABAddressBookVXR", declaration));
}

REALobject sharedBook() { return shared<REALobject()>("sharedAddressbook as ABAddressBookVXR")(); }

}  // namespace

TEST(IndependentHost, ListsPeopleThroughTheTables) {
  const ContactsFolder folder;
  folder.writeCard("1.vcf", "UID:1\nFN:Zoë Ångström\nN:Ångström;Zoë;;;\n");
  ASSERT_TRUE(independent_host::start({"Foundation", "Carbon", "AppKit", "AddressBook"}));
  EXPECT_EQ(independent_host::classes().size(), 8U);

  REALobject book = sharedBook();
  ASSERT_NE(book, nullptr);
  auto* people = reinterpret_cast<REALobjectArray (*)(REALobject)>(
      independent_host::method("ABAddressBookVXR", "people as ABPersonVXR()"));
  REALobjectArray all = people(book);
  ASSERT_EQ(independent_host::elements(all).size(), 1U);
  REALobject zoe = independent_host::elements(all)[0];
  EXPECT_EQ(independent_host::classOf(zoe), "ABPersonVXR");

  auto* valueForProperty = reinterpret_cast<REALvariant (*)(REALobject, REALstring)>(
      independent_host::method("ABRecordVXR", "valueForProperty(PropertyName as string) as variant"));
  REALstring property = independent_host::string("First");
  REALvariant first = valueForProperty(zoe, property);
  EXPECT_EQ(independent_host::text(first), "Zoë");
  auto* uniqueId =
      reinterpret_cast<REALstring (*)(REALobject)>(independent_host::method("ABRecordVXR", "uniqueId as string"));
  REALstring id = uniqueId(zoe);
  EXPECT_EQ(independent_host::text(id), "1:ABPerson");
  REALstring constant = shared<REALstring()>("kABFirstNameProperty as string")();
  EXPECT_EQ(independent_host::text(constant), "First");

  for (REALstring string : {property, id, constant}) independent_host::release(string);
  independent_host::release(first);
  independent_host::release(all);
  independent_host::release(book);
  EXPECT_EQ(independent_host::liveObjects(), 1);  // the shared object stays
}

namespace {

void expectNothing() {
  EXPECT_EQ(independent_host::classes().size(), 8U);
  EXPECT_EQ(sharedBook(), nullptr);
  EXPECT_EQ(shared<REALobject()>("sharedAddressbookMT as ABAddressBookVXR")(), nullptr);
  EXPECT_EQ(shared<REALstring()>("kABFirstNameProperty as string")(), nullptr);
  EXPECT_EQ(shared<REALstring()>("kABSocialProfileProperty as string")(), nullptr);
  REALstring name = independent_host::string("First");
  auto* typeOfProperty = reinterpret_cast<REALinteger (*)(REALstring)>(
      independent_host::sharedMethod("ABPersonVXR", "typeOfProperty(propertyName as string) as integer"));
  EXPECT_EQ(typeOfProperty(name), 0);
  independent_host::release(name);
  EXPECT_EQ(independent_host::liveObjects(), 0);
}

}  // namespace

TEST(IndependentHost, GetsNothingWithoutTheAddressBookFramework) {
  ASSERT_TRUE(independent_host::start({"Foundation", "Carbon", "AppKit"}));
  expectNothing();
}

TEST(IndependentHost, GetsNothingWithFoundationAlone) {
  ASSERT_TRUE(independent_host::start({"Foundation"}));
  expectNothing();
}

TEST(IndependentHost, GetsNothingWithoutAnyFramework) {
  ASSERT_TRUE(independent_host::start({}));
  expectNothing();
}
