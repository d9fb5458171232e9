#pragma once

#include "tests/sweeps/member_calls.h"

#include <string>
#include <vector>

// One thing that goes wrong once, the nth time that it could.
struct Failure {
  const char* name;
  void (*arm)(int nth);
  // Calls it off; whether it came about.
  bool (*disarm)();
};

extern const Failure kNewInstanceFails;
extern const Failure kMemoryBlockFails;
extern const Failure kSendRaises;  // an NSException
extern const Failure kSendThrows;  // what is no NSException

// How a call ended, in words that don't hold on to anything.
struct Outcome {
  std::string result = {};                 // as the bridge's tests write values
  std::vector<std::string> elements = {};  // of an array
  std::string pending = {};                // the host exception
  std::string thrown = {};                 // what passed through
  bool hasFailed = false;                  // the failure came about
};

// The calls of all classes that plug-ins registered, in that order.
std::vector<MemberCall> callsOfAll();
// Their outcomes. Adds a test failure for host and framework objects and entries of the registry that are left over.
std::vector<Outcome> outcomesOfAll();

// Each outcome on a host or a framework that lacks something, beside that on one that doesn't. The framework may refuse
// what didn't reach it.
void expectPartOf(const std::vector<Outcome>& poor, const std::vector<Outcome>& rich, bool mayBeRefused = false);

// Makes each call again and again, until the failure doesn't come about any more.
void sweep(const Failure& failure);
