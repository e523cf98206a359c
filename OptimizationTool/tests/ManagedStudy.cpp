#include "OptimizationTool/tests/ManagedStudy.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"

#include <gtest/gtest.h>

#include <limits>

namespace StudyTesting {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using OptimizationTool::OptimizationManager;

namespace {

// A host without services: nobody is told of anything while it is installed.
class SilentHost final : public HostModel::Host {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return nullptr; }
};

int s_numAtWork = 0;
bool s_wasTakenOut = false;

// The base is private to the manager; a cast of this form is the way to it.
EntityGUI::Observer *asObserver(OptimizationManager &manager) {
  return (EntityGUI::Observer *)&manager;
}

} // namespace

// The manager is added here only when it was taken out here: otherwise it must have registered itself.
ManagerAtWork::ManagerAtWork() {
  OptimizationManager &manager = OptimizationManager::instance();
  if (s_wasTakenOut) {
    EntityGUI::ObserverManager::process().addObserver(asObserver(manager));
    s_wasTakenOut = false;
  }
  ++s_numAtWork;
}

ManagerAtWork::~ManagerAtWork() {
  --s_numAtWork;
  if (s_numAtWork == 0) {
    EntityGUI::ObserverManager::process().removeObserver(asObserver(OptimizationManager::instance()));
    s_wasTakenOut = true;
  }
}

ManagedStudy::ManagedStudy(const EmbeddedHost::HostBehaviour &behaviour)
    : StudyFixture(behaviour), m_commands(project()), m_fan(addPart("Fan")), m_pump(addPart("Pump")) {
  recording().setAlias(root(), "Root");
  recording().setStateQuery([] {
    return HostTesting::StudyState{manager().isEditingVersions(), manager().isSolvingVersions()};
  });
  m_commands.announceOpened();
  recording().clear();
}

ManagedStudy::~ManagedStudy() {
  faults().heal();
  // A test's progress object is gone by now.
  manager().attachProgress(nullptr);
  EXPECT_EQ(m_commands.close().problem, "");
  EXPECT_EQ(manager().getData(), nullptr);
}

OptimizationManager &ManagedStudy::manager() {
  return OptimizationManager::instance();
}

void ManagedStudy::begin(EntityModel::ModelVersionStudyType type) {
  manager().beginStudy(type);
  ASSERT_NE(manager().getData(), nullptr);
  recording().setAlias(data().get(), "Study");
  recording().clear();
}

void ManagedStudy::beginWithRows() {
  begin();
  manager().addInputAttribute(attribute(fan(), "Length"));
  manager().addInputAttribute(attribute(fan(), "Ratio"));
  manager().addOutputAttribute(attribute(fan(), "Power"));
  data().addVariant({"110 mm", "1.5"}, "A", std::numeric_limits<std::uint64_t>::max());
  data().addVariant({"120 mm", "2.5"}, "B", std::numeric_limits<std::uint64_t>::max());
  recording().clear();
}

ModelVersion *ManagedStudy::version(const std::string &label) {
  return EntityManager::getChangeManager()->findVersion(label, nullptr);
}

ModelVersion *ManagedStudy::addVersion(const std::string &label, const std::string &origin) {
  EntityModel::ChangeManager &manager = project().changeManager();
  {
    SilentHost silent;
    const HostModel::HostInstallation installed(silent);
    ModelVersion *before = manager.getCurrentVersion();
    manager.startNewVersion(label, "", "", "", nullptr, manager.findVersion(origin, nullptr), false);
    manager.setCurrentVersion(before, nullptr, false, nullptr, true);
  }
  recording().clear();
  return version(label);
}

std::vector<std::string> ManagedStudy::versionLabels() {
  std::vector<std::string> labels;
  for (const ModelVersion *each : project().versions()) {
    labels.push_back(each->getLabel());
  }
  return labels;
}

std::string ManagedStudy::currentLabel() {
  return EntityManager::getCurrentVersion();
}

void ManagedStudy::switchTo(const std::string &label) {
  EXPECT_EQ(m_commands.switchVersion(label).problem, "");
}

void ManagedStudy::showNoVersion() {
  SilentHost silent;
  const HostModel::HostInstallation installed(silent);
  project().changeManager().setCurrentVersion(nullptr, nullptr, false, nullptr, true);
}

void ManagedStudy::edit(Entity *entity, const std::string &path, const std::string &text) {
  EXPECT_EQ(m_commands.edit(recording().original(entity), AttributePath(path), text).problem, "");
}

Entity *ManagedStudy::storeStudy(const std::string &baseVersionName) {
  Entity *study = addEntity("OptimizationData", root(), "OptimizationDataList", "");
  set(study, "BaseVersionName", baseVersionName);
  recording().clear();
  return study;
}

std::vector<Entity *> ManagedStudy::storedStudies() {
  return EntityModel::getLinkedEntities(EntityModel::EntityEditor::getRootEntity(),
                                        AttributePath(EntityModel::OptimizationDataList_t));
}

std::vector<std::string> ManagedStudy::cells(std::size_t row) {
  std::vector<std::string> texts;
  for (const bool isInput : {true, false}) {
    const int count = isInput ? data().getNumInputs() : data().getNumOutputs();
    for (int group = 0; group < count; ++group) {
      const EntityModel::Attribute *cell =
          data().getVariantGroup(isInput, row, static_cast<std::size_t>(group));
      texts.push_back(cell == nullptr ? "(none)" : cell->getValueAsString());
    }
  }
  return texts;
}

std::vector<std::string> ManagedStudy::rowNames() {
  std::vector<std::string> names;
  for (std::size_t row = 0; row < data().getNumVariants(); ++row) {
    names.push_back(data().getVariantName(row));
  }
  return names;
}

VersionChangeLog::VersionChangeLog() : Observer(false, true) {
  EntityGUI::ObserverManager::process().addObserver(this);
}

VersionChangeLog::~VersionChangeLog() {
  EntityGUI::ObserverManager::process().removeObserver(this);
}

void VersionChangeLog::changedVersion(EntityModel::ChangeSet &changes, Entity *entity,
                                      const std::string &versionName, bool reload) {
  const bool isRoot = entity != nullptr && entity == EntityModel::EntityEditor::getRootEntity();
  m_texts.push_back(versionName + (isRoot ? ", root, " : ", another entity, ") +
                    std::to_string(changes.getModifiedEntities().size()) + " changes" +
                    (reload ? ", reload" : ""));
}

} // namespace StudyTesting
