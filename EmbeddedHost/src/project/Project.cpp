#include "EmbeddedHost/Project.h"

#include "EmbeddedHost/src/project/FileLock.h"
#include "EmbeddedHost/src/project/ProjectParts.h"

#include <utility>

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::TypeRef;

Project::Project(std::unique_ptr<Parts> parts) : m_parts(std::move(parts)) {}

Project::Parts::Parts(const ModelSchema &schema, const HostBehaviour &behaviour)
    : model(schema), editor(model), manager(model), impact(model) {
  model.tree().switchesNotify = behaviour.switchesNotify;
  model.tree().newVersionsBecomeCurrent = behaviour.newVersionsBecomeCurrent;
}

std::unique_ptr<Project> Project::create(const ModelSchema &schema, const HostBehaviour &behaviour) {
  auto parts = std::make_unique<Parts>(schema, behaviour);
  parts->model.tree().getRootVersion(true);
  return std::unique_ptr<Project>(new Project(std::move(parts)));
}

EntityModel::EntityEditorService *Project::getEntityEditor() {
  return &m_parts->editor;
}
EntityGUI::EntityManagerService *Project::getEntityManager() {
  return &m_parts->manager;
}
EntityModel::StudyTypeNameService *Project::getStudyTypeNames() {
  return &m_parts->studyTypeNames;
}
EntityModel::ModellingImpactService *Project::getModellingImpact() {
  return &m_parts->impact;
}
ProjectData::ProjectStoreService *Project::getProjectStore() {
  return &m_parts->stores;
}
FileSystem::DirectoryService *Project::getDirectories() {
  return &m_parts->stores;
}

bool Project::isHeld(const std::string &file) {
  return FileLock::isHeld(file);
}

const ModelSchema &Project::schema() const {
  return m_parts->model.schema();
}

EntityModel::Entity *Project::rootEntity() const {
  return &m_parts->model.root();
}

EntityModel::ChangeManager &Project::changeManager() const {
  return m_parts->model.tree();
}

EntityModel::ModelVersion *Project::rootVersion() const {
  return m_parts->model.tree().root();
}

EntityModel::ModelVersion *Project::currentVersion() const {
  return m_parts->model.tree().current();
}

std::vector<EntityModel::ModelVersion *> Project::versions() const {
  std::vector<EntityModel::ModelVersion *> all;
  for (const auto &[number, version] : m_parts->model.tree().versions()) {
    all.push_back(version.get());
  }
  return all;
}

EntityModel::Entity *Project::createEntity(const std::string &type, EntityModel::Entity *owner,
                                           const std::string &list, const std::string &name) {
  return m_parts->editor.createEntity(TypeRef::fromLabel(type), owner, AttributePath(list), nullptr, true,
                                      false, false, name, -1);
}

bool Project::renameEntity(EntityModel::Entity *entity, const std::string &name) {
  return m_parts->editor.setValue(entity, AttributePath(), name, false, nullptr, false, true);
}

EntityModel::Attribute *Project::attribute(EntityModel::Entity *entity, const std::string &path) const {
  return entity == nullptr ? nullptr : entity->findAttribute(AttributePath(path));
}

bool Project::setValue(EntityModel::Entity *entity, const std::string &path, const std::string &text) {
  return m_parts->editor.setValue(entity, AttributePath(path), text, false, nullptr, false, true);
}

std::int64_t Project::entityNumber(const EntityModel::Entity &entity) {
  const auto *known = dynamic_cast<const ModelEntity *>(&entity);
  return known == nullptr ? 0 : known->number();
}

bool Project::isReadOnly(const EntityModel::ModelVersion &version) {
  const auto *known = dynamic_cast<const Version *>(&version);
  return known != nullptr && known->marks().isReadOnly;
}

void Project::setModelChecker(EntityGUI::AbstractModelChecker *checker) {
  m_parts->manager.checker = checker;
}

const std::string &Project::file() const {
  return m_parts->filePath;
}

bool Project::isReadOnlyProject() const {
  return m_parts->isReadOnly;
}

bool Project::needsSave() const {
  return m_parts->model.needsSave;
}

} // namespace EmbeddedHost
