#include "platform/foundation/exception.h"

#include "platform/foundation/array_object.h"
#include "platform/foundation/load.h"
#include "platform/foundation/string_object.h"
#include "platform/objc/class_builder.h"
#include "platform/objc/raise.h"

#include <execinfo.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

const NSString NSInvalidArgumentException = NSString(NSConstantString("NSInvalidArgumentException"));
const NSString NSRangeException = NSString(NSConstantString("NSRangeException"));
const NSString NSInternalInconsistencyException = NSString(NSConstantString("NSInternalInconsistencyException"));

namespace {

constexpr int kMostFrames = 64;

struct ExceptionObject : objc::Object {
  void captureStack() {
    frames.resize(kMostFrames);
    const int count = backtrace(frames.data(), kMostFrames);
    frames.resize(static_cast<std::size_t>(count));
  }

  void raise() {
    captureStack();
    throw NSException(this);
  }

  [[nodiscard]] NSString getName() const { return name.get(); }
  [[nodiscard]] NSString getReason() const { return reason.get(); }
  [[nodiscard]] NSObject getUserInfo() const { return userInfo.get(); }

  [[nodiscard]] NSArray callStackSymbols() const {
    const std::unique_ptr<char*, decltype(&std::free)> texts(
        backtrace_symbols(frames.data(), static_cast<int>(frames.size())), &std::free);
    std::vector<Retained<NSObject>> symbols;
    for (std::size_t i = 0; texts != nullptr && i < frames.size(); ++i) {
      if (const NSString symbol = foundation::makeString(texts.get()[i])) {
        symbols.push_back(Retained<NSObject>::share(symbol));
      }
    }
    return foundation::makeArray(std::move(symbols));
  }

  // An exception's text is its reason.
  [[nodiscard]] NSString describe() const { return reason ? reason.get() : name.get(); }

  Retained<NSString> name;
  Retained<NSString> reason;
  Retained<NSObject> userInfo;
  std::vector<void*> frames;
};

NSException exceptionWithName(Class receiver, NSString name, NSString reason, NSObject userInfo) {
  auto* made = objc::createInstance<ExceptionObject>(receiver);
  auto result = Retained<NSException>::adopt(NSException(made));
  made->name = Retained<NSString>::share(name);
  made->reason = Retained<NSString>::share(reason);
  made->userInfo = Retained<NSObject>::share(userInfo);
  made->captureStack();
  return result.autorelease();
}

}  // namespace

void objc::raiseUnrecognizedSelector(Object* self, Selector selector) {
  const bool isClass = class_isMetaclass(self->isa);
  char address[32];
  std::snprintf(address, sizeof address, "0x%" PRIxPTR, reinterpret_cast<std::uintptr_t>(self));
  NSException::raise(NSInvalidArgumentException, std::string(isClass ? "+[" : "-[") + class_getName(self->isa) + " " +
                                                     sel_getName(selector) + "]: unrecognized selector sent to " +
                                                     (isClass ? "class " : "instance ") + address);
}

void foundation::registerException() {
  objc::ClassBuilder::define<ExceptionObject>("NSException", "NSObject")
      .classMethod<&exceptionWithName>("exceptionWithName:reason:userInfo:")
      .method<&ExceptionObject::raise>("raise")
      .method<&ExceptionObject::getName>("name")
      .method<&ExceptionObject::getReason>("reason")
      .method<&ExceptionObject::getUserInfo>("userInfo")
      .method<&ExceptionObject::callStackSymbols>("callStackSymbols")
      .method<&ExceptionObject::describe>("description");
}
