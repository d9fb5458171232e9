#include "host/built_in_classes.h"

namespace host {

std::vector<REALclassDefinition*> builtInClasses() {
  // A bare window, for members that want one.
  static REALclassDefinition window{.name = "Window"};
  std::vector<REALclassDefinition*> classes{
      &variantDefinition(),    &dateDefinition(), &dictionaryDefinition(),      &memoryBlockDefinition(),
      &folderItemDefinition(), &window,           &runtimeExceptionDefinition()};
  for (REALclassDefinition& definition : runtimeExceptionSubclasses()) classes.push_back(&definition);
  for (REALclassDefinition& definition : arrayDefinitions()) classes.push_back(&definition);
  return classes;
}

}  // namespace host
