#include "OptimizationTool/tests/RecordedStudy.h"

#include "EmbeddedHost/ModelSchema.h"
#include "HostModel/Attribute.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"

#include <limits>
#include <stdexcept>

namespace StudyTesting {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::ModelSchema;
using EmbeddedHost::Project;
using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using OptimizationTool::OptimizationData;

namespace {

MemberType real(const std::string &label, const std::string &defaultText, bool isResult) {
  MemberType member;
  member.label = label;
  member.kind = MemberKind::Real;
  member.defaultText = defaultText;
  member.isResult = isResult;
  return member;
}

// A host without services: nobody is told of anything while it is installed.
class SilentHost final : public HostModel::Host {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return nullptr; }
};

void require(const std::string &problem) {
  if (!problem.empty()) {
    throw std::logic_error(problem);
  }
}

std::unique_ptr<Project> makeProject(const EmbeddedHost::HostBehaviour &behaviour) {
  ModelSchema schema;
  require(schema.declareType("Part", {real("Speed", "10", false), real("Angle", "20", false),
                                      real("Power", "100", true), real("Noise", "50", true)}));
  MemberType parts;
  parts.label = "Parts";
  parts.kind = MemberKind::EntityList;
  parts.targetType = "Part";
  require(schema.declareRootMembers({parts}));
  return Project::create(schema, behaviour);
}

} // namespace

RecordedStudy::RecordedStudy(const EmbeddedHost::HostBehaviour &behaviour)
    : m_project(makeProject(behaviour)), m_adjusted(*m_project), m_hooked(m_adjusted), m_faults(m_hooked),
      m_host(m_faults), m_installed(m_host),
      m_fan(m_project->createEntity("Part", m_project->rootEntity(), "Parts", "Fan")),
      m_pump(m_project->createEntity("Part", m_project->rootEntity(), "Parts", "Pump")) {
  EntityManager::s_CurrentEntity = EntityEditor::getRootEntity();
  EntityManager::s_CurrentFilename = "study.opt";
  m_host.setAlias(EntityManager::s_CurrentEntity, "Root");
  m_host.setStateQuery([this]() -> HostTesting::StudyState {
    return {m_data != nullptr && m_data->isEditingVersions(),
            m_data != nullptr && m_data->isSolvingVersions()};
  });
}

RecordedStudy::~RecordedStudy() {
  m_data.reset();
  EntityManager::s_CurrentEntity = nullptr;
  EntityManager::s_CurrentFilename.clear();
}

void RecordedStudy::makeEntity() {
  m_project->rootVersion()->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  m_studyEntity = EntityEditor::createEntity(EntityModel::OptimizationData_t, EntityEditor::getRootEntity(),
                                             AttributePath(EntityModel::OptimizationDataList_t), nullptr,
                                             true, true, false, "", -1);
  m_host.setAlias(m_studyEntity, "Study");
  m_data = std::make_unique<OptimizationData>(m_studyEntity, nullptr);
  m_data->setBaseVersionName("Base");
  m_host.clear();
}

void RecordedStudy::addGroups() {
  m_data->addGroup(true, attribute(fan(), "Speed"));
  m_data->getGroup(true, 0).appendVariable(attribute(pump(), "Speed"));
  m_data->addGroup(true, attribute(fan(), "Angle"));
  m_data->addGroup(false, attribute(fan(), "Power"));
  m_data->addGroup(false, attribute(fan(), "Noise"));
  m_host.clear();
}

void RecordedStudy::begin() {
  makeEntity();
  m_data->initializeVariants(true, nullptr);
  addGroups();
}

std::size_t RecordedStudy::addRow(const std::string &name, const std::string &speed,
                                  const std::string &angle) {
  const std::size_t row = m_data->addVariant({speed, angle}, name, std::numeric_limits<std::uint64_t>::max());
  m_host.clear();
  return row;
}

void RecordedStudy::reopen() {
  m_data.reset();
  m_data = std::make_unique<OptimizationData>(m_studyEntity, nullptr);
  m_host.clear();
}

ModelVersion *RecordedStudy::version(const std::string &label) {
  return m_host.proxy(m_project->changeManager().findVersion(label, nullptr));
}

EntityModel::Attribute *RecordedStudy::attribute(EntityModel::Entity *entity, const std::string &path) {
  return EntityModel::findAttribute(entity, AttributePath(path));
}

std::vector<std::string> RecordedStudy::versionLabels() const {
  std::vector<std::string> labels;
  for (const ModelVersion *version : m_project->versions()) {
    labels.push_back(version->getLabel());
  }
  return labels;
}

std::string RecordedStudy::currentLabel() const {
  const ModelVersion *version = m_project->currentVersion();
  return version == nullptr ? std::string() : version->getLabel();
}

void RecordedStudy::show(const std::string &label) {
  EntityModel::ChangeManager &manager = m_project->changeManager();
  ModelVersion *version = manager.findVersion(label, nullptr);
  if (version == nullptr && !label.empty()) {
    throw std::logic_error("No version " + label);
  }
  SilentHost silent;
  const HostModel::HostInstallation installed(silent);
  manager.setCurrentVersion(version, nullptr, false, nullptr, true);
}

ModelVersion *RecordedStudy::addVersion(const std::string &label, const std::string &origin) {
  EntityModel::ChangeManager &manager = m_project->changeManager();
  const std::string before = currentLabel();
  {
    SilentHost silent;
    const HostModel::HostInstallation installed(silent);
    manager.startNewVersion(label, "", "", "", nullptr, manager.findVersion(origin, nullptr), false);
  }
  show(before);
  return version(label);
}

void RecordedStudy::destroy(const std::string &label) {
  EntityModel::ChangeManager &manager = m_project->changeManager();
  bool isDestroyed = false;
  manager.destroyVersion(manager.findVersion(label, nullptr), nullptr, isDestroyed);
}

std::string RecordedStudy::valueIn(const std::string &label, EntityModel::Entity *entity,
                                   const std::string &path) {
  const std::string before = currentLabel();
  show(label);
  const EntityModel::Attribute *found = m_project->attribute(m_host.original(entity), path);
  std::string text = found == nullptr ? "-" : found->getValueAsString();
  show(before);
  return text;
}

void RecordedStudy::setValueIn(const std::string &label, EntityModel::Entity *entity, const std::string &path,
                               const std::string &text) {
  const std::string before = currentLabel();
  show(label);
  m_project->setValue(m_host.original(entity), path, text);
  show(before);
}

std::vector<std::string> RecordedStudy::cells(std::size_t row) {
  std::vector<std::string> texts;
  for (const bool isInput : {true, false}) {
    const int count = isInput ? m_data->getNumInputs() : m_data->getNumOutputs();
    for (int group = 0; group < count; ++group) {
      const EntityModel::Attribute *cell =
          m_data->getVariantGroup(isInput, row, static_cast<std::size_t>(group));
      texts.push_back(cell == nullptr ? "-" : cell->getValueAsString());
    }
  }
  return texts;
}

VersionListener::VersionListener(Action action) : Observer(false, true), m_action(std::move(action)) {
  EntityGUI::ObserverManager::process().addObserver(this);
}

VersionListener::~VersionListener() {
  EntityGUI::ObserverManager::process().removeObserver(this);
}

void VersionListener::changedVersion(EntityModel::ChangeSet & /*changes*/, EntityModel::Entity * /*entity*/,
                                     const std::string &versionName, bool /*reload*/) {
  m_action(versionName);
}

void ListeningChecker::check(EntityModel::ChangeSet &changes) {
  if (action) {
    action(changes);
  }
}

} // namespace StudyTesting
