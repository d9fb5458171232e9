#include "platform/foundation/date_components.h"

#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"

#include <string>

namespace foundation {
namespace {

struct DateComponentsObject : objc::Object {
  NSInteger year = NSUndefinedDateComponent;
  NSInteger month = NSUndefinedDateComponent;
  NSInteger day = NSUndefinedDateComponent;

  template <auto Field>
  NSInteger get() const {
    return this->*Field;
  }
  template <auto Field>
  void set(NSInteger value) {
    this->*Field = value;
  }

  bool isEqual(NSObject other) const {
    if (!other || !other.isKindOfClass("NSDateComponents"_class)) return false;
    const auto& components = *static_cast<const DateComponentsObject*>(other.get());
    return year == components.year && month == components.month && day == components.day;
  }

  NSUInteger hash() const {
    return (static_cast<NSUInteger>(year) * 12 + static_cast<NSUInteger>(month)) * 31 + static_cast<NSUInteger>(day);
  }

  NSString description() const {
    const auto text = [](NSInteger field) { return field == NSUndefinedDateComponent ? "?" : std::to_string(field); };
    return makeString(text(year) + '-' + text(month) + '-' + text(day));
  }

  NSObject copy() const {
    auto* copied = objc::createInstance<DateComponentsObject>("NSDateComponents"_class);
    copied->year = year;
    copied->month = month;
    copied->day = day;
    return NSObject(copied);
  }
};

}  // namespace

void registerDateComponents() {
  using Components = DateComponentsObject;
  objc::ClassBuilder::define<Components>("NSDateComponents", "NSObject")
      .method<&Components::get<&Components::year>>("year")
      .method<&Components::get<&Components::month>>("month")
      .method<&Components::get<&Components::day>>("day")
      .method<&Components::set<&Components::year>>("setYear:")
      .method<&Components::set<&Components::month>>("setMonth:")
      .method<&Components::set<&Components::day>>("setDay:")
      .method<&Components::isEqual>("isEqual:")
      .method<&Components::hash>("hash")
      .method<&Components::description>("description")
      .method<&Components::copy>("copy");
}

}  // namespace foundation
