#pragma once

#include "HostModel/ChangeManager.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ModellingImpact.h"
#include "HostModel/ProjectStore.h"
#include "HostModel/StudyTypeName.h"
#include "HostModel/tests/TinyModel.h"

#include <QString>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace TinyModel {

/// What the objects of one host write down and answer.
struct Script {
  /// One line for each call that a service, the change manager, the checker or a version got.
  std::vector<std::string> log;
  /// The answer of whatever answers a bool.
  bool flag = true;
  Entity root{"Root", EntityModel::TypeRef::fromLabel("Root")};
  /// The answer of createEntity.
  EntityModel::Entity *created = nullptr;
  /// The answers of the change manager.
  EntityModel::ModelVersion *current = nullptr;
  EntityModel::ModelVersion *started = nullptr;
  std::vector<EntityModel::ModelVersion *> alternates;
  /// What an operation with a change set adds to it.
  EntityModel::Entity *changedEntity = nullptr;
  EntityModel::Attribute *changedAttribute = nullptr;
};

class Operation final : public EntityModel::EditOperation {
public:
  int getKind() const override { return kind; }
  const EntityModel::Attribute *getValue() const override { return value; }

  int kind = EntityModel::EditOperation::kValueSet;
  const EntityModel::Attribute *value = nullptr;
};

class Delta final : public EntityModel::ModelDelta {
public:
  const EntityModel::EditOperation *findEditOperation(const EntityModel::Entity *entity,
                                                      const EntityModel::AttributePath &path) const override;

  const EntityModel::Entity *entity = nullptr;
  EntityModel::AttributePath path;
  Operation operation;
};

class ExternalData final : public EntityModel::ModelVersionExternalData {
public:
  const_iterator begin() const override { return deltas.data(); }
  const_iterator end() const override { return deltas.data() + deltas.size(); }

  std::vector<EntityModel::ModelDelta *> deltas;
};

class Version final : public EntityModel::ModelVersion {
public:
  Version(Script &script, std::string versionLabel) : label(std::move(versionLabel)), m_script(script) {}

  std::string getLabel() const override { return label; }
  void setLabel(const std::string &text) override;
  EntityModel::ModelVersionStudyType getStudyType() const override { return studyType; }
  void setStudyType(EntityModel::ModelVersionStudyType type) override;
  VersionType getVersionType() const override { return VersionType::StudyBaseline; }
  EntityModel::ModelVersion *getStudyBaseline() const override { return baseline; }
  bool isStudyBaseline() const override { return m_script.flag; }
  void clearStudy() override;
  void removeFromStudy() override;
  bool isStudyCase(bool throughAlternate, bool anyRelation) const override;
  void setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag flag, bool set) override;
  void setReadOnlyVersion(const std::string &text) override;
  EntityModel::ModelVersion *getPrevious() const override { return previous; }
  const_iterator beginNext() const override { return next.data(); }
  const_iterator endNext() const override { return next.data() + next.size(); }
  EntityModel::ModelDelta *getDelta(bool includeUnsaved) const override;
  EntityModel::ModelVersionExternalData *getExternalData() const override { return externalData; }

  std::string label;
  EntityModel::ModelVersionStudyType studyType = EntityModel::ModelVersionStudyType::None;
  EntityModel::ModelVersion *baseline = nullptr;
  EntityModel::ModelVersion *previous = nullptr;
  std::vector<EntityModel::ModelVersion *> next;
  EntityModel::ModelDelta *delta = nullptr;
  EntityModel::ModelVersionExternalData *externalData = nullptr;

private:
  Script &m_script;
};

class Versions final : public EntityModel::ChangeManager {
public:
  explicit Versions(Script &script) : m_script(script) {}

  EntityModel::ModelVersion *getCurrentVersion() const override { return m_script.current; }
  EntityModel::ModelVersion *getRootVersion(bool create) override;
  EntityModel::ModelVersion *findVersion(const std::string &label,
                                         EntityModel::Entity *entity) const override;
  void getAlternates(EntityModel::ModelVersion *version,
                     std::vector<EntityModel::ModelVersion *> &alternates) const override;
  bool setCurrentVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes, bool force,
                         Tools::ToolProgress *progress, bool loadData) override;
  EntityModel::ModelVersion *startNewVersion(const std::string &label, const std::string &description,
                                             const std::string &author, const std::string &comment,
                                             EntityModel::ChangeSet *changes,
                                             EntityModel::ModelVersion *origin, bool makeReadOnly) override;
  EntityModel::ModelVersion *startNewAlternate(EntityModel::ModelVersion *version,
                                               EntityModel::ChangeSet *changes, bool copyContent,
                                               std::size_t position) override;
  std::string getUniqueName(const std::string &label,
                            const std::map<std::string, EntityModel::ModelVersion *> &others) const override;
  void editedVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes, bool &edited,
                     bool notify) override;
  void destroyVersion(EntityModel::ModelVersion *version, EntityModel::ChangeSet *changes,
                      bool &destroyed) override;
  void destroyVersions(std::vector<EntityModel::ModelVersion *> &versions, EntityModel::ChangeSet *changes,
                       bool &destroyed) override;
  std::string getVersionFolder(EntityModel::ModelVersion *version, bool create) override;
  bool canBeginPACStudy(EntityModel::ModelVersion *version) const override;

private:
  Script &m_script;
};

class Checker final : public EntityGUI::AbstractModelChecker {
public:
  explicit Checker(Script &script) : m_script(script) {}
  void check(EntityModel::ChangeSet &changes) override;

private:
  Script &m_script;
};

/// A host that writes down what it is asked to do and answers from its script. Every argument of a call is in
/// the log, so that a facade which mixes two up is found out.
class Host final : public HostModel::Host {
public:
  Host();
  ~Host() override;

  EntityModel::EntityEditorService *getEntityEditor() override;
  EntityGUI::EntityManagerService *getEntityManager() override;
  EntityModel::StudyTypeNameService *getStudyTypeNames() override;
  EntityModel::ModellingImpactService *getModellingImpact() override;
  ProjectData::ProjectStoreService *getProjectStore() override;
  FileSystem::DirectoryService *getDirectories() override;

  Script script;
  Versions versions{script};
  Checker checker{script};

private:
  struct Services;

  std::unique_ptr<Services> m_services;
};

} // namespace TinyModel
