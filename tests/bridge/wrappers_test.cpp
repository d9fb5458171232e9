#include "bridge/wrappers.h"

#include "bridge/instance_registry.h"
#include "frame/host_ref.h"
#include "frame/runtime_support.h"
#include "host/arrays.h"
#include "host/entries.h"
#include "host/objects.h"
#include "platform/contacts/address_book.h"
#include "platform/foundation/error.h"
#include "platform/objc/retained.h"
#include "tests/kit/host.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

const std::vector<Card> kPeopleAndGroup{person("Ada", "Lovelace", "p1"), person("Alan", "Turing", "p2"),
                                        group("Work", "g1")};

ABPerson firstPerson() { return ABAddressBook::sharedAddressBook().people().objectAtIndex(0).as<ABPerson>(); }

ABGroup firstGroup() { return ABAddressBook::sharedAddressBook().groups().objectAtIndex(0).as<ABGroup>(); }

NSError anError() { return NSError::errorWithDomain("Domain"_ns, 7, nullptr); }

std::string className(REALobject object) { return host::Value::share(object).typeName(); }

}  // namespace

TEST(Wrappers, AreOneForEachObjectWhileTheyLive) {
  const Host host{.contacts = kPeopleAndGroup};
  EXPECT_EQ(FindInstance(firstPerson()), nullptr);  // there is no registry yet
  UnregisterInstance(firstPerson());
  CocoaInit();
  for (int i = 0; i < 2; ++i) {
    const auto first = adoptHost(NewABPersonVXR(firstPerson()));
    const auto second = adoptHost(NewABPersonVXR(firstPerson()));
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(FindInstance(firstPerson()), first.get());
    EXPECT_EQ(wrapped<ABPerson>(first.get()), firstPerson());
    EXPECT_EQ(className(first.get()), "ABPersonVXR");
    EXPECT_EQ(host::liveCounts()["ABPersonVXR"], 1);
  }
  EXPECT_EQ(FindInstance(firstPerson()), nullptr);

  HostRef<REALobject> wrapper;
  {
    const host::PluginScope pool;
    wrapper = adoptHost(NewNSErrorVXR(anError()));
  }
  EXPECT_EQ(wrapped<NSError>(wrapper.get()).code(), 7);  // kept alive
}

TEST(Wrappers, GoByTheRecordsClass) {
  const Host host{.contacts = kPeopleAndGroup};
  EXPECT_EQ(className(adoptHost(NewABRecordVXR(firstPerson())).get()), "ABPersonVXR");
  EXPECT_EQ(className(adoptHost(NewABRecordVXR(firstGroup())).get()), "ABGroupVXR");
  EXPECT_EQ(NewABRecordVXR("no record"_ns.as<ABRecord>()), nullptr);
  EXPECT_EQ(NewABRecordVXR(nullptr), nullptr);
  EXPECT_FALSE(IsABPerson(firstGroup()));
  EXPECT_FALSE(IsABGroup(nullptr));

  // Nothing where the host can't make them.
  host::options().without = {"NSErrorVXR"};
  EXPECT_EQ(NewNSErrorVXR(anError()), nullptr);
  EXPECT_EQ(NewABPersonVXR(nullptr), nullptr);
  host::failNewInstance(1);
  EXPECT_EQ(NewABPersonVXR(firstPerson()), nullptr);
  EXPECT_EQ(FindInstance(firstPerson()), nullptr);
}

TEST(Wrappers, OfAnyObjectTakeTheNearestClassThatTheHostHas) {
  const Host host{};
  NSError error = anError();
  const auto first = adoptHost(NewNSObjectVXR(error));
  EXPECT_EQ(className(first.get()), "NSErrorVXR");
  EXPECT_NE(first.get(), adoptHost(NewNSObjectVXR(error)).get());  // neither looked up nor registered
  EXPECT_EQ(FindInstance(error), nullptr);

  EXPECT_EQ(NewNSObjectVXR(NSMutableString::string()), nullptr);  // no class in the chain
  EXPECT_EQ(NewNSObjectVXR(nullptr), nullptr);
  EXPECT_EQ(NewNSObjectVXR(error, Class("NSString")), nullptr);
  EXPECT_EQ(NewNSObjectVXR(error, Class("NoSuchClass")), nullptr);
  EXPECT_EQ(className(adoptHost(NewNSObjectVXR(error, Class("NSObject"))).get()), "NSErrorVXR");

  auto text = Retained<NSMutableAttributedString>::adopt(NSMutableAttributedString::alloc().init());
  EXPECT_EQ(className(adoptHost(NewNSAttributedStringVXR(text.get())).get()), "NSAttributedStringVXR");
}

TEST(WrapperArrays, KeepOrderAndLength) {
  const Host host{.contacts = kPeopleAndGroup};
  CocoaInit();
  const auto known = adoptHost(NewABPersonVXR(firstPerson()));
  const auto records = adoptHost(REALCreateArrayObject(-1));
  FillABRecordArray(records.get(), NSArray::arrayWithObjects({firstGroup(), "neither"_ns, firstPerson()}));
  const auto elements = host::Value::share(records.get()).elements();
  ASSERT_EQ(elements.size(), 3U);
  EXPECT_EQ(elements[0].typeName(), "ABGroupVXR");
  EXPECT_TRUE(elements[1].isNil());
  EXPECT_EQ(elements[2].object(), known.get());

  const auto people = adoptHost(REALCreateArrayObject(-1));
  host::failNewInstance(1);
  FillABPersonArray(people.get(), ABAddressBook::sharedAddressBook().people());
  ASSERT_EQ(host::Value::share(people.get()).size(), 2U);
  EXPECT_EQ(host::Value::share(people.get()).at(0).object(), known.get());
  EXPECT_TRUE(host::Value::share(people.get()).at(1).isNil());

  FillABGroupArray(people.get(), nullptr);
  EXPECT_EQ(host::Value::share(people.get()).size(), 2U);
}
