#include "platform/objc/class_record.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>

namespace {

struct SelectorTable {
  std::mutex lock;
  std::unordered_map<std::string_view, std::unique_ptr<objc::SelectorRecord>> records;
};

// Never destroyed: selectors are sent until the last static destructor has run.
SelectorTable& selectorTable() {
  static auto* table = new SelectorTable;
  return *table;
}

}  // namespace

objc::Selector sel_registerName(const char* name) {
  SelectorTable& table = selectorTable();
  const std::scoped_lock guard(table.lock);
  if (auto found = table.records.find(name); found != table.records.end()) return found->second.get();
  auto record = std::make_unique<objc::SelectorRecord>();
  record->name = name;
  record->hash = std::hash<std::string_view>{}(record->name);
  objc::Selector selector = record.get();
  table.records.emplace(record->name, std::move(record));
  return selector;
}

const char* sel_getName(objc::Selector selector) { return selector->name.c_str(); }
