#pragma once

#include "frame/host_types.h"

#include <span>
#include <vector>

// The definitions of the host's own classes, superclasses first.
namespace host {

REALclassDefinition& variantDefinition();
REALclassDefinition& dateDefinition();
REALclassDefinition& dictionaryDefinition();
REALclassDefinition& memoryBlockDefinition();
REALclassDefinition& folderItemDefinition();
REALclassDefinition& runtimeExceptionDefinition();
std::span<REALclassDefinition> runtimeExceptionSubclasses();
// By element type.
std::span<REALclassDefinition> arrayDefinitions();

std::vector<REALclassDefinition*> builtInClasses();

}  // namespace host
