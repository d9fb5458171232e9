#include "platform/foundation/exception.h"
#include "platform/foundation/object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/retained.h"
#include "tests/objc/live_objects.h"

#include <atomic>
#include <thread>
#include <vector>

namespace {

struct AnimalObject : objc::Object {
  int legs() const { return legs_; }
  void setLegs(int legs) { legs_ = legs; }

  int legs_ = 4;
};

int category(NSObject) { return 7; }
int replacement(NSObject) { return 8; }

class DispatchTest : public LiveObjectsTest {
 protected:
  void SetUp() override {
    objc::ClassBuilder::define<AnimalObject>("TestAnimal", "NSObject")
        .method<&AnimalObject::legs>("legs")
        .method<&AnimalObject::setLegs>("setLegs:");
    objc::ClassBuilder::define<AnimalObject>("TestDog", "TestAnimal");
    LiveObjectsTest::SetUp();
    animal = Retained<NSObject>::adopt(alloc<NSObject>("TestAnimal"_class)).autorelease();
    dog = Retained<NSObject>::adopt(alloc<NSObject>("TestDog"_class)).autorelease();
  }

  NSObject animal;
  NSObject dog;
};

template <class Call>
std::string raisedBy(Call call) {
  try {
    call();
  } catch (const NSException& exception) {
    return std::string(exception.name().UTF8String()) + ": " + exception.reason().UTF8String();
  }
  return "nothing was raised";
}

TEST_F(DispatchTest, NilAnswersNothing) {
  EXPECT_EQ(send<double>(nullptr, "anything:"_sel, 1), 0);
  EXPECT_FALSE(send<NSObject>(Class("NoSuchClass"), "alloc"_sel));
  // A category of a class that is missing is dropped.
  objc::ClassBuilder(Class("NoSuchClass")).method<&category>("added");
}

TEST_F(DispatchTest, ClassesKnowTheirKind) {
  EXPECT_TRUE(dog.isKindOfClass("TestAnimal"_class));
  EXPECT_FALSE(animal.isKindOfClass("TestDog"_class));
  EXPECT_FALSE(animal.isKindOfClass(nullptr));
  EXPECT_FALSE("NSObject"_class.superclass());
  // A class is an object too: of its metaclass, and at the root of NSObject.
  EXPECT_EQ("TestDog"_class.objectClass(), "TestDog"_class);
  EXPECT_TRUE("TestDog"_class.isKindOfClass("NSObject"_class));
  EXPECT_TRUE("TestDog"_class.respondsToSelector("isEqual:"_sel));
  EXPECT_STREQ("TestDog"_class.description().UTF8String(), "TestDog");
}

TEST_F(DispatchTest, CategoriesReplaceRememberedMethods) {
  objc::ClassBuilder("TestAnimal"_class).method<&category>("added");
  EXPECT_EQ(send<int>(dog, "added"_sel), 7);
  objc::ClassBuilder("TestAnimal"_class).method<&replacement>("added");
  EXPECT_EQ(send<int>(dog, "added"_sel), 8);
}

TEST_F(DispatchTest, UnknownSelectorsRaise) {
  EXPECT_TRUE(
      raisedBy([&] {
        send<void>(dog, "fly:to:"_sel, 1, 2);
      }).starts_with("NSInvalidArgumentException: -[TestDog fly:to:]: unrecognized selector sent to instance 0x"));
  EXPECT_TRUE(raisedBy([] {
                send<void>("TestDog"_class, "legs"_sel);
              }).starts_with("NSInvalidArgumentException: +[TestDog legs]: unrecognized selector sent to class"));
}

// Readers walk caches that writers grow and replace.
TEST_F(DispatchTest, SendsFromManyThreadsFindTheirMethods) {
  constexpr int kSelectors = 200;
  std::vector<objc::Selector> selectors;
  for (int i = 0; i < kSelectors; ++i) {
    const std::string name = "generated" + std::to_string(i);
    selectors.push_back(sel_registerName(name.c_str()));
    objc::ClassBuilder("TestAnimal"_class).method<&category>(name.c_str());
  }
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 20 * kSelectors; ++i) {
        const auto at = static_cast<std::size_t>((i * (t + 1)) % kSelectors);
        if (sendSelector<int>(dog, selectors[at]) != 7) ++wrong;
      }
    });
  }
  for (int i = 0; i < 50; ++i) objc::ClassBuilder("TestDog"_class).method<&replacement>("other");
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

#if !defined(NDEBUG)
TEST_F(DispatchTest, ADifferentSignatureAborts) {
  EXPECT_DEATH(send<long long>(dog, "legs"_sel), "TestDog: legs: sent as q@:, method is i@:");
  EXPECT_DEATH(send<void>(dog, "setLegs:"_sel, 3.0), "sent as v@:d, method is v@:i");
}
#endif

TEST(ClassTest, NamesAreTakenOnceAndSuperclassesMustExist) {
  EXPECT_TRUE(objc::ClassBuilder::define<AnimalObject>("TestOnce", "NSObject").built());
  EXPECT_FALSE(objc::ClassBuilder::define<AnimalObject>("TestOnce", "NSObject").built());
  EXPECT_FALSE(objc::ClassBuilder::define<AnimalObject>("TestOrphan", "NoSuchClass").built());
  EXPECT_FALSE(Class("TestOrphan"));
}

struct ThrowingObject : objc::Object {
  ThrowingObject() { throw 1; }
};

TEST(ClassTest, AConstructorThatThrowsLeavesNothing) {
  const Class made = objc::ClassBuilder::define<ThrowingObject>("TestThrowing", "NSObject").built();
  EXPECT_THROW(class_createInstance(made.record()), int);
  EXPECT_FALSE(liveObjects().contains("TestThrowing"));
}

}  // namespace
