#include "tests/plugin/independent_host.h"
#include "tests/contacts/contacts_folder.h"

#include <gtest/gtest.h>

// The plug-in with a host that shares no code with ours, in a program that links no framework.
namespace {

template <class Result, class... Arguments>
Result call(const char* className, const char* declaration, Arguments... arguments) {
  return reinterpret_cast<Result (*)(Arguments...)>(independent_host::function(className, declaration))(arguments...);
}

constexpr const char* kBook = "ABAddressBookVXR";

REALobject sharedBook() { return call<REALobject>(kBook, "sharedAddressbook as ABAddressBookVXR"); }

}  // namespace

TEST(IndependentHost, ListsPeopleThroughTheTables) {
  const ContactsFolder folder;
  folder.writeCard("1.vcf", "UID:1\nFN:Zoë Ångström\nN:Ångström;Zoë;;;\n");
  ASSERT_TRUE(independent_host::start({"Foundation", "Carbon", "AppKit", "AddressBook"}));
  EXPECT_EQ(independent_host::classes().size(), 8U);

  REALobject book = sharedBook();
  ASSERT_NE(book, nullptr);
  auto all = call<REALobjectArray>(kBook, "people as ABPersonVXR()", book);
  ASSERT_EQ(independent_host::elements(all).size(), 1U);
  REALobject zoe = independent_host::elements(all)[0];
  EXPECT_EQ(independent_host::classOf(zoe), "ABPersonVXR");

  REALstring property = independent_host::string("First");
  auto first = call<REALvariant>("ABRecordVXR", "valueForProperty(PropertyName as string) as variant", zoe, property);
  EXPECT_EQ(independent_host::text(first), "Zoë");
  auto id = call<REALstring>("ABRecordVXR", "uniqueId as string", zoe);
  EXPECT_EQ(independent_host::text(id), "1:ABPerson");
  auto constant = call<REALstring>(kBook, "kABFirstNameProperty as string");
  EXPECT_EQ(independent_host::text(constant), "First");

  for (REALstring string : {property, id, constant}) independent_host::release(string);
  for (REALobject object : std::initializer_list<REALobject>{first, all, book}) independent_host::release(object);
  EXPECT_EQ(independent_host::liveObjects(), 1);  // the shared object stays
}

class IndependentHostWith : public testing::TestWithParam<std::vector<std::string>> {};

INSTANTIATE_TEST_SUITE_P(Frameworks, IndependentHostWith,
                         testing::Values(std::vector<std::string>{"Foundation", "Carbon", "AppKit"},
                                         std::vector<std::string>{"Foundation"}, std::vector<std::string>{}));

TEST_P(IndependentHostWith, TooFewGetsNothing) {
  ASSERT_TRUE(independent_host::start(GetParam()));
  EXPECT_EQ(independent_host::classes().size(), 8U);
  EXPECT_EQ(sharedBook(), nullptr);
  EXPECT_EQ(call<REALobject>(kBook, "sharedAddressbookMT as ABAddressBookVXR"), nullptr);
  EXPECT_EQ(call<REALstring>(kBook, "kABFirstNameProperty as string"), nullptr);
  EXPECT_EQ(call<REALstring>(kBook, "kABSocialProfileProperty as string"), nullptr);
  REALstring name = independent_host::string("First");
  EXPECT_EQ(call<REALinteger>("ABPersonVXR", "typeOfProperty(propertyName as string) as integer", name), 0);
  independent_host::release(name);
  EXPECT_EQ(independent_host::liveObjects(), 0);
}
