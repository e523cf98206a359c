#include "HostModel/tests/TinyHost.h"

#include "HostModel/ChangeSet.h"
#include "HostModel/ObserverManager.h"

namespace TinyModel {

using EntityModel::AttributePath;
using EntityModel::ChangeSet;
using EntityModel::EntityLink;
using EntityModel::ModelVersion;
using EntityModel::TypeRef;
using BaseEntity = EntityModel::Entity;

namespace {

std::string shown(bool value) {
  return value ? "1" : "0";
}
std::string shown(int value) {
  return std::to_string(value);
}
std::string shown(std::size_t value) {
  return std::to_string(value);
}
std::string shown(const std::string &text) {
  return text;
}
std::string shown(const AttributePath &path) {
  return path.toString('.');
}
std::string shown(const TypeRef &type) {
  return std::string(type.getLabel());
}
std::string shown(const EntityModel::Attribute *attribute) {
  return attribute == nullptr ? "null" : attribute->getValueAsString();
}
std::string shown(const ModelVersion *version) {
  return version == nullptr ? "null" : version->getLabel();
}
std::string shown(const ChangeSet *changes) {
  return changes == nullptr ? "null" : "changes:" + std::to_string(changes->getModifiedEntities().size());
}
std::string shown(const Tools::ToolProgress *progress) {
  return progress == nullptr ? "null" : "progress";
}
std::string shown(const EntityModel::LibraryInterface *library) {
  return library == nullptr ? "null" : "library";
}
std::string shown(const std::vector<BaseEntity *> *entities) {
  return entities == nullptr ? "null" : "entities:" + std::to_string(entities->size());
}
std::string shown(const ProjectData::StoreLocation &store) {
  return store.projectFile + ":" + store.versionFolder;
}

template <class... Arguments>
void write(Script &script, const std::string &operation, const Arguments &...arguments) {
  script.log.push_back((operation + ... + (' ' + shown(arguments))));
}

void addChanges(const Script &script, ChangeSet *changes) {
  if (changes != nullptr) {
    changes->addModifiedAttribute(script.changedEntity, script.changedAttribute);
  }
}

class Editor final : public EntityModel::EntityEditorService {
public:
  Editor(Script &script, Versions &versions) : m_script(script), m_versions(versions) {}

  BaseEntity *getRootEntity() override { return &m_script.root; }
  EntityModel::ChangeManager *getChangeManager() override { return &m_versions; }
  BaseEntity *createEntity(const TypeRef &type, BaseEntity *owner, const AttributePath &listPath,
                           EntityModel::LibraryInterface *library, bool setDefaults, bool notify, bool select,
                           const std::string &name, int position) override {
    write(m_script, "createEntity", type, owner, listPath, library, setDefaults, notify, select, name,
          position);
    return m_script.created;
  }
  bool addEntity(BaseEntity *owner, const AttributePath &listPath, BaseEntity *entity, bool takeOwnership,
                 bool checkType, bool notify, bool markEdited, bool select, int position) override {
    write(m_script, "addEntity", owner, listPath, entity, takeOwnership, checkType, notify, markEdited,
          select, position);
    return m_script.flag;
  }
  bool moveEntity(BaseEntity *entity, BaseEntity *newOwner, EntityLink *link, bool notify,
                  int position) override {
    write(m_script, "moveEntity", entity, newOwner, link, notify, position);
    return m_script.flag;
  }
  bool deleteEntity(BaseEntity *entity, bool force, bool notify) override {
    write(m_script, "deleteEntity", entity, force, notify);
    return m_script.flag;
  }
  bool deleteEntities(std::vector<BaseEntity *> &entities, bool force, bool notify) override {
    write(m_script, "deleteEntities", &entities, force, notify);
    return m_script.flag;
  }
  bool setValue(BaseEntity *entity, const AttributePath &path, const std::string &text, bool force,
                std::vector<BaseEntity *> *affected, bool notify, bool markEdited) override {
    write(m_script, "setValue", entity, path, text, force, affected, notify, markEdited);
    if (affected != nullptr) {
      affected->push_back(entity);
    }
    return m_script.flag;
  }
  bool setValueNoThrow(BaseEntity *entity, const AttributePath &path, const std::string &text, bool force,
                       std::vector<BaseEntity *> *affected, bool notify) override {
    write(m_script, "setValueNoThrow", entity, path, text, force, affected, notify);
    return m_script.flag;
  }
  bool setValueNoThrow(BaseEntity *entity, const AttributePath &path, bool value, bool notify) override {
    write(m_script, "setValueNoThrow(bool)", entity, path, value, notify);
    return m_script.flag;
  }

private:
  Script &m_script;
  Versions &m_versions;
};

class Manager final : public EntityGUI::EntityManagerService {
public:
  Manager(Script &script, Versions &versions, Checker &checker)
      : m_script(script), m_versions(versions), m_checker(checker) {}

  EntityModel::ChangeManager *getChangeManager() override { return &m_versions; }
  EntityGUI::AbstractObserverManager *getObserverManager() override {
    return &EntityGUI::ObserverManager::process();
  }
  void setNeedsSave(bool needsSave) override { write(m_script, "setNeedsSave", needsSave); }
  bool setValue(BaseEntity *entity, const AttributePath &path, const std::string &text,
                bool notify) override {
    write(m_script, "manager setValue", entity, path, text, notify);
    return m_script.flag;
  }
  void checkSelectionsAreValid() override { write(m_script, "checkSelectionsAreValid"); }
  EntityGUI::AbstractModelChecker *getModelChecker() override { return &m_checker; }

private:
  Script &m_script;
  Versions &m_versions;
  Checker &m_checker;
};

class StudyTypeNames final : public EntityModel::StudyTypeNameService {
public:
  QString getStudyTypeName(EntityModel::ModelVersionStudyType type) override {
    return "Type " + QString::number(static_cast<int>(type));
  }
};

class Impact final : public EntityModel::ModellingImpactService {
public:
  explicit Impact(Script &script) : m_script(script) {}
  bool hasModellingImpact(const EntityModel::Attribute *attribute, const std::string &kind,
                          bool includeOwners) override {
    write(m_script, "hasModellingImpact", attribute, kind, includeOwners);
    return m_script.flag;
  }

private:
  Script &m_script;
};

class Stores final : public ProjectData::ProjectStoreService {
public:
  explicit Stores(Script &script) : m_script(script) {}
  std::string getStoreDirectoryName(const ProjectData::StoreLocation &store) override {
    return "store of " + store.projectFile + " in " + store.versionFolder;
  }
  bool remove(const ProjectData::StoreLocation &store) override {
    write(m_script, "remove", store);
    return m_script.flag;
  }
  bool copyResults(const ProjectData::StoreLocation &source, const ProjectData::StoreLocation &target,
                   bool move, Tools::ToolProgress *progress, bool overwrite) override {
    write(m_script, "copyResults", source, target, move, progress, overwrite);
    return m_script.flag;
  }

private:
  Script &m_script;
};

class Directories final : public FileSystem::DirectoryService {
public:
  explicit Directories(Script &script) : m_script(script) {}
  bool rename(const std::string &from, const std::string &to) override {
    write(m_script, "rename", from, to);
    return m_script.flag;
  }

private:
  Script &m_script;
};

} // namespace

const EntityModel::EditOperation *Delta::findEditOperation(const BaseEntity *asked,
                                                           const AttributePath &askedPath) const {
  return asked == entity && askedPath == path ? &operation : nullptr;
}

void Version::setLabel(const std::string &text) {
  write(m_script, "setLabel", label, text);
  label = text;
}
void Version::setStudyType(EntityModel::ModelVersionStudyType type) {
  write(m_script, "setStudyType", label, static_cast<int>(type));
  studyType = type;
}
void Version::clearStudy() {
  write(m_script, "clearStudy", label);
}
void Version::removeFromStudy() {
  write(m_script, "removeFromStudy", label);
}
bool Version::isStudyCase(bool throughAlternate, bool anyRelation) const {
  write(m_script, "isStudyCase", label, throughAlternate, anyRelation);
  return m_script.flag;
}
void Version::setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag flag, bool set) {
  write(m_script, "setStudyCaseFlag", label, static_cast<int>(flag), set);
}
void Version::setReadOnlyVersion(const std::string &text) {
  write(m_script, "setReadOnlyVersion", label, text);
}
EntityModel::ModelDelta *Version::getDelta(bool includeUnsaved) const {
  write(m_script, "getDelta", label, includeUnsaved);
  return delta;
}

ModelVersion *Versions::getRootVersion(bool create) {
  write(m_script, "getRootVersion", create);
  return m_script.current;
}
ModelVersion *Versions::findVersion(const std::string &label, BaseEntity *entity) const {
  write(m_script, "findVersion", label, entity);
  return m_script.current;
}
void Versions::getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const {
  write(m_script, "getAlternates", version);
  alternates.insert(alternates.end(), m_script.alternates.begin(), m_script.alternates.end());
}
bool Versions::setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force,
                                 Tools::ToolProgress *progress, bool loadData) {
  write(m_script, "setCurrentVersion", version, changes, force, progress, loadData);
  addChanges(m_script, changes);
  m_script.current = version;
  // As an application does it: whoever is installed tells the observers.
  if (EntityGUI::AbstractObserverManager *observers = EntityGUI::EntityManager::getObserverManager()) {
    ChangeSet told;
    addChanges(m_script, &told);
    observers->broadcastChangedVersion(told, &m_script.root, version->getLabel(), false, true);
  }
  return m_script.flag;
}
ModelVersion *Versions::startNewVersion(const std::string &label, const std::string &description,
                                        const std::string &author, const std::string &comment,
                                        ChangeSet *changes, ModelVersion *origin, bool makeReadOnly) {
  write(m_script, "startNewVersion", label, description, author, comment, changes, origin, makeReadOnly);
  addChanges(m_script, changes);
  return m_script.started;
}
ModelVersion *Versions::startNewAlternate(ModelVersion *version, ChangeSet *changes, bool copyContent,
                                          std::size_t position) {
  write(m_script, "startNewAlternate", version, changes, copyContent, position);
  addChanges(m_script, changes);
  return m_script.started;
}
std::string Versions::getUniqueName(const std::string &label,
                                    const std::map<std::string, ModelVersion *> &others) const {
  std::string line = label;
  for (const auto &[otherLabel, version] : others) {
    line += ' ' + otherLabel + '=' + shown(version);
  }
  write(m_script, "getUniqueName", line);
  return label + "!";
}
void Versions::editedVersion(ModelVersion *version, ChangeSet *changes, bool &edited, bool notify) {
  write(m_script, "editedVersion", version, changes, notify);
  addChanges(m_script, changes);
  edited = true;
}
void Versions::destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) {
  write(m_script, "destroyVersion", version, changes);
  addChanges(m_script, changes);
  destroyed = true;
}
void Versions::destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes, bool &destroyed) {
  std::string labels;
  for (const ModelVersion *version : versions) {
    labels += shown(version) + ",";
  }
  write(m_script, "destroyVersions", labels, changes);
  addChanges(m_script, changes);
  destroyed = true;
}
std::string Versions::getVersionFolder(ModelVersion *version, bool create) {
  write(m_script, "getVersionFolder", version, create);
  return "folder";
}
bool Versions::canBeginPACStudy(ModelVersion *version) const {
  write(m_script, "canBeginPACStudy", version);
  return m_script.flag;
}

void Checker::check(ChangeSet &changes) {
  write(m_script, "check", &changes);
  addChanges(m_script, &changes);
}

struct Host::Services {
  explicit Services(Host &host)
      : editor(host.script, host.versions), manager(host.script, host.versions, host.checker),
        impact(host.script), stores(host.script), directories(host.script) {}

  Editor editor;
  Manager manager;
  StudyTypeNames studyTypeNames;
  Impact impact;
  Stores stores;
  Directories directories;
};

Host::Host() : m_services(std::make_unique<Services>(*this)) {}

Host::~Host() = default;

EntityModel::EntityEditorService *Host::getEntityEditor() {
  return &m_services->editor;
}
EntityGUI::EntityManagerService *Host::getEntityManager() {
  return &m_services->manager;
}
EntityModel::StudyTypeNameService *Host::getStudyTypeNames() {
  return &m_services->studyTypeNames;
}
EntityModel::ModellingImpactService *Host::getModellingImpact() {
  return &m_services->impact;
}
ProjectData::ProjectStoreService *Host::getProjectStore() {
  return &m_services->stores;
}
FileSystem::DirectoryService *Host::getDirectories() {
  return &m_services->directories;
}

} // namespace TinyModel
