#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Host.h"
#include "HostModel/ModellingImpact.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/ProjectStore.h"
#include "HostModel/StudyTypeName.h"
#include "HostModel/TypeConstants.h"
#include "HostModel/tests/TinyHost.h"

#include <QString>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModellingImpact;
using EntityModel::ModelVersionStudyType;
using EntityModel::modelVersionStudyTypeToQString;
using EntityModel::TypeRef;
using FileSystem::Directory;
using ProjectData::ProjectStore;
using TinyModel::Kind;

// Every facade operation answers neutrally; run with nothing installed and with a host that offers nothing.
void expectNeutralAnswers() {
  TinyModel::Entity fan("Fan", TypeRef::fromLabel("Fan"));
  TinyModel::Value &speed = fan.addValue("Speed", Kind::Real, "1");
  const AttributePath path("Speed");
  std::vector<Entity *> entities = {&fan};

  EXPECT_EQ(EntityEditor::getRootEntity(), nullptr);
  EXPECT_EQ(EntityEditor::getChangeManager(), nullptr);
  EXPECT_EQ(EntityEditor::createEntity(EntityModel::OptimizationData_t, &fan, path, nullptr, true, true,
                                       false, "name", -1),
            nullptr);
  EXPECT_FALSE(EntityEditor::addEntity(&fan, path, &fan, true, true, true, true, true, -1));
  EXPECT_FALSE(EntityEditor::moveEntity(&fan, &fan, nullptr, true, -1));
  EXPECT_FALSE(EntityEditor::deleteEntity(&fan, true, true));
  EXPECT_FALSE(EntityEditor::deleteEntities(entities, true, true));
  EXPECT_EQ(entities.size(), 1U);
  EXPECT_FALSE(EntityEditor::setValue(&fan, path, "2", true, nullptr, true, true));
  EXPECT_FALSE(EntityEditor::setValueNoThrow(&fan, path, "2", true, nullptr, true));
  EXPECT_FALSE(EntityEditor::setValueNoThrow(&fan, path, true, true));
  EXPECT_EQ(speed.getValueAsString(), "1");

  EXPECT_EQ(EntityManager::getChangeManager(), nullptr);
  EXPECT_EQ(EntityManager::getObserverManager(), nullptr);
  EXPECT_EQ(EntityManager::getCurrentVersion(), "");
  EXPECT_FALSE(EntityManager::setValue(&fan, path, "2", true));
  EXPECT_EQ(EntityManager::getModelChecker(), nullptr);
  EntityManager::setNeedsSave(true);
  EntityManager::checkSelectionsAreValid();

  EXPECT_TRUE(modelVersionStudyTypeToQString(ModelVersionStudyType::Parametric).isEmpty());
  EXPECT_FALSE(ModellingImpact::hasModellingImpact(&speed, "NoCFDImpact", true));
  ProjectStore store("project", "folder");
  ProjectStore target("project", "other");
  EXPECT_EQ(store.getStoreDirectoryName(), "");
  EXPECT_FALSE(store.remove());
  EXPECT_FALSE(store.copyResults(target, false, nullptr, true));
  EXPECT_FALSE(Directory::rename("from", "to"));
}

TEST(FacadeTest, NothingInstalled_EveryOperationIsNeutral) {
  ASSERT_EQ(HostModel::installedHost(), nullptr);
  expectNeutralAnswers();
}

// Offers no service; the last four are null by default.
class EmptyHost final : public HostModel::Host {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return nullptr; }
};

TEST(FacadeTest, HostWithoutServices_EveryOperationIsNeutral) {
  EmptyHost host;
  const HostModel::HostInstallation installation(host);
  expectNeutralAnswers();
}

TEST(FacadeTest, EntityManagerState_WithoutHost_IsWhatWasSet) {
  EXPECT_EQ(EntityManager::getCurrentEntity(), nullptr);
  EXPECT_EQ(EntityManager::s_CurrentFilename, "");
  TinyModel::Entity fan("Fan", TypeRef::fromLabel("Fan"));
  EntityManager::s_CurrentEntity = &fan;
  EXPECT_EQ(EntityManager::getCurrentEntity(), &fan);
  EntityManager::s_CurrentEntity = nullptr;
}

// Every argument differs from its neighbour, so that a facade which swaps two is found out.
class InstalledFacadeTest : public ::testing::TestWithParam<bool> {
protected:
  InstalledFacadeTest() { m_host.script.flag = GetParam(); }

  void expectLog(const std::string &line) {
    EXPECT_EQ(m_host.script.log, std::vector<std::string>({line}));
    m_host.script.log.clear();
  }

  TinyModel::Host m_host;
  HostModel::HostInstallation m_installation{m_host};
  TinyModel::Entity m_fan{"Fan", TypeRef::fromLabel("Fan")};
  TinyModel::Entity m_box{"Box", TypeRef::fromLabel("Box")};
  TinyModel::Link &m_link = m_box.addLink("Part", nullptr);
  const AttributePath m_path{"Thermal.Speed"};
};

INSTANTIATE_TEST_SUITE_P(HostAnswers, InstalledFacadeTest, ::testing::Bool(),
                         ::testing::PrintToStringParamName());

TEST_P(InstalledFacadeTest, Editor_RootAndChangeManager_AreTheHosts) {
  EXPECT_EQ(EntityEditor::getRootEntity(), &m_host.script.root);
  EXPECT_EQ(EntityEditor::getChangeManager(), &m_host.versions);
}

TEST_P(InstalledFacadeTest, CreateEntity_ForwardsArgumentsAndAnswer) {
  m_host.script.created = &m_box;
  EXPECT_EQ(EntityEditor::createEntity(EntityModel::OptimizationGroup_t, &m_fan, m_path, nullptr, true, false,
                                       true, "a name", 5),
            &m_box);
  expectLog("createEntity OptimizationGroup Fan Thermal.Speed null 1 0 1 a name 5");
  EntityEditor::createEntity(EntityModel::OptimizationGroup_t, &m_fan, m_path, nullptr, false, true, false,
                             "", -1);
  expectLog("createEntity OptimizationGroup Fan Thermal.Speed null 0 1 0  -1");
}

TEST_P(InstalledFacadeTest, AddEntity_ForwardsArgumentsAndAnswer) {
  EXPECT_EQ(EntityEditor::addEntity(&m_fan, m_path, &m_box, true, false, true, false, true, 3), GetParam());
  expectLog("addEntity Fan Thermal.Speed Box 1 0 1 0 1 3");
  EntityEditor::addEntity(&m_fan, m_path, &m_box, false, true, false, true, false, -1);
  expectLog("addEntity Fan Thermal.Speed Box 0 1 0 1 0 -1");
}

TEST_P(InstalledFacadeTest, MoveEntity_ForwardsArgumentsAndAnswer) {
  m_link.answers.text = "the link";
  EXPECT_EQ(EntityEditor::moveEntity(&m_fan, &m_box, &m_link, true, -1), GetParam());
  expectLog("moveEntity Fan Box the link 1 -1");
  EntityEditor::moveEntity(&m_fan, &m_box, nullptr, false, 4);
  expectLog("moveEntity Fan Box null 0 4");
}

TEST_P(InstalledFacadeTest, Delete_ForwardsArgumentsAndAnswer) {
  EXPECT_EQ(EntityEditor::deleteEntity(&m_fan, false, true), GetParam());
  expectLog("deleteEntity Fan 0 1");
  EntityEditor::deleteEntity(&m_fan, true, false);
  expectLog("deleteEntity Fan 1 0");
  std::vector<Entity *> entities = {&m_fan, &m_box};
  EXPECT_EQ(EntityEditor::deleteEntities(entities, false, true), GetParam());
  expectLog("deleteEntities entities:2 0 1");
  EntityEditor::deleteEntities(entities, true, false);
  expectLog("deleteEntities entities:2 1 0");
}

TEST_P(InstalledFacadeTest, EditorSetValue_ForwardsArgumentsAndAnswer) {
  std::vector<Entity *> affected;
  EXPECT_EQ(EntityEditor::setValue(&m_fan, m_path, "2.5", false, &affected, true, false), GetParam());
  expectLog("setValue Fan Thermal.Speed 2.5 0 entities:0 1 0");
  EXPECT_EQ(affected, std::vector<Entity *>({&m_fan}));
  EntityEditor::setValue(&m_fan, m_path, "", true, nullptr, false, true);
  expectLog("setValue Fan Thermal.Speed  1 null 0 1");
}

TEST_P(InstalledFacadeTest, EditorSetValueNoThrow_ForwardsArgumentsAndAnswer) {
  EXPECT_EQ(EntityEditor::setValueNoThrow(&m_fan, m_path, "2.5", true, nullptr, false), GetParam());
  expectLog("setValueNoThrow Fan Thermal.Speed 2.5 1 null 0");
  EntityEditor::setValueNoThrow(&m_fan, m_path, "2.5", false, nullptr, true);
  expectLog("setValueNoThrow Fan Thermal.Speed 2.5 0 null 1");
  EXPECT_EQ(EntityEditor::setValueNoThrow(&m_fan, m_path, true, false), GetParam());
  expectLog("setValueNoThrow(bool) Fan Thermal.Speed 1 0");
  EntityEditor::setValueNoThrow(&m_fan, m_path, false, true);
  expectLog("setValueNoThrow(bool) Fan Thermal.Speed 0 1");
}

TEST_P(InstalledFacadeTest, Manager_ForwardsArgumentsAndAnswers) {
  EXPECT_EQ(EntityManager::getChangeManager(), &m_host.versions);
  EXPECT_EQ(EntityManager::getObserverManager(), &EntityGUI::ObserverManager::process());
  EXPECT_EQ(EntityManager::getModelChecker(), &m_host.checker);
  EntityManager::setNeedsSave(true);
  expectLog("setNeedsSave 1");
  EntityManager::setNeedsSave(false);
  expectLog("setNeedsSave 0");
  EXPECT_EQ(EntityManager::setValue(&m_fan, m_path, "7", true), GetParam());
  expectLog("manager setValue Fan Thermal.Speed 7 1");
  EntityManager::checkSelectionsAreValid();
  expectLog("checkSelectionsAreValid");
}

TEST_P(InstalledFacadeTest, ManagerCurrentVersion_IsTheLabelAtThisMoment) {
  EXPECT_EQ(EntityManager::getCurrentVersion(), "");
  TinyModel::Version version(m_host.script, "Base");
  m_host.script.current = &version;
  EXPECT_EQ(EntityManager::getCurrentVersion(), "Base");
  version.label = "Renamed";
  EXPECT_EQ(EntityManager::getCurrentVersion(), "Renamed");
}

TEST_P(InstalledFacadeTest, StudyTypeName_IsTheHosts) {
  EXPECT_EQ(modelVersionStudyTypeToQString(ModelVersionStudyType::Optimality).toStdString(), "Type 3");
}

TEST_P(InstalledFacadeTest, ModellingImpact_ForwardsArgumentsAndAnswer) {
  EXPECT_EQ(ModellingImpact::hasModellingImpact(&m_fan, "NoCFDImpact", true), GetParam());
  expectLog("hasModellingImpact Fan NoCFDImpact 1");
  ModellingImpact::hasModellingImpact(nullptr, "Other", false);
  expectLog("hasModellingImpact null Other 0");
}

TEST_P(InstalledFacadeTest, ProjectStore_ForwardsItsLocation) {
  ProjectStore store("project.file", "folder 1");
  ProjectStore target("other.file", "folder 2");
  EXPECT_EQ(store.getStoreDirectoryName(), "store of project.file in folder 1");
  EXPECT_EQ(store.remove(), GetParam());
  expectLog("remove project.file:folder 1");
  EXPECT_EQ(store.copyResults(target, false, nullptr, true), GetParam());
  expectLog("copyResults project.file:folder 1 other.file:folder 2 0 null 1");
  store.copyResults(target, true, nullptr, false);
  expectLog("copyResults project.file:folder 1 other.file:folder 2 1 null 0");
}

TEST_P(InstalledFacadeTest, Directory_ForwardsFromAndTo) {
  EXPECT_EQ(Directory::rename("old", "new"), GetParam());
  expectLog("rename old new");
}

TEST(HostInstallationTest, Nesting_InnerHostAnswersUntilItsInstallationEnds) {
  TinyModel::Host outer;
  TinyModel::Host inner;
  EXPECT_EQ(HostModel::installedHost(), nullptr);
  {
    const HostModel::HostInstallation outerInstallation(outer);
    EXPECT_EQ(HostModel::installedHost(), &outer);
    {
      const HostModel::HostInstallation innerInstallation(inner);
      EXPECT_EQ(HostModel::installedHost(), &inner);
      EXPECT_EQ(EntityEditor::getRootEntity(), &inner.script.root);
    }
    EXPECT_EQ(HostModel::installedHost(), &outer);
    EXPECT_EQ(EntityEditor::getRootEntity(), &outer.script.root);
  }
  EXPECT_EQ(HostModel::installedHost(), nullptr);
  EXPECT_EQ(EntityEditor::getRootEntity(), nullptr);
}

TEST(HostInstallationTest, SameHostTwice_StaysUntilTheOuterEnds) {
  TinyModel::Host host;
  const HostModel::HostInstallation outerInstallation(host);
  { const HostModel::HostInstallation innerInstallation(host); }
  EXPECT_EQ(HostModel::installedHost(), &host);
}

} // namespace
