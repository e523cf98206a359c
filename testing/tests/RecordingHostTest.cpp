#include "testing/RecordingHost.h"

#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/ProjectStore.h"
#include "HostModel/TypeConstants.h"
#include "testing/RecordingProgress.h"
#include "testing/tests/Scene.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace HostTesting {
namespace {

using EntityGUI::EntityManager;
using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using Lines = std::vector<std::string>;

class RecordingHostTest : public ::testing::Test {
protected:
  // The texts since the last call.
  Lines take() {
    Lines texts = m_recording.texts();
    m_recording.clear();
    return texts;
  }

  Scene m_scene;
  RecordingHost m_recording{m_scene.host};
  HostModel::HostInstallation m_installation{m_recording};
  Entity *m_fan = m_recording.proxy(&m_scene.fan);
  Entity *m_box = m_recording.proxy(&m_scene.box);
  Attribute *m_speed = m_recording.proxy(&m_scene.speed);
  ModelVersion *m_base = m_recording.proxy(&m_scene.base);
  ModelVersion *m_second = m_recording.proxy(&m_scene.second);
  EntityModel::ChangeManager *m_versions = EntityEditor::getChangeManager();
  const AttributePath m_path{"Speed"};
};

TEST_F(RecordingHostTest, Editor_TextsOfItsCalls) {
  EntityEditor::createEntity(EntityModel::OptimizationData_t, m_fan, AttributePath("Parts"), nullptr, true,
                             true, false, "", -1);
  EntityEditor::addEntity(m_fan, AttributePath("Casing"), m_box, false, true, true, true, false, -1);
  EntityEditor::moveEntity(m_box, m_fan, m_recording.proxy(&m_scene.link)->asLink(), true, -1);
  EntityEditor::moveEntity(nullptr, nullptr, nullptr, false, 3);
  EntityEditor::deleteEntity(m_box, false, true);
  std::vector<Entity *> entities = {m_fan, nullptr, m_box};
  EntityEditor::deleteEntities(entities, false, true);
  EntityEditor::setValue(m_fan, m_path, "a \"b\" \\", false, nullptr, true, true);
  EntityEditor::setValue(nullptr, m_path, "", false, &entities, true, true);
  EntityEditor::setValueNoThrow(m_fan, m_path, "1", false, nullptr, true);
  EntityEditor::setValueNoThrow(m_fan, AttributePath(), true, false);
  EXPECT_EQ(take(),
            Lines({"EntityEditor::createEntity(OptimizationData, Fan.Parts, library=null, setDefaults=true, "
                   "notify=true, select=false, \"\", position=-1)",
                   "EntityEditor::addEntity(Fan.Casing, Box, takeOwnership=false, checkType=true, "
                   "notify=true, edited=true, select=false, position=-1)",
                   "EntityEditor::moveEntity(Box, Fan, link=Fan.Casing, notify=true, position=-1)",
                   "EntityEditor::moveEntity(null, null, link=null, notify=false, position=3)",
                   "EntityEditor::deleteEntity(Box, force=false, notify=true)",
                   "EntityEditor::deleteEntities([Fan, null, Box], force=false, notify=true)",
                   "EntityEditor::setValue(Fan.Speed, \"a \\\"b\\\" \\\\\", force=false, affected=null, "
                   "notify=true, edited=true)",
                   "EntityEditor::setValue(null.Speed, \"\", force=false, affected=list, notify=true, "
                   "edited=true)",
                   "EntityEditor::setValueNoThrow(Fan.Speed, \"1\", force=false, affected=null, notify=true)",
                   "EntityEditor::setValueNoThrow(bool)(Fan, true, notify=false)"}));
}

TEST_F(RecordingHostTest, ChangeManager_TextsOfItsCalls) {
  ChangeSet changes;
  bool flag = false;
  RecordingProgress progress;
  m_recording.muteHostBroadcasts(true);
  m_versions->setCurrentVersion(m_second, &changes, false, nullptr, true);
  changes.addModified(m_box);
  m_versions->setCurrentVersion(m_base, &changes, true, &progress, false);
  m_versions->setCurrentVersion(m_second, nullptr, false, nullptr, true);
  m_versions->startNewVersion("Copy", "", "", "", nullptr, m_base, false);
  m_versions->startNewAlternate(m_second, nullptr, true, SIZE_MAX);
  m_versions->startNewAlternate(nullptr, nullptr, true, 0);
  m_versions->getUniqueName("A", {{"B", m_base}, {"C", nullptr}});
  m_versions->editedVersion(m_second, nullptr, flag, true);
  m_versions->destroyVersion(m_second, nullptr, flag);
  std::vector<ModelVersion *> versions = {m_second, m_base};
  m_versions->destroyVersions(versions, nullptr, flag);
  m_versions->findVersion("Copy", nullptr);
  m_versions->getAlternates(m_second, versions);
  m_versions->getRootVersion(true);
  m_versions->getVersionFolder(m_second, false);
  m_versions->canBeginPACStudy(m_second);
  EXPECT_EQ(
      take(),
      Lines({"ChangeManager::setCurrentVersion(\"Second\", changes, force=false, progress=null, load=true)",
             "ChangeManager::setCurrentVersion(\"Base\", changes[Fan.Speed, Box], force=true, "
             "progress=progress, load=false)",
             "ChangeManager::setCurrentVersion(\"Second\", null, force=false, progress=null, load=true)",
             "ChangeManager::startNewVersion(\"Copy\", \"\", \"\", \"\", null, origin=\"Base\", "
             "makeReadOnly=false)",
             "ChangeManager::startNewAlternate(\"Second\", null, copyContent=true, "
             "position=18446744073709551615)",
             "ChangeManager::startNewAlternate(null, null, copyContent=true, position=0)",
             "ChangeManager::getUniqueName(\"A\", {\"B\", \"C\"})",
             "ChangeManager::editedVersion(\"Second\", null, notify=true)",
             "ChangeManager::destroyVersion(\"Second\", null)",
             "ChangeManager::destroyVersions([\"Second\", \"Base\"], null)",
             "ChangeManager::findVersion(\"Copy\", entity=null)", "ChangeManager::getAlternates(\"Second\")",
             "ChangeManager::getRootVersion(create=true)",
             "ChangeManager::getVersionFolder(\"Second\", create=false)",
             "ChangeManager::canBeginPACStudy(\"Second\")"}));
}

TEST_F(RecordingHostTest, Version_TextsOfItsCalls) {
  m_second->setLabel("Third");
  m_second->setStudyType(EntityModel::ModelVersionStudyType::Optimality);
  m_second->clearStudy();
  m_second->removeFromStudy();
  m_second->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
  m_second->setReadOnlyVersion("true");
  EXPECT_EQ(take(), Lines({"ModelVersion::setLabel(\"Second\", \"Third\")",
                           "ModelVersion::setStudyType(\"Third\", 3)", "ModelVersion::clearStudy(\"Third\")",
                           "ModelVersion::removeFromStudy(\"Third\")",
                           "ModelVersion::setStudyCaseFlag(\"Third\", 2, set=true)",
                           "ModelVersion::setReadOnlyVersion(\"Third\", \"true\")"}));
}

TEST_F(RecordingHostTest, ApplicationAndStores_TextsOfTheirCalls) {
  ChangeSet changes;
  changes.addModifiedAttribute(m_fan, m_speed);
  EntityManager::setNeedsSave(true);
  EntityManager::setValue(m_fan, m_path, "3", true);
  EntityManager::checkSelectionsAreValid();
  EntityManager::getModelChecker()->check(changes);
  ProjectData::ProjectStore store("p", "v1");
  ProjectData::ProjectStore target("p", "v2");
  store.getStoreDirectoryName();
  store.remove();
  store.copyResults(target, false, nullptr, true);
  FileSystem::Directory::rename("from", "to");
  m_recording.proxy(&m_scene.parts)->asList()->moveEntity(m_fan, 0);
  EXPECT_EQ(
      take(),
      Lines({"EntityManager::setNeedsSave(true)", "EntityManager::setValue(Fan.Speed, \"3\", notify=true)",
             "EntityManager::checkSelectionsAreValid()", "ModelChecker::check(changes[Fan.Speed])",
             "ProjectStore::getStoreDirectoryName((\"p\", \"v1\"))", "ProjectStore::remove((\"p\", \"v1\"))",
             "ProjectStore::copyResults(from=(\"p\", \"v1\"), to=(\"p\", \"v2\"), move=false, "
             "progress=null, overwrite=true)",
             "Directory::rename(\"from\", \"to\")", "ListAttribute::moveEntity(Fan.Parts, Fan, to=0)"}));
}

TEST_F(RecordingHostTest, Observers_TextsOfTheirCalls) {
  EntityGUI::AbstractObserverManager *manager = EntityManager::getObserverManager();
  EntityGUI::Observer observer(false, true);
  ChangeSet changes;
  manager->addObserver(&observer);
  manager->broadcastChangedVersion(changes, m_fan, "Base", false, true);
  manager->broadcastChangedEntities(changes);
  manager->broadcastUndoneOrRedone(changes);
  manager->broadcastSetCurrentEntity(nullptr, true);
  manager->broadcastSelectEntities({m_fan});
  manager->removeObserver(&observer);
  EXPECT_EQ(take(), Lines({"ObserverManager::addObserver(observer)",
                           "ObserverManager::broadcastChangedVersion(changes, Fan, \"Base\", reload=false, "
                           "toSender=true)",
                           "ObserverManager::broadcastChangedEntities(changes)",
                           "ObserverManager::broadcastUndoneOrRedone(changes)",
                           "ObserverManager::broadcastSetCurrentEntity(null, scrollTo=true)",
                           "ObserverManager::broadcastSelectEntities([Fan])",
                           "ObserverManager::removeObserver(observer)"}));
}

TEST_F(RecordingHostTest, Queries_AreLeftOut) {
  m_second->getLabel();
  m_second->getStudyType();
  m_versions->getCurrentVersion();
  m_speed->getValueAsString();
  EntityEditor::getRootEntity();
  EXPECT_EQ(take(), Lines());
}

TEST_F(RecordingHostTest, ChangesOfACopy_AreLeftOut) {
  const std::unique_ptr<Attribute> copy = m_speed->clone();
  copy->setValueFromString("4");
  copy->setOptionalMinimum(0.1);
  m_speed->setValueFromString("5");
  m_speed->setOptionalMaximum(0.1);
  m_speed->setOptionalMinimum(std::nullopt);
  m_speed->assignValue(*copy);
  EXPECT_EQ(take(), Lines({"Attribute::setValueFromString(Fan.Speed, \"5\")",
                           "Attribute::setOptionalMaximum(Fan.Speed, 0.1)",
                           "Attribute::setOptionalMinimum(Fan.Speed, none)",
                           "Attribute::assignValue(Fan.Speed, copy)"}));
}

TEST_F(RecordingHostTest, RecordEverything_QueriesAndCopiesToo) {
  m_recording.recordEverything();
  const std::unique_ptr<Attribute> copy = m_speed->clone();
  copy->setValueFromString("4");
  m_speed->isReadOnly(false);
  m_second->isStudyCase(true, false);
  m_fan->findAttribute(AttributePath("Speed"));
  m_fan->findAttribute(EntityModel::TypeRef::fromLabel("Speed"), true);
  m_second->getDelta(true)->findEditOperation(m_fan, m_path);
  EXPECT_EQ(take(), Lines({"Attribute::clone(Fan.Speed)", "Attribute::setValueFromString(copy, \"4\")",
                           "Attribute::isReadOnly(Fan.Speed, includeVersion=false)",
                           "ModelVersion::isStudyCase(\"Second\", throughAlternate=true, anyRelation=false)",
                           "CompositeAttribute::findAttribute(Fan, Speed)",
                           "CompositeAttribute::findAttribute(type)(Fan, Speed, searchMembers=true)",
                           "ModelVersion::getDelta(\"Second\", includeUnsaved=true)",
                           "ModelDelta::findEditOperation(Fan.Speed)"}));
}

TEST_F(RecordingHostTest, RecordAndIgnore_OneOperation) {
  m_recording.record("ModelVersion::getLabel");
  m_recording.ignore("ModelVersion::clearStudy");
  m_second->getLabel();
  m_second->clearStudy();
  EXPECT_EQ(take(), Lines({"ModelVersion::getLabel(\"Second\")"}));
  m_recording.ignore("ModelVersion::getLabel");
  m_recording.record("ModelVersion::clearStudy");
  m_second->getLabel();
  m_second->clearStudy();
  EXPECT_EQ(take(), Lines({"ModelVersion::clearStudy(\"Second\")"}));
}

TEST_F(RecordingHostTest, RecordOrIgnore_UnknownOperation_Throws) {
  std::string message;
  try {
    m_recording.record("ModelVersion::x");
  } catch (const std::invalid_argument &error) {
    message = error.what();
  }
  EXPECT_EQ(message, "RecordingHost::record: No such operation: ModelVersion::x");
  try {
    m_recording.ignore("y");
  } catch (const std::invalid_argument &error) {
    message = error.what();
  }
  EXPECT_EQ(message, "RecordingHost::ignore: No such operation: y");
}

TEST_F(RecordingHostTest, UnnamedEntity_IsShownByItsPlace) {
  m_scene.fan.name.clear();
  m_scene.box.name.clear();
  EntityEditor::deleteEntity(m_fan, false, true);
  TinyModel::Entity blade("", EntityModel::TypeRef::fromLabel("Blade"));
  TinyModel::own(m_scene.parts, blade);
  EntityEditor::deleteEntity(&blade, false, true);
  TinyModel::Entity core("", EntityModel::TypeRef::fromLabel("Core"));
  core.ownerLink = &m_scene.link;
  EntityEditor::deleteEntity(&core, false, true);
  TinyModel::Entity loose("", EntityModel::TypeRef::fromLabel("Loose"));
  EntityEditor::deleteEntity(&loose, false, true);
  EXPECT_EQ(take(), Lines({"EntityEditor::deleteEntity(Fans[0], force=false, notify=true)",
                           "EntityEditor::deleteEntity(Fans[0].Parts[2], force=false, notify=true)",
                           "EntityEditor::deleteEntity(Fans[0].Casing, force=false, notify=true)",
                           "EntityEditor::deleteEntity(Loose, force=false, notify=true)"}));
}

TEST_F(RecordingHostTest, Alias_StandsForTheEntity) {
  m_recording.setAlias(m_fan, "Study");
  EntityEditor::setValueNoThrow(m_fan, m_path, "1", false, nullptr, true);
  m_recording.setAlias(&m_scene.fan, "Again");
  EntityEditor::setValueNoThrow(m_fan, m_path, "1", false, nullptr, true);
  EXPECT_EQ(
      take(),
      Lines({"EntityEditor::setValueNoThrow(Study.Speed, \"1\", force=false, affected=null, notify=true)",
             "EntityEditor::setValueNoThrow(Again.Speed, \"1\", force=false, affected=null, "
             "notify=true)"}));
}

TEST_F(RecordingHostTest, State_IsAskedAtEachCall) {
  StudyState state;
  m_recording.setStateQuery([&] { return state; });
  m_second->clearStudy();
  state.isEditing = true;
  m_second->clearStudy();
  state.isSolving = true;
  m_second->clearStudy();
  state.isEditing = false;
  m_second->clearStudy();
  EXPECT_EQ(m_recording.textsWithState(),
            Lines({"-- ModelVersion::clearStudy(\"Second\")", "E- ModelVersion::clearStudy(\"Second\")",
                   "ES ModelVersion::clearStudy(\"Second\")", "-S ModelVersion::clearStudy(\"Second\")"}));
  EXPECT_TRUE(m_recording.calls()[1].state.isEditing);
  EXPECT_FALSE(m_recording.calls()[1].state.isSolving);
}

TEST_F(RecordingHostTest, StateQueryThatCallsTheHost_IsNotRecorded) {
  m_recording.recordEverything();
  m_recording.setStateQuery([this] {
    StudyState state;
    state.isEditing = m_second->getLabel() == "Second";
    return state;
  });
  m_second->clearStudy();
  EXPECT_EQ(m_recording.textsWithState(), Lines({"E- ModelVersion::clearStudy(\"Second\")"}));
}

TEST_F(RecordingHostTest, Registration_DoesNotAskForTheState) {
  int asked = 0;
  m_recording.recordEverything();
  m_recording.setStateQuery([&] {
    ++asked;
    return StudyState();
  });
  EntityGUI::Observer observer(false, true);
  EntityManager::getObserverManager()->addObserver(&observer);
  EntityManager::getObserverManager()->removeObserver(&observer);
  EXPECT_EQ(asked, 0);
}

// Writes into the model when it is told of a version.
class Reacting final : public EntityGUI::Observer {
public:
  explicit Reacting(ModelVersion *version) : Observer(false, true), m_version(version) {
    EntityGUI::ObserverManager::process().addObserver(this);
  }
  void changedVersion(ChangeSet & /*changes*/, Entity * /*entity*/, const std::string & /*name*/,
                      bool /*reload*/) override {
    m_version->clearStudy();
  }

private:
  ModelVersion *m_version;
};

TEST_F(RecordingHostTest, CallsOfTheHostItself_AreMarkedAndLeftOutOfTheTexts) {
  const Reacting reacting(m_second);
  m_versions->setCurrentVersion(m_second, nullptr, false, nullptr, true);
  EntityManager::setNeedsSave(true);
  EXPECT_EQ(
      m_recording.tree(),
      Lines({"ChangeManager::setCurrentVersion(\"Second\", null, force=false, progress=null, load=true)",
             "  ObserverManager::broadcastChangedVersion(changes[Fan.Speed], Root, \"Second\", "
             "reload=false, toSender=true)",
             "    ModelVersion::clearStudy(\"Second\")", "EntityManager::setNeedsSave(true)"}));
  EXPECT_EQ(
      m_recording.texts(),
      Lines({"ChangeManager::setCurrentVersion(\"Second\", null, force=false, progress=null, load=true)",
             "ModelVersion::clearStudy(\"Second\")", "EntityManager::setNeedsSave(true)"}));
  ASSERT_EQ(m_recording.calls().size(), 4U);
  EXPECT_TRUE(m_recording.calls()[1].isByHost);
  EXPECT_EQ(m_recording.calls()[1].operation, "ObserverManager::broadcastChangedVersion");
  EXPECT_EQ(m_recording.calls()[2].depth, 2);
}

TEST_F(RecordingHostTest, Clear_ForgetsTheCalls) {
  m_second->clearStudy();
  m_recording.clear();
  EXPECT_TRUE(m_recording.calls().empty());
  EXPECT_EQ(m_recording.texts(), Lines());
}

TEST_F(RecordingHostTest, NestedRecordings_BothRecordTheSame) {
  RecordingHost outer(static_cast<HostModel::Host &>(m_recording));
  const HostModel::HostInstallation installation(outer);
  m_recording.setAlias(m_fan, "Study");
  EntityEditor::deleteEntity(outer.proxy(&m_scene.fan), false, true);
  EntityManager::getObserverManager()->broadcastSetCurrentEntity(&m_scene.fan, false);
  const Lines expected = {"EntityEditor::deleteEntity(Study, force=false, notify=true)",
                          "ObserverManager::broadcastSetCurrentEntity(Study, scrollTo=false)"};
  EXPECT_EQ(outer.texts(), expected);
  ASSERT_EQ(m_recording.calls().size(), 2U);
  EXPECT_EQ(m_recording.calls()[0].text, expected[0]);
  EXPECT_EQ(m_recording.calls()[1].text, expected[1]);
}

} // namespace
} // namespace HostTesting
