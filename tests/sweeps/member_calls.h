#pragma once

#include "host/classes.h"
#include "host/value.h"
#include "tests/kit/cards.h"

#include <string>
#include <string_view>
#include <vector>

// Every row of the registered tables as calls, with arguments made from its declaration.

// What a call is given. Rich values are dictionaries of every kind of value, and what has such values.
enum class Given { nothing, empty, typical, odd, rich };

struct MemberCall {
  const host::HostClass* owner;
  std::string member;  // as it is declared; "set Left"; "class destructor"
  void* function;
  bool hasSelf = true;
  std::vector<host::Parameter> parameters = {};
  host::Type result = {};
  Given given = Given::typical;
  bool isSelfEmpty = false;

  [[nodiscard]] std::string name() const;
  // Whether the row's own declaration starts so.
  [[nodiscard]] bool is(std::string_view start) const { return member.starts_with(start); }
};

std::vector<MemberCall> callsOf(const host::HostClass& owner);

// The cards that the arguments are found in.
const std::vector<Card>& sweptCards();

// With what a property list can't hold, too.
host::Value dictionaryOfEveryKind();

// The object that a call is made on and its arguments, made anew.
class Scene {
 public:
  explicit Scene(const MemberCall& call);

  // Calls the plug-in's function and nothing else: there has to be a pool, what is thrown passes through, and what was
  // raised stays pending.
  host::Value call();
  // An object that the call got or gave is in the family's registry, if it has to be.
  [[nodiscard]] std::vector<host::Value> objects() const;

 private:
  host::Value book();
  host::Value person();
  host::Value typical(std::string_view className);
  host::Value argument(const host::Parameter& parameter);
  host::Value text(const std::string& parameter);

  const MemberCall& call_;
  host::Value book_;
  host::Value self_;
  std::vector<host::Value> arguments_;
};
