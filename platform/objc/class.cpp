#include "platform/objc/class_record.h"
#include "platform/objc/instrumentation.h"

#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

using objc::ClassRecord;

struct ClassTable {
  std::mutex lock;
  std::unordered_map<std::string_view, ClassRecord*> byName;
};

// Never destroyed, and neither are the classes: objects may outlive every static destructor.
ClassTable& classTable() {
  static auto* table = new ClassTable;
  return *table;
}

ClassRecord* makeRecord(const char* name, ClassRecord* metaclass, ClassRecord* superclass) {
  auto* record = new ClassRecord;
  record->isa = metaclass;
  record->references = objc::kImmortal;
  record->name = name;
  record->superclass = superclass;
  return record;
}

}  // namespace

objc::ClassRecord* objc_getClass(const char* name) {
  ClassTable& table = classTable();
  const std::scoped_lock guard(table.lock);
  auto found = table.byName.find(name);
  return found == table.byName.end() ? nullptr : found->second;
}

const char* class_getName(objc::ClassRecord* objectClass) { return objectClass->name.c_str(); }

objc::ClassRecord* class_getSuperclass(objc::ClassRecord* objectClass) { return objectClass->superclass; }

objc::ClassRecord* class_getMetaclass(objc::ClassRecord* objectClass) { return objectClass->isa; }

bool class_isMetaclass(objc::ClassRecord* objectClass) { return objectClass->isMetaclass; }

objc::ClassRecord* objc_registerClass(const objc::ClassDescription* description) {
  ClassRecord* superclass = nullptr;
  if (description->superclass != nullptr) {
    superclass = objc_getClass(description->superclass);
    if (superclass == nullptr) return nullptr;
  }
  ClassTable& table = classTable();
  const std::scoped_lock guard(table.lock);
  if (table.byName.contains(description->name)) return nullptr;

  ClassRecord* metaclass = makeRecord(description->name, nullptr, superclass != nullptr ? superclass->isa : nullptr);
  metaclass->isMetaclass = true;
  ClassRecord* record = makeRecord(description->name, metaclass, superclass);
  // A class object answers its metaclass's methods, then, at the root, what every object answers.
  if (superclass == nullptr) metaclass->superclass = record;
  metaclass->isa = metaclass;
  record->instanceSize = description->instanceSize;
  record->construct = description->construct;
  record->destroy = description->destroy;
  table.byName.emplace(record->name, record);
  return record;
}

objc::Object* class_createInstance(objc::ClassRecord* objectClass) {
  void* memory = std::calloc(1, objectClass->instanceSize);
  if (memory == nullptr) throw std::bad_alloc();
  auto* object = static_cast<objc::Object*>(memory);
  try {
    objectClass->construct(object);
  } catch (...) {
    std::free(memory);
    throw;
  }
  object->isa = objectClass;
  objectClass->liveInstances.fetch_add(1, std::memory_order_relaxed);
  return object;
}

void objc::visitClasses(void (*visitor)(const ClassRecord& objectClass, void* context), void* context) {
  ClassTable& table = classTable();
  const std::scoped_lock guard(table.lock);
  for (const auto& [name, record] : table.byName) visitor(*record, context);
}

void objc_visitLiveInstances(objc::LiveVisitor visitor, void* context) {
  struct Live {
    const char* className;
    long count;
  };
  // Collected first: the visitor may use the runtime.
  std::vector<Live> found;
  objc::visitClasses(
      [](const ClassRecord& objectClass, void* collected) {
        const long count = objectClass.liveInstances.load(std::memory_order_relaxed);
        if (count != 0) static_cast<std::vector<Live>*>(collected)->push_back({objectClass.name.c_str(), count});
      },
      &found);
  for (const Live& live : found) visitor(live.className, live.count, context);
}
