#pragma once

#include "frame/host_types.h"

// The factories of search elements; each is a shared method of two classes. Nil for a property name or value that is
// missing or has no counterpart.

REALobject PersonSearchElementForProperty(REALstring propertyName, REALstring label, REALstring key, REALvariant value,
                                          REALinteger comparison);
REALobject GroupSearchElementForProperty(REALstring propertyName, REALstring label, REALstring key, REALvariant value,
                                         REALinteger comparison);
// Nil children are left out; a nil array gives nil.
REALobject searchElementForConjunction(REALinteger conjunction, REALobjectArray children);
