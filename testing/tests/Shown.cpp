#include "testing/tests/Shown.h"

namespace HostTesting {

using EntityModel::Attribute;
using EntityModel::ChangeSet;
using EntityModel::ModelVersion;

std::string shown(bool value) {
  return value ? "true" : "false";
}
std::string shown(int value) {
  return std::to_string(value);
}
std::string shown(double value) {
  return std::to_string(static_cast<int>(value * 100)) + "/100";
}
std::string shown(const std::string &text) {
  return "'" + text + "'";
}
std::string shown(const void *object) {
  return object == nullptr ? "null" : "object";
}
// Which object of the scene it is the proxy of.
std::string shown(SceneProxies &p, Attribute *attribute) {
  Attribute *original = p.wrapper.original(attribute);
  return original == nullptr               ? "null"
         : original == attribute           ? "no proxy"
         : original->asEntity() != nullptr ? "proxy of " + original->getValueAsString()
                                           : "proxy of " + original->getAttributePath().toString('.');
}
std::string shown(SceneProxies &p, ModelVersion *version) {
  ModelVersion *original = p.wrapper.original(version);
  return original == nullptr ? "null" : original == version ? "no proxy" : "proxy of " + original->getLabel();
}
// What a call left in a change set that it got empty.
std::string shown(SceneProxies &p, const ChangeSet &changes) {
  std::string text;
  for (const ChangeSet::ModifiedEntity &modified : changes.getModifiedEntities()) {
    text += "{" + shown(p, modified.entity);
    for (Attribute *attribute : modified.attributes) {
      text += ", " + shown(p, attribute);
    }
    text += "}";
  }
  return text;
}

} // namespace HostTesting
