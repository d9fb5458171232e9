#include "host/describe.h"

#include "host/classes.h"

namespace host {

namespace {

std::string textOf(const Declaration& declaration) {
  std::string text = declaration.name;
  if (!declaration.parameters.empty()) {
    std::string separator = "(";
    for (const Parameter& parameter : declaration.parameters) {
      text += separator;
      if (parameter.isByReference) text += "ByRef ";
      if (parameter.isAssigned) text += "Assigns ";
      text += parameter.name + " As " + parameter.type.text();
      separator = ", ";
    }
    text += ")";
  }
  if (declaration.result.kind != TypeKind::none) text += " As " + declaration.result.text();
  return text;
}

std::vector<std::string> linesOf(const std::vector<Method>& methods) {
  std::vector<std::string> lines;
  for (const Method& method : methods) {
    lines.push_back(textOf(method.declaration) + (method.record->setter != nullptr ? " (assignable)" : ""));
  }
  return lines;
}

}  // namespace

ClassDescription describe(std::string_view className) {
  const HostClass& found = requireClass(className);
  ClassDescription description{.name = found.name(),
                               .superName = found.superclass == nullptr ? "" : found.superclass->name(),
                               .constants = {},
                               .sharedMethods = linesOf(found.sharedMethods),
                               .properties = {},
                               .methods = linesOf(found.methods),
                               .events = {}};
  for (const ConstantDeclaration& constant : found.constants) {
    description.constants.push_back(constant.name + " = " + std::to_string(constant.value));
  }
  for (const Property& property : found.properties) {
    description.properties.push_back(std::string(property.record->name) + " As " + property.type.text() +
                                     (property.record->setter == nullptr ? " (read-only)" : ""));
  }
  for (const Event& event : found.events) description.events.push_back(textOf(event.declaration));
  return description;
}

}  // namespace host
