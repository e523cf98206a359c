#include "OptimizationTool/tests/AdjustedHost.h"

#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModellingImpact.h"
#include "testing/HostCall.h"

#include <QString>

namespace StudyTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ChangeManager;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelDelta;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;
using ProjectData::StoreLocation;

struct AdjustedDelta::Edit final : EntityModel::EditOperation {
  const Entity *entity = nullptr;
  AttributePath path;
  int kind = 0;
  std::unique_ptr<Attribute> value;

  int getKind() const override { return kind; }
  const Attribute *getValue() const override { return value.get(); }
};

AdjustedDelta::AdjustedDelta() = default;
AdjustedDelta::~AdjustedDelta() = default;

void AdjustedDelta::add(const Entity *entity, const std::string &path, int kind,
                        std::unique_ptr<Attribute> value) {
  auto edit = std::make_unique<Edit>();
  edit->entity = entity;
  edit->path = AttributePath(path);
  edit->kind = kind;
  edit->value = std::move(value);
  m_edits.push_back(std::move(edit));
}

const EntityModel::EditOperation *AdjustedDelta::findEditOperation(const Entity *entity,
                                                                   const AttributePath &path) const {
  for (const std::unique_ptr<Edit> &edit : m_edits) {
    if (edit->entity == entity && edit->path == path) {
      return edit.get();
    }
  }
  return nullptr;
}

namespace {

class AdjustedExternalData final : public EntityModel::ModelVersionExternalData {
public:
  explicit AdjustedExternalData(std::vector<ModelDelta *> deltas) : m_deltas(std::move(deltas)) {}

  const_iterator begin() const override { return m_deltas.data(); }
  const_iterator end() const override { return m_deltas.data() + m_deltas.size(); }

private:
  std::vector<ModelDelta *> m_deltas;
};

// Stands for one version of the host wherever that is handed out.
class AdjustedVersion final : public ModelVersion {
public:
  AdjustedVersion(ModelVersion &version, std::vector<ModelDelta *> deltas)
      : m_version(version), m_externalData(std::move(deltas)) {}

  ModelVersion &original() const { return m_version; }

  std::string getLabel() const override { return m_version.getLabel(); }
  void setLabel(const std::string &label) override { m_version.setLabel(label); }
  ModelVersionStudyType getStudyType() const override { return m_version.getStudyType(); }
  void setStudyType(ModelVersionStudyType type) override { m_version.setStudyType(type); }
  VersionType getVersionType() const override { return m_version.getVersionType(); }
  ModelVersion *getStudyBaseline() const override { return m_version.getStudyBaseline(); }
  bool isStudyBaseline() const override { return m_version.isStudyBaseline(); }
  void clearStudy() override { m_version.clearStudy(); }
  void removeFromStudy() override { m_version.removeFromStudy(); }
  bool isStudyCase(bool throughAlternate, bool anyRelation) const override {
    return m_version.isStudyCase(throughAlternate, anyRelation);
  }
  void setStudyCaseFlag(ModelVersionStudyCaseFlag flag, bool set) override {
    m_version.setStudyCaseFlag(flag, set);
  }
  void setReadOnlyVersion(const std::string &text) override { m_version.setReadOnlyVersion(text); }
  ModelVersion *getPrevious() const override { return m_version.getPrevious(); }
  const_iterator beginNext() const override { return m_version.beginNext(); }
  const_iterator endNext() const override { return m_version.endNext(); }
  ModelDelta *getDelta(bool includeUnsaved) const override { return m_version.getDelta(includeUnsaved); }
  EntityModel::ModelVersionExternalData *getExternalData() const override {
    return const_cast<AdjustedExternalData *>(&m_externalData);
  }

private:
  ModelVersion &m_version;
  AdjustedExternalData m_externalData;
};

class AdjustedChangeManager final : public ChangeManager {
public:
  explicit AdjustedChangeManager(AdjustedHost &host) : m_host(host) {}

  void setOriginal(ChangeManager *original) { m_original = original; }
  void adjust(ModelVersion &version, std::vector<ModelDelta *> deltas) {
    m_adjusted[&version] = std::make_unique<AdjustedVersion>(version, std::move(deltas));
  }

  ModelVersion *getCurrentVersion() const override { return shown(m_original->getCurrentVersion()); }
  ModelVersion *getRootVersion(bool create) override { return shown(m_original->getRootVersion(create)); }
  ModelVersion *findVersion(const std::string &label, Entity *entity) const override {
    return shown(m_original->findVersion(label, entity));
  }
  void getAlternates(ModelVersion *version, std::vector<ModelVersion *> &alternates) const override {
    m_original->getAlternates(original(version), alternates);
    for (ModelVersion *&alternate : alternates) {
      alternate = shown(alternate);
    }
  }
  bool setCurrentVersion(ModelVersion *version, ChangeSet *changes, bool force, Tools::ToolProgress *progress,
                         bool loadData) override {
    return m_original->setCurrentVersion(original(version), changes, force, progress, loadData);
  }
  ModelVersion *startNewVersion(const std::string &label, const std::string &description,
                                const std::string &author, const std::string &comment, ChangeSet *changes,
                                ModelVersion *origin, bool makeReadOnly) override {
    return m_original->startNewVersion(label, description, author, comment, changes, original(origin),
                                       makeReadOnly);
  }
  ModelVersion *startNewAlternate(ModelVersion *version, ChangeSet *changes, bool copyContent,
                                  std::size_t position) override {
    return m_original->startNewAlternate(original(version), changes, copyContent, position);
  }
  std::string getUniqueName(const std::string &label,
                            const std::map<std::string, ModelVersion *> &others) const override {
    const auto chosen = m_host.uniqueNames.find(label);
    if (chosen != m_host.uniqueNames.end()) {
      return chosen->second;
    }
    return m_host.givesNoUniqueNames ? std::string() : m_original->getUniqueName(label, others);
  }
  void editedVersion(ModelVersion *version, ChangeSet *changes, bool &edited, bool notify) override {
    m_original->editedVersion(original(version), changes, edited, notify);
  }
  void destroyVersion(ModelVersion *version, ChangeSet *changes, bool &destroyed) override {
    m_original->destroyVersion(original(version), changes, destroyed);
  }
  void destroyVersions(std::vector<ModelVersion *> &versions, ChangeSet *changes, bool &destroyed) override {
    m_original->destroyVersions(versions, changes, destroyed);
  }
  std::string getVersionFolder(ModelVersion *version, bool /*create*/) override {
    if (!m_host.folderAnswers.empty()) {
      std::string answer = m_host.folderAnswers.front();
      m_host.folderAnswers.erase(m_host.folderAnswers.begin());
      return answer;
    }
    return version == nullptr ? std::string() : "folders/" + version->getLabel();
  }
  bool canBeginPACStudy(ModelVersion *version) const override {
    return m_original->canBeginPACStudy(original(version));
  }

private:
  ModelVersion *shown(ModelVersion *version) const {
    const auto found = m_adjusted.find(version);
    return found == m_adjusted.end() ? version : found->second.get();
  }
  static ModelVersion *original(ModelVersion *version) {
    const auto *adjusted = dynamic_cast<AdjustedVersion *>(version);
    return adjusted == nullptr ? version : &adjusted->original();
  }

  AdjustedHost &m_host;
  ChangeManager *m_original = nullptr;
  std::map<ModelVersion *, std::unique_ptr<AdjustedVersion>> m_adjusted;
};

class AdjustedEntityManager final : public EntityGUI::EntityManagerService {
public:
  explicit AdjustedEntityManager(AdjustedChangeManager &changeManager) : m_changeManager(changeManager) {}

  void setOriginal(EntityGUI::EntityManagerService *original) { m_original = original; }

  ChangeManager *getChangeManager() override {
    m_changeManager.setOriginal(m_original->getChangeManager());
    return &m_changeManager;
  }
  EntityGUI::AbstractObserverManager *getObserverManager() override {
    return m_original->getObserverManager();
  }
  void setNeedsSave(bool needsSave) override { m_original->setNeedsSave(needsSave); }
  bool setValue(Entity *entity, const AttributePath &path, const std::string &text, bool notify) override {
    return m_original->setValue(entity, path, text, notify);
  }
  void checkSelectionsAreValid() override { m_original->checkSelectionsAreValid(); }
  EntityGUI::AbstractModelChecker *getModelChecker() override { return m_original->getModelChecker(); }

private:
  AdjustedChangeManager &m_changeManager;
  EntityGUI::EntityManagerService *m_original = nullptr;
};

class AdjustedStudyTypeNames final : public EntityModel::StudyTypeNameService {
public:
  QString getStudyTypeName(ModelVersionStudyType type) override {
    return QString::fromLatin1(type == ModelVersionStudyType::Parametric ? "Steady" : "Plain");
  }
};

class AdjustedStores final : public ProjectData::ProjectStoreService {
public:
  explicit AdjustedStores(AdjustedHost &host) : m_host(host) {}

  std::string getStoreDirectoryName(const StoreLocation &store) override {
    return store.versionFolder + "/store";
  }
  bool remove(const StoreLocation & /*store*/) override { return m_host.storesSucceed; }
  bool copyResults(const StoreLocation & /*source*/, const StoreLocation & /*target*/, bool /*move*/,
                   Tools::ToolProgress * /*progress*/, bool /*overwrite*/) override {
    return m_host.storesSucceed;
  }

private:
  AdjustedHost &m_host;
};

class AdjustedDirectories final : public FileSystem::DirectoryService {
public:
  bool rename(const std::string & /*from*/, const std::string & /*to*/) override { return true; }
};

} // namespace

struct AdjustedHost::Parts {
  explicit Parts(AdjustedHost &host) : changeManager(host), entityManager(changeManager), stores(host) {}

  AdjustedChangeManager changeManager;
  AdjustedEntityManager entityManager;
  AdjustedStudyTypeNames studyTypeNames;
  AdjustedStores stores;
  AdjustedDirectories directories;
};

AdjustedHost::AdjustedHost(HostModel::Host &host) : m_host(host), m_parts(std::make_unique<Parts>(*this)) {}

AdjustedHost::~AdjustedHost() = default;

EntityModel::EntityEditorService *AdjustedHost::getEntityEditor() {
  return m_host.getEntityEditor();
}

EntityGUI::EntityManagerService *AdjustedHost::getEntityManager() {
  m_parts->entityManager.setOriginal(m_host.getEntityManager());
  return &m_parts->entityManager;
}

EntityModel::StudyTypeNameService *AdjustedHost::getStudyTypeNames() {
  return &m_parts->studyTypeNames;
}

EntityModel::ModellingImpactService *AdjustedHost::getModellingImpact() {
  return m_host.getModellingImpact();
}

ProjectData::ProjectStoreService *AdjustedHost::getProjectStore() {
  return &m_parts->stores;
}

FileSystem::DirectoryService *AdjustedHost::getDirectories() {
  return &m_parts->directories;
}

void AdjustedHost::setExternalData(ModelVersion *version, std::vector<ModelDelta *> deltas) {
  m_parts->changeManager.adjust(*version, std::move(deltas));
}

HookedHost::HookedHost(HostModel::Host &host) : WrappedHost(host) {}

HookedHost::~HookedHost() = default;

void HookedHost::runBefore(int number, std::function<void()> action) {
  m_count = 0;
  m_number = number;
  m_operation.clear();
  m_action = std::move(action);
}

void HookedHost::runBefore(const std::string &operation, std::function<void()> action) {
  m_count = 0;
  m_number = 0;
  m_operation = operation;
  m_action = std::move(action);
}

HostTesting::Verdict HookedHost::intercept(const HostTesting::HostCall &call) {
  if (call.operation.effect == HostTesting::OperationEffect::Change && !call.isDetached && !call.isByHost) {
    ++m_count;
    if (m_action && (m_count == m_number || m_operation == call.operation.name)) {
      // Once only: what the action does are calls too.
      const std::function<void()> action = std::exchange(m_action, nullptr);
      action();
    }
  }
  return HostTesting::Verdict::Proceed;
}

} // namespace StudyTesting
