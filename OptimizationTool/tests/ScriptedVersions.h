#pragma once

#include "HostModel/ChangeManager.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModelVersion.h"

#include <memory>
#include <string>
#include <vector>

namespace StudyTesting {

/// A version with the relations that a test gives it, which writes down when its marks are changed.
class ScriptedVersion final : public EntityModel::ModelVersion {
public:
  /// \param log  outlives the version
  ScriptedVersion(std::string label, std::vector<std::string> &log);
  ~ScriptedVersion() override;

  std::string getLabel() const override { return m_label; }
  void setLabel(const std::string &label) override { m_label = label; }
  EntityModel::ModelVersionStudyType getStudyType() const override { return {}; }
  void setStudyType(EntityModel::ModelVersionStudyType type) override;
  VersionType getVersionType() const override { return VersionType::Ordinary; }
  EntityModel::ModelVersion *getStudyBaseline() const override { return studyBaseline; }
  bool isStudyBaseline() const override { return isBaseline; }
  void clearStudy() override;
  void removeFromStudy() override;
  bool isStudyCase(bool throughAlternate, bool anyRelation) const override;
  void setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag flag, bool set) override;
  void setReadOnlyVersion(const std::string &text) override;
  EntityModel::ModelVersion *getPrevious() const override { return nullptr; }
  const_iterator beginNext() const override { return next.data(); }
  const_iterator endNext() const override { return next.data() + next.size(); }
  EntityModel::ModelDelta *getDelta(bool includeUnsaved) const override;
  EntityModel::ModelVersionExternalData *getExternalData() const override { return nullptr; }

  EntityModel::ModelVersion *studyBaseline = nullptr;
  bool isBaseline = false;
  /// The versions that follow; null places are kept.
  std::vector<EntityModel::ModelVersion *> next;

private:
  std::string m_label;
  std::vector<std::string> &m_log;
};

/// A host that has versions and nothing else: no model, and nobody to tell of anything.
class ScriptedVersionsHost final : public HostModel::Host {
public:
  ScriptedVersionsHost();
  ~ScriptedVersionsHost() override;

  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override;

  EntityModel::ModelVersion *current = nullptr;
  EntityModel::ModelVersion *rootVersion = nullptr;
  /// What was done to the versions, and which questions of theirs the change manager was asked.
  std::vector<std::string> log;

private:
  class Versions;
  class Application;

  std::unique_ptr<Application> m_application;
};

} // namespace StudyTesting
