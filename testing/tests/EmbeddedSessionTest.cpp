#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"
#include "testing/FaultyHost.h"
#include "testing/RecordingHost.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace HostTesting {
namespace {

using EmbeddedHost::MemberKind;
using EmbeddedHost::MemberType;
using EmbeddedHost::Project;
using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::ChangeManager;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using Lines = std::vector<std::string>;

std::unique_ptr<Project> makeProject() {
  MemberType speed;
  speed.label = "Speed";
  speed.kind = MemberKind::Real;
  speed.defaultText = "10";
  MemberType fans;
  fans.label = "Fans";
  fans.kind = MemberKind::EntityList;
  fans.targetType = "Fan";
  EmbeddedHost::ModelSchema schema;
  EXPECT_EQ(schema.declareType("Fan", {speed}), "");
  EXPECT_EQ(schema.declareRootMembers({fans}), "");
  std::unique_ptr<Project> project = Project::create(schema);
  project->createEntity("Fan", project->rootEntity(), "Fans", "Left");
  project->createEntity("Fan", project->rootEntity(), "Fans", "Right");
  return project;
}

Entity *fan(std::size_t index) {
  return getLinkedEntities(EntityEditor::getRootEntity(), AttributePath("Fans")).at(index);
}

// What a library may do to whichever host is installed, and a user's edit, with real's entities.
void runSession(Project &project) {
  EmbeddedHost::Commands commands(project);
  commands.announceOpened();
  ChangeManager *versions = EntityManager::getChangeManager();
  ModelVersion *base = versions->getCurrentVersion();
  base->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  Entity *study = EntityEditor::createEntity(EntityModel::OptimizationData_t, EntityEditor::getRootEntity(),
                                             AttributePath(EntityModel::OptimizationDataList_t), nullptr,
                                             true, true, false, "", -1);
  EntityEditor::setValue(study, AttributePath(EntityModel::BaseVersionName_t), "Base", false, nullptr, true,
                         true);
  ModelVersion *copy = versions->startNewVersion("Copy", "", "", "", nullptr, base, false);
  copy->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
  ChangeSet changes;
  ModelVersion *alternate = versions->startNewAlternate(copy, &changes, true, SIZE_MAX);
  alternate->setLabel("Row 1");
  versions->setCurrentVersion(alternate, &changes, false, nullptr, true);
  EntityEditor::setValueNoThrow(fan(1), AttributePath("Speed"), "15", false, nullptr, true);
  versions->setCurrentVersion(base, &changes, false, nullptr, true);
  EntityManager::setNeedsSave(true);
  EXPECT_TRUE(commands.edit(project.attribute(project.rootEntity(), "Fans")->asList()->getEntity(0),
                            AttributePath("Speed"), "20"));
}

// Everything that the session may have changed, seen by the host itself.
Lines stateOf(Project &project) {
  Lines lines;
  for (ModelVersion *version : project.versions()) {
    project.changeManager().setCurrentVersion(version, nullptr, false, nullptr, true);
    EntityModel::ListAttribute *fans = project.attribute(project.rootEntity(), "Fans")->asList();
    lines.push_back(version->getLabel() + " type " +
                    std::to_string(static_cast<int>(version->getVersionType())) + " left " +
                    project.attribute(fans->getEntity(0), "Speed")->getValueAsString() + " right " +
                    project.attribute(fans->getEntity(1), "Speed")->getValueAsString());
  }
  EntityModel::ListAttribute *studies =
      project.attribute(project.rootEntity(), "OptimizationDataList")->asList();
  for (int index = 0; index < studies->getCount(); ++index) {
    lines.push_back("study of " +
                    project.attribute(studies->getEntity(index), "BaseVersionName")->getValueAsString());
  }
  lines.push_back(project.needsSave() ? "needs save" : "saved");
  return lines;
}

Lines expectedState() {
  return {"Base type 3 left 20 right 10", "Copy type 2 left 20 right 10", "Row 1 type 1 left 20 right 15",
          "study of Base", "needs save"};
}

TEST(EmbeddedSessionTest, Unwrapped_EndsInTheExpectedState) {
  const std::unique_ptr<Project> project = makeProject();
  const HostModel::HostInstallation installation(*project);
  runSession(*project);
  EXPECT_EQ(stateOf(*project), expectedState());
}

TEST(EmbeddedSessionTest, Wrapped_EndsInTheSameState) {
  const std::unique_ptr<Project> project = makeProject();
  {
    RecordingHost recording(*project);
    const HostModel::HostInstallation installation(recording);
    recording.recordEverything();
    runSession(*project);
    EXPECT_GT(recording.calls().size(), 13U);
  }
  const HostModel::HostInstallation installation(*project);
  EXPECT_EQ(stateOf(*project), expectedState());
}

TEST(EmbeddedSessionTest, WrappedTwice_EndsInTheSameState) {
  const std::unique_ptr<Project> project = makeProject();
  {
    FaultyHost faulty(*project);
    RecordingHost recording(faulty);
    const HostModel::HostInstallation installation(recording);
    runSession(*project);
  }
  const HostModel::HostInstallation installation(*project);
  EXPECT_EQ(stateOf(*project), expectedState());
}

TEST(EmbeddedSessionTest, Recording_HoldsTheSessionsCallsInOrder) {
  const std::unique_ptr<Project> project = makeProject();
  RecordingHost recording(*project);
  const HostModel::HostInstallation installation(recording);
  runSession(*project);
  EXPECT_EQ(
      recording.texts(),
      Lines({"ObserverManager::broadcastSetCurrentEntity(Model, scrollTo=false)",
             "ModelVersion::setStudyType(\"Base\", 1)",
             "EntityEditor::createEntity(OptimizationData, Model.OptimizationDataList, "
             "library=null, setDefaults=true, notify=true, select=false, \"\", position=-1)",
             "EntityEditor::setValue(OptimizationDataList[0].BaseVersionName, \"Base\", force=false, "
             "affected=null, notify=true, edited=true)",
             "ChangeManager::startNewVersion(\"Copy\", \"\", \"\", \"\", null, origin=\"Base\", "
             "makeReadOnly=false)",
             "ModelVersion::setStudyCaseFlag(\"Copy\", 2, set=true)",
             "ChangeManager::startNewAlternate(\"Copy\", changes, copyContent=true, "
             "position=18446744073709551615)",
             "ModelVersion::setLabel(\"Copy (2)\", \"Row 1\")",
             "ChangeManager::setCurrentVersion(\"Row 1\", changes, force=false, progress=null, load=true)",
             "EntityEditor::setValueNoThrow(Right.Speed, \"15\", force=false, affected=null, notify=true)",
             "ChangeManager::setCurrentVersion(\"Base\", changes, force=false, progress=null, load=true)",
             "EntityManager::setNeedsSave(true)",
             "EntityManager::setValue(Left.Speed, \"20\", notify=true)"}));
}

// What the observers of a session are told of.
class Witness final : public EntityGUI::Observer {
public:
  Witness() : Observer(false, true) { EntityManager::getObserverManager()->addObserver(this); }
  void setCurrentEntity(Entity *entity, bool /*scrollTo*/) override { sawRoot(entity); }
  void changedVersion(ChangeSet & /*changes*/, Entity *entity, const std::string &name,
                      bool /*reload*/) override {
    sawRoot(entity);
    seen.push_back("version " + name);
  }
  void changedEntities(ChangeSet &changes) override {
    const ChangeSet::ModifiedEntity &modified = changes.getModifiedEntities().at(0);
    seen.push_back("edit of " + modified.entity->getName(false));
    EXPECT_EQ(modified.entity, fan(0));
    EXPECT_EQ(modified.attributes.at(0), fan(0)->findAttribute(AttributePath("Speed")));
  }

  Lines seen;

private:
  static void sawRoot(const Entity *entity) { EXPECT_EQ(entity, EntityEditor::getRootEntity()); }
};

TEST(EmbeddedSessionTest, Observers_SeeTheObjectsThatTheFacadesHandOut) {
  const std::unique_ptr<Project> project = makeProject();
  RecordingHost recording(*project);
  const HostModel::HostInstallation installation(recording);
  const Witness witness;
  runSession(*project);
  EXPECT_EQ(witness.seen, Lines({"version Row 1", "version Base", "edit of Left"}));
}

TEST(EmbeddedSessionTest, Muted_ObserversLearnOfNoSwitchByTheHost) {
  const std::unique_ptr<Project> project = makeProject();
  RecordingHost recording(*project);
  const HostModel::HostInstallation installation(recording);
  recording.muteHostBroadcasts(true);
  const Witness witness;
  EntityManager::getChangeManager()->setCurrentVersion(
      EntityManager::getChangeManager()->getRootVersion(true), nullptr, true, nullptr, true);
  EXPECT_EQ(witness.seen, Lines());
}

TEST(EmbeddedSessionTest, CheckSelections_CurrentEntityIsAProxy_KeepsIt) {
  const std::unique_ptr<Project> project = makeProject();
  RecordingHost recording(*project);
  const HostModel::HostInstallation installation(recording);
  Entity *left = fan(0);
  EntityManager::s_CurrentEntity = left;
  EntityManager::checkSelectionsAreValid();
  EXPECT_EQ(EntityManager::s_CurrentEntity, left);
  EXPECT_TRUE(EntityEditor::deleteEntity(left, false, true));
  EntityManager::checkSelectionsAreValid();
  EXPECT_EQ(EntityManager::s_CurrentEntity, nullptr);
}

class EmbeddedFaultTest : public ::testing::Test {
protected:
  std::unique_ptr<Project> m_project = makeProject();
  FaultyHost m_faulty{*m_project};
  HostModel::HostInstallation m_installation{m_faulty};
  ChangeManager *m_versions = EntityManager::getChangeManager();
  ModelVersion *m_base = m_versions->getCurrentVersion();
};

TEST_F(EmbeddedFaultTest, StartNewAlternate_Null_MakesNoVersion) {
  m_faulty.fail("ChangeManager::startNewAlternate", FaultKind::Null);
  EXPECT_EQ(m_versions->startNewAlternate(m_base, nullptr, true, 0), nullptr);
  EXPECT_EQ(m_project->versions().size(), 1U);
}

TEST_F(EmbeddedFaultTest, SetValueNoThrow_Refused_LeavesTheValue) {
  m_faulty.fail("EntityEditor::setValueNoThrow", FaultKind::Refused, 2);
  const AttributePath path("Speed");
  EXPECT_TRUE(EntityEditor::setValueNoThrow(fan(0), path, "11", false, nullptr, true));
  EXPECT_FALSE(EntityEditor::setValueNoThrow(fan(0), path, "12", false, nullptr, true));
  EXPECT_EQ(fan(0)->findAttribute(path)->getValueAsString(), "11");
  EXPECT_EQ(m_faulty.strikes(), 1);
}

TEST_F(EmbeddedFaultTest, SetCurrentVersion_Throws_LeavesTheCurrentVersion) {
  ModelVersion *second = m_versions->startNewVersion("Second", "", "", "", nullptr, m_base, false);
  m_faulty.fail("ChangeManager::setCurrentVersion", FaultKind::Throws, 1);
  std::string message;
  try {
    m_versions->setCurrentVersion(second, nullptr, false, nullptr, true);
  } catch (const std::runtime_error &error) {
    message = error.what();
  }
  EXPECT_EQ(message, "injected fault");
  EXPECT_EQ(m_versions->getCurrentVersion(), m_base);
  EXPECT_TRUE(m_versions->setCurrentVersion(second, nullptr, false, nullptr, true));
  EXPECT_EQ(EntityManager::getCurrentVersion(), "Second");
}

TEST_F(EmbeddedFaultTest, EditOfAUser_RefusedByTheHostsOwnService) {
  EmbeddedHost::Commands commands(*m_project);
  m_faulty.fail("EntityManager::setValue", FaultKind::Refused, 1);
  Entity *left = m_faulty.original(fan(0));
  EXPECT_FALSE(commands.edit(left, AttributePath("Speed"), "20"));
  EXPECT_EQ(fan(0)->findAttribute(AttributePath("Speed"))->getValueAsString(), "10");
  EXPECT_TRUE(commands.edit(left, AttributePath("Speed"), "20"));
  EXPECT_EQ(fan(0)->findAttribute(AttributePath("Speed"))->getValueAsString(), "20");
}

} // namespace
} // namespace HostTesting
