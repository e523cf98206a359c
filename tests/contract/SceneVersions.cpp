#include "HostModel/EntityManager.h"
#include "tests/contract/Scene.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;

namespace {

Texts labels(const std::vector<ModelVersion *> &versions) {
  Texts all;
  std::transform(versions.begin(), versions.end(), std::back_inserter(all), [](const ModelVersion *version) {
    return version == nullptr ? "(none)" : version->getLabel();
  });
  return all;
}

} // namespace

ModelVersion *Scene::follow(ModelVersion *origin, const std::string &label) const {
  ModelVersion *shown = tree().getCurrentVersion();
  ModelVersion *made = tree().startNewVersion(label, "", "", "", nullptr, origin, false);
  if (made == nullptr) {
    throw std::logic_error("The version " + label + " was not made");
  }
  show(shown);
  return made;
}

ModelVersion *Scene::alternate(ModelVersion *origin, const std::string &label, std::size_t position) const {
  ModelVersion *shown = tree().getCurrentVersion();
  ModelVersion *made = tree().startNewAlternate(origin, nullptr, true, position);
  if (made == nullptr) {
    throw std::logic_error("The alternate " + label + " was not made");
  }
  made->setLabel(label);
  show(shown);
  return made;
}

void Scene::show(ModelVersion *version) const {
  if (tree().getCurrentVersion() != version) {
    tree().setCurrentVersion(version, nullptr, false, nullptr, true);
  }
  if (tree().getCurrentVersion() != version) {
    throw std::logic_error("The version is not shown");
  }
}

void Scene::showAsUser(ModelVersion *version) {
  if (has(Capability::UserCommands)) {
    if (!m_subject->switchByUser(version)) {
      throw std::logic_error("The user's switch was refused");
    }
    return;
  }
  EntityGUI::EntityManager::s_CurrentEntity = root();
  show(version);
}

bool Scene::destroy(std::vector<ModelVersion *> versions) const {
  bool destroyed = false;
  tree().destroyVersions(versions, nullptr, destroyed);
  return destroyed;
}

Texts Scene::alternates(ModelVersion *version) const {
  std::vector<ModelVersion *> versions;
  tree().getAlternates(version, versions);
  versions.erase(std::remove(versions.begin(), versions.end(), version), versions.end());
  return labels(versions);
}

Texts Scene::followers(const ModelVersion *version) {
  std::vector<ModelVersion *> versions(version->beginNext(), version->endNext());
  versions.erase(std::remove(versions.begin(), versions.end(), nullptr), versions.end());
  return labels(versions);
}

std::string Scene::recorded(const ModelVersion *version, EntityModel::Entity *entity,
                            const std::string &path) {
  const EntityModel::ModelDelta *delta = version->getDelta(true);
  const EntityModel::EditOperation *operation =
      delta == nullptr ? nullptr : delta->findEditOperation(entity, AttributePath(path));
  if (operation == nullptr) {
    return "(none)";
  }
  const EntityModel::Attribute *value = operation->getValue();
  return std::to_string(operation->getKind()) + ": " +
         (value == nullptr    ? "(no attribute)"
          : value->hasValue() ? value->getValueAsString()
                              : "(no value)");
}

} // namespace HostContract
