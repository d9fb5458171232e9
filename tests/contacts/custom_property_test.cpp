#include "platform/foundation/run_loop.h"
#include "tests/contacts/book_test.h"

#include <string>

namespace {

class CustomProperties : public BookTest {
 protected:
  static NSDictionary typesByName(std::initializer_list<std::pair<const char*, NSInteger>> properties) {
    NSMutableDictionary types = NSMutableDictionary::dictionary();
    for (const auto& [name, type] : properties) {
      types.setObject(NSNumber::numberWithLongLong(type), NSString::stringWithUTF8(name));
    }
    return types;
  }

  static NSInteger add(std::initializer_list<std::pair<const char*, NSInteger>> properties) {
    return ABPerson::addPropertiesAndTypes(typesByName(properties));
  }

  static NSInteger remove(std::initializer_list<NSObject> names) {
    return ABPerson::removeProperties(NSArray::arrayWithObjects(names));
  }
};

TEST_F(CustomProperties, AreAddedOnceAndRemovedOnce) {
  EXPECT_EQ(add({{"org.example.shoe", kABRealProperty}, {"org.example.pets", kABMultiStringProperty}}), 2);
  EXPECT_EQ(add({{"org.example.shoe", kABStringProperty}, {"First", kABStringProperty}, {"x y", 1}}), 1);
  EXPECT_EQ(ABPerson::typeOfProperty("org.example.shoe"_ns), kABRealProperty);
  EXPECT_EQ(ABGroup::typeOfProperty("org.example.shoe"_ns), kABErrorInProperty);
  EXPECT_EQ(ABPerson::properties().count(), 39U);
  EXPECT_EQ(shown(ABPerson::properties().objectAtIndex(37)), "org.example.pets");
  EXPECT_EQ(ABGroup::addPropertiesAndTypes(typesByName({{"org.example.shoe", kABDataProperty}})), 1);
  inChild([] {
    const NSObject size = NSNumber::numberWithInt(42);
    const auto person = newPerson();
    EXPECT_TRUE(person->setValue(size, "org.example.shoe"_ns));
    EXPECT_TRUE(
        ABPerson::searchElement("org.example.shoe"_ns, nullptr, nullptr, size, kABEqual).matchesRecord(person.get()));
  });

  EXPECT_EQ(remove({"org.example.shoe"_ns, "org.example.shoe"_ns, "First"_ns, "unknown"_ns}), 1);
  EXPECT_EQ(ABPerson::typeOfProperty("org.example.shoe"_ns), kABErrorInProperty);
  EXPECT_EQ(ABGroup::typeOfProperty("org.example.shoe"_ns), kABDataProperty);
  EXPECT_EQ(ABPerson::typeOfProperty(kABFirstNameProperty), kABStringProperty);
  EXPECT_EQ(remove({"org.example.shoe"_ns}), 0);
}

TEST_F(CustomProperties, OfGroupsMayHaveTheNamesOfAPersons) {
  EXPECT_EQ(ABGroup::addPropertiesAndTypes(typesByName(
                {{"HomePage", kABStringProperty}, {"Email", kABStringProperty}, {"First", kABStringProperty}})),
            3);
  const ABAddressBook book = ABAddressBook::addressBook();
  const auto group = Retained<ABGroup>::adopt(ABGroup::alloc().initWithAddressBook(book));
  EXPECT_FALSE(group->valueForProperty(kABHomePageProperty));
  for (const NSString name : {kABHomePageProperty, kABEmailProperty, kABFirstNameProperty}) {
    EXPECT_TRUE(group->setValue(" text "_ns, name));
  }
  EXPECT_TRUE(book.save());
  for (const NSString name : {kABHomePageProperty, kABEmailProperty, kABFirstNameProperty}) {
    EXPECT_EQ(shown(group->valueForProperty(name)), " text ");
  }
}

TEST_F(CustomProperties, AreRefusedWholeWhenOneCantBe) {
  for (const NSInteger type : {0, 9, 0x100, 0x109, -1, 0x201}) {
    EXPECT_EQ(add({{"good", kABStringProperty}, {"bad", type}}), -1) << type;
  }
  for (const char* name : {"", " blank", "two\r\nlines"}) {
    EXPECT_EQ(add({{"good", kABStringProperty}, {name, kABStringProperty}}), -1) << name;
  }
  const NSDictionary noNumber = NSDictionary::dictionaryWithObject("1"_ns, "name"_ns);
  EXPECT_EQ(ABPerson::addPropertiesAndTypes(noNumber), -1);
  EXPECT_EQ(ABPerson::addPropertiesAndTypes(nullptr), -1);
  EXPECT_EQ(ABPerson::removeProperties(nullptr), -1);
  EXPECT_EQ(remove({NSNumber::numberWithInt(1)}), -1);
  EXPECT_EQ(add({}), 0);
  EXPECT_EQ(ABPerson::properties().count(), 36U);
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(CustomProperties, CantBeAddedWhereNothingCanBeWritten) {
  folder_.write(".addressbook", "not a folder");
  for (const std::string& path : {folder_.path().string(), std::string("/proc/none")}) {
    setenv("ADDRESSBOOK_FOLDER", path.c_str(), 1);
    inChild([] {
      EXPECT_EQ(add({{"shoe", kABRealProperty}}), -1);
      EXPECT_EQ(ABPerson::typeOfProperty("shoe"_ns), kABErrorInProperty);
      EXPECT_EQ(ABPerson::properties().count(), 36U);
    });
  }
}

TEST_F(CustomProperties, KeepValuesOfEveryType) {
  const auto components = Retained<NSDateComponents>::adopt(NSDateComponents::alloc().init());
  components->setMonth(2);
  const NSArray array = NSArray::arrayWithObjects({" a;\n\\,ü"_ns, NSNumber::numberWithDouble(0.1)});
  const std::string data("\0\xFFx", 3);
  const NSObject values[] = {" a;\n\\,ü\t"_ns,
                             NSNumber::numberWithLongLong(-5000000000),
                             NSNumber::numberWithDouble(1.0 / 3),
                             NSDate::dateWithTimeIntervalSinceReferenceDate(0.123456789),
                             array,
                             NSDictionary::dictionaryWithObject(array, "k"_ns),
                             NSData::dataWithBytes(data.data(), data.size()),
                             components.get()};
  auto nameOf = [](NSInteger type) { return NSString::stringWithUTF8("a;\"" + std::to_string(type)); };
  NSMutableDictionary types = NSMutableDictionary::dictionary();
  for (NSInteger type = 1; type <= 8; ++type) {
    for (const NSInteger one : {type, type | kABMultiValueMask}) {
      types.setObject(NSNumber::numberWithLongLong(one), nameOf(one));
    }
  }
  EXPECT_EQ(ABPerson::addPropertiesAndTypes(types), 16);
  inChild([&] {
    const ABAddressBook book = ABAddressBook::addressBook();
    const auto person = newPerson(book);
    for (NSInteger type = 1; type <= 8; ++type) {
      const NSObject value = values[type - 1];
      EXPECT_TRUE(person->setValue(value, nameOf(type)));
      const auto entries = newMultiValue();
      entries->addValue(value, kABHomeLabel);
      entries->setPrimaryIdentifier(entries->addValue(value, "a label"_ns));
      EXPECT_TRUE(person->setValue(entries.get(), nameOf(type | kABMultiValueMask)));
    }
    EXPECT_TRUE(book.save());
  });
  const NSArray people = ABAddressBook::addressBook().people();
  const auto person = people.objectAtIndex(0).as<ABPerson>();
  for (NSInteger type = 1; type <= 8; ++type) {
    const NSObject value = values[type - 1];
    EXPECT_TRUE(send<bool>(value, "isEqual:"_sel, person.valueForProperty(nameOf(type)))) << type;
    EXPECT_EQ(shown(person.valueForProperty(nameOf(type | kABMultiValueMask))),
              "[Home=" + shown(value) + " *a label=" + shown(value) + "]");
  }
}

TEST_F(CustomProperties, ComeAndGoWhileABookIsOpen) {
  folder_.writeCard("a.vcf", "UID:a\nN:a\nX-ABPROPERTY;X-NAME=shoe:42\n");
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  const ABRecord person = book.people().objectAtIndex(0).as<ABRecord>();
  EXPECT_EQ(shown(person, "shoe"), "nil");
  inChild([] { EXPECT_EQ(add({{"shoe", kABRealProperty}}), 1); });
  EXPECT_EQ(shown(person, "shoe"), "42");
  inChild([] { EXPECT_EQ(remove({"shoe"_ns}), 1); });
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, true) == kCFRunLoopRunHandledSource) {
  }
  EXPECT_EQ(shown(person, "shoe"), "nil");
  EXPECT_EQ(ABPerson::properties().count(), 36U);
}

TEST_F(CustomProperties, TakeTheirValuesWithThem) {
  folder_.writeCard("a.vcf", "UID:a\nN:a\nX-ABPROPERTY;X-NAME=shoe:42\nx-abproperty;x-name=hat:9\nX-Z:z\n");
  folder_.writeCard("b.vcf", "UID:b\nN:b\n");
  folder_.writeCard("g.vcf", "UID:g\nFN:g\nKIND:group\nX-ABPROPERTY;X-NAME=shoe:42\n");
  EXPECT_EQ(add({{"shoe", kABRealProperty}, {"hat", kABStringProperty}}), 2);
  const ABAddressBook book = ABAddressBook::sharedAddressBook();
  const auto person = book.recordForUniqueId("a:ABPerson"_ns);
  EXPECT_EQ(shown(person, "shoe"), "42");
  EXPECT_TRUE(person.setValue(NSNumber::numberWithInt(43), "shoe"_ns));
  const std::string untouched = bytesOf(folder_.path() / "b.vcf");

  EXPECT_EQ(remove({"shoe"_ns}), 1);
  EXPECT_EQ(shown(person, "shoe"), "nil");
  EXPECT_EQ(add({{"shoe", kABRealProperty}}), 1);
  EXPECT_EQ(shown(person, "shoe"), "nil");
  EXPECT_EQ(shown(person, "hat"), "9");
  EXPECT_TRUE(book.save());
  const std::string card = bytesOf(folder_.path() / "a.vcf");
  EXPECT_EQ(card.find("shoe"), std::string::npos) << card;
  EXPECT_NE(card.find("x-abproperty;x-name=hat:9\r\n"), std::string::npos) << card;
  EXPECT_NE(card.find("X-Z:z"), std::string::npos) << card;
  EXPECT_EQ(bytesOf(folder_.path() / "b.vcf"), untouched);
  EXPECT_NE(bytesOf(folder_.path() / "g.vcf").find("shoe"), std::string::npos);

  EXPECT_TRUE(person.setValue("x"_ns, kABNoteProperty));
  EXPECT_TRUE(book.save());
  EXPECT_NE(bytesOf(folder_.path() / "a.vcf").find("NOTE:x"), std::string::npos) << "changed after a change of nothing";
}

TEST_F(CustomProperties, LeaveWhatOthersWroteIntoTheirFile) {
  const char kFile[] = ".addressbook/properties";
  std::filesystem::create_directory(folder_.path() / ".addressbook");
  folder_.write(kFile, "person 1 ours\r\nplace 1 later\nperson x y\n\nperson 1\nperson 257 a\\nb\nperson 2 ours\n");
  EXPECT_EQ(ABPerson::properties().count(), 38U);
  EXPECT_EQ(ABPerson::typeOfProperty("a\nb"_ns), kABMultiStringProperty);
  EXPECT_EQ(ABPerson::typeOfProperty("ours"_ns), kABStringProperty);
  EXPECT_EQ(add({{"new", kABDateProperty}}), 1);
  EXPECT_EQ(remove({"ours"_ns}), 1);
  EXPECT_EQ(bytesOf(folder_.path() / kFile), "place 1 later\nperson x y\n\nperson 1\nperson 257 a\\nb\nperson 4 new\n");
}

}  // namespace
