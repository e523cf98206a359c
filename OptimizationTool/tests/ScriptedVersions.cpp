#include "OptimizationTool/tests/ScriptedVersions.h"

#include <utility>

namespace StudyTesting {

using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersion;

ScriptedVersion::ScriptedVersion(std::string label, std::vector<std::string> &log)
    : m_label(std::move(label)), m_log(log) {}

ScriptedVersion::~ScriptedVersion() = default;

void ScriptedVersion::setStudyType(EntityModel::ModelVersionStudyType type) {
  m_log.push_back("setStudyType " + m_label + " " + std::to_string(static_cast<int>(type)));
}

void ScriptedVersion::clearStudy() {
  m_log.push_back("clearStudy " + m_label);
}

void ScriptedVersion::removeFromStudy() {
  m_log.push_back("removeFromStudy " + m_label);
}

bool ScriptedVersion::isStudyCase(bool /*throughAlternate*/, bool /*anyRelation*/) const {
  return false;
}

void ScriptedVersion::setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag /*flag*/, bool /*set*/) {
  m_log.push_back("setStudyCaseFlag " + m_label);
}

void ScriptedVersion::setReadOnlyVersion(const std::string &text) {
  m_log.push_back("setReadOnlyVersion " + m_label + " " + text);
}

EntityModel::ModelDelta *ScriptedVersion::getDelta(bool /*includeUnsaved*/) const {
  return nullptr;
}

class ScriptedVersionsHost::Versions final : public EntityModel::ChangeManager {
public:
  explicit Versions(ScriptedVersionsHost &host) : m_host(host) {}

  ModelVersion *getCurrentVersion() const override { return m_host.current; }
  ModelVersion *getRootVersion(bool create) override {
    m_host.log.push_back("getRootVersion " + std::to_string(static_cast<int>(create)));
    return m_host.rootVersion;
  }
  ModelVersion *findVersion(const std::string & /*label*/, Entity * /*entity*/) const override {
    return nullptr;
  }
  void getAlternates(ModelVersion * /*version*/,
                     std::vector<ModelVersion *> & /*alternates*/) const override {}
  bool setCurrentVersion(ModelVersion * /*version*/, ChangeSet * /*changes*/, bool /*force*/,
                         Tools::ToolProgress * /*progress*/, bool /*loadData*/) override {
    return false;
  }
  ModelVersion *startNewVersion(const std::string & /*label*/, const std::string & /*description*/,
                                const std::string & /*author*/, const std::string & /*comment*/,
                                ChangeSet * /*changes*/, ModelVersion * /*origin*/,
                                bool /*makeReadOnly*/) override {
    return nullptr;
  }
  ModelVersion *startNewAlternate(ModelVersion * /*version*/, ChangeSet * /*changes*/, bool /*copyContent*/,
                                  std::size_t /*position*/) override {
    return nullptr;
  }
  std::string getUniqueName(const std::string &label,
                            const std::map<std::string, ModelVersion *> & /*others*/) const override {
    return label;
  }
  void editedVersion(ModelVersion * /*version*/, ChangeSet * /*changes*/, bool & /*edited*/,
                     bool /*notify*/) override {}
  void destroyVersion(ModelVersion *version, ChangeSet * /*changes*/, bool & /*destroyed*/) override {
    m_host.log.push_back("destroyVersion " + version->getLabel());
  }
  void destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet * /*changes*/,
                       bool & /*destroyed*/) override {
    std::string text = "destroyVersions";
    for (const ModelVersion *version : versions) {
      text += " " + version->getLabel();
    }
    m_host.log.push_back(text);
  }
  std::string getVersionFolder(ModelVersion *version, bool create) override {
    m_host.log.push_back("getVersionFolder " + version->getLabel() + " " +
                         std::to_string(static_cast<int>(create)));
    return {};
  }
  bool canBeginPACStudy(ModelVersion * /*version*/) const override { return true; }

private:
  ScriptedVersionsHost &m_host;
};

class ScriptedVersionsHost::Application final : public EntityGUI::EntityManagerService {
public:
  explicit Application(ScriptedVersionsHost &host) : m_versions(host) {}

  EntityModel::ChangeManager *getChangeManager() override { return &m_versions; }
  EntityGUI::AbstractObserverManager *getObserverManager() override { return nullptr; }
  void setNeedsSave(bool /*needsSave*/) override {}
  bool setValue(Entity * /*entity*/, const EntityModel::AttributePath & /*path*/,
                const std::string & /*text*/, bool /*notify*/) override {
    return false;
  }
  void checkSelectionsAreValid() override {}
  EntityGUI::AbstractModelChecker *getModelChecker() override { return nullptr; }

private:
  Versions m_versions;
};

ScriptedVersionsHost::ScriptedVersionsHost() : m_application(std::make_unique<Application>(*this)) {}

ScriptedVersionsHost::~ScriptedVersionsHost() = default;

EntityGUI::EntityManagerService *ScriptedVersionsHost::getEntityManager() {
  return m_application.get();
}

} // namespace StudyTesting
