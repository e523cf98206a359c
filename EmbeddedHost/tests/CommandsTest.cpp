#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"

namespace EmbeddedHost {
namespace {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

class CommandsTest : public ModelTest {
protected:
  Commands commands{*project};
  ModelVersion *base = project->rootVersion();
  AttributePath count{"Count"};

  // A study of "Base" with the count of part A as its input.
  void makeStudy() {
    EntityModel::Entity *study = project->createEntity("OptimizationData", root, "OptimizationDataList", "");
    set(study, "BaseVersionName", "Base");
    EntityModel::Entity *group = project->createEntity("OptimizationGroup", study, "OptimizationInputs", "");
    EntityModel::Entity *variable =
        project->createEntity("OptimizationAttribute", group, "OptimizationAttributes", "");
    EntityEditor::addEntity(variable, AttributePath(EntityModel::ParentEntity_t), partA, false, true, true,
                            true, false, -1);
    set(variable, "Path", "Count");
    base->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  }
};

TEST_F(CommandsTest, AnnounceOpened_SelectsTheRootAndTellsObserversOnce) {
  NotedNotifications noted;
  commands.announceOpened();
  EXPECT_EQ(EntityManager::s_CurrentEntity, root);
  EXPECT_EQ(EntityManager::s_CurrentFilename, "");
  EXPECT_EQ(noted.lines, (Names{"entity Model"}));
}

TEST_F(CommandsTest, Close_LeavesNoVersionCurrentWhenObserversAreTold) {
  class Closing final : public EntityGUI::Observer {
  public:
    Closing() : Observer(false, true) { EntityManager::getObserverManager()->addObserver(this); }
    ~Closing() override { EntityManager::getObserverManager()->removeObserver(this); }
    void setCurrentEntity(EntityModel::Entity *entity, bool /*scrollTo*/) override {
      wasRoot = entity == EntityEditor::getRootEntity();
      hadVersion = EntityManager::getChangeManager()->getCurrentVersion() != nullptr;
      ++calls;
    }
    bool wasRoot = false;
    bool hadVersion = true;
    int calls = 0;
  };
  commands.announceOpened();
  Closing closing;

  EXPECT_TRUE(commands.close());

  EXPECT_EQ(closing.calls, 1);
  EXPECT_TRUE(closing.wasRoot);
  EXPECT_FALSE(closing.hadVersion);
  EXPECT_EQ(EntityManager::s_CurrentEntity, nullptr);
}

TEST_F(CommandsTest, WhileASolverRuns_ClosingRenamingAndDeletingAreRefused) {
  ModelVersion *one = follow(base, "one");
  {
    const Commands::SolverRun run(commands);
    EXPECT_EQ(commands.close().problem, "The project cannot be closed while a solver runs.");
    EXPECT_EQ(commands.renameVersion(one, "x").problem,
              "The version \"one\" cannot be renamed while a solver runs.");
    EXPECT_EQ(commands.deleteVersion(one).problem, "No version can be deleted while a solver runs.");
    EXPECT_EQ(commands.saveAs("/nowhere").problem,
              "The project cannot be saved under another name while a solver runs.");
  }
  EXPECT_TRUE(commands.renameVersion(one, "x"));
  EXPECT_TRUE(commands.close());
}

TEST_F(CommandsTest, SwitchVersion_SelectsTheRootAndNotifiesOnce) {
  ModelVersion *one = follow(base, "one");
  EntityManager::s_CurrentEntity = partA;
  NotedNotifications noted;
  EXPECT_TRUE(commands.switchVersion(one));
  EXPECT_EQ(EntityManager::s_CurrentEntity, root);
  EXPECT_EQ(noted.lines, (Names{"version one of Model"}));
  EXPECT_EQ(commands.switchVersion("none").problem, "There is no version \"none\".");
  EXPECT_EQ(commands.switchVersion(nullptr).problem, "There is no such version.");
  EXPECT_EQ(tree.getCurrentVersion(), one);
}

TEST_F(CommandsTest, Edit_SetsTheValueAndTellsOfThisAttribute) {
  NotedNotifications noted;
  EXPECT_TRUE(commands.edit(partA, count, "5"));
  EXPECT_EQ(text(partA, "Count"), "5");
  EXPECT_EQ(noted.lines, (Names{"edit A.Count=5"}));
  EXPECT_TRUE(commands.edit(partA, count, ""));
  EXPECT_FALSE(attribute(partA, "Count").hasValue());
}

TEST_F(CommandsTest, Edit_WhatAUserMayNot_IsRefusedAndChangesNothing) {
  EntityModel::Entity *study = project->createEntity("OptimizationData", root, "OptimizationDataList", "");
  NotedNotifications noted;
  EXPECT_EQ(commands.edit(partA, AttributePath("Mass"), "1").problem,
            "A.Mass is a result; it cannot be edited.");
  EXPECT_EQ(commands.edit(partA, AttributePath("None"), "1").problem,
            "There is no such value in the current version.");
  EXPECT_EQ(commands.edit(nullptr, count, "1").problem, "There is no such value in the current version.");
  EXPECT_EQ(commands.edit(study, AttributePath("CostFunction"), "1").problem,
            ".CostFunction is internal; it cannot be edited.");
  EXPECT_EQ(commands.edit(partA, count, "x").problem, "Count: \"x\" is no whole number.");
  base->setReadOnlyVersion("true");
  EXPECT_EQ(commands.edit(partA, count, "1").problem, "The version \"Base\" is read-only.");
  EXPECT_EQ(text(partA, "Count"), "3");
  EXPECT_TRUE(noted.lines.empty());
}

TEST_F(CommandsTest, Edit_UnsettingAStudyInput_IsRefused) {
  makeStudy();
  EXPECT_EQ(commands.edit(partA, count, "").problem, "A.Count is an input of the study; it needs a value.");
  EXPECT_EQ(text(partA, "Count"), "3");
  EXPECT_TRUE(commands.edit(partB, count, ""));
  EXPECT_TRUE(commands.edit(partA, count, "4"));
}

TEST_F(CommandsTest, Rename_AnOrdinaryVersion) {
  ModelVersion *one = follow(base, "one");
  EXPECT_TRUE(commands.renameVersion(one, "uno"));
  EXPECT_EQ(one->getLabel(), "uno");
  EXPECT_TRUE(commands.renameVersion(one, "uno"));
  EXPECT_EQ(commands.renameVersion(one, "").problem, "A version needs a label.");
  EXPECT_EQ(commands.renameVersion(one, "Base").problem, "There is a version \"Base\" already.");
  EXPECT_EQ(commands.renameVersion(nullptr, "x").problem, "There is no such version.");
}

TEST_F(CommandsTest, Rename_WhatAStudyFindsByItsLabel_IsRefused) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *row = alternate(copy, "Row");
  base->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  copy->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
  EXPECT_EQ(commands.renameVersion(base, "x").problem,
            "The version \"Base\" belongs to a study, which finds it by its label.");
  EXPECT_EQ(commands.renameVersion(copy, "x").problem,
            "The version \"Copy\" belongs to a study, which finds it by its label.");
  EXPECT_EQ(commands.renameVersion(row, "x").problem,
            "The version \"Row\" belongs to a study, which finds it by its label.");
  row->setReadOnlyVersion("true");
  EXPECT_EQ(commands.renameVersion(row, "x").problem, "The version \"Row\" is read-only.");
}

TEST_F(CommandsTest, Delete_RemovesTheVersionAndWhatFollows) {
  ModelVersion *one = follow(base, "one");
  show(follow(one, "two"));
  NotedNotifications noted;
  EXPECT_TRUE(commands.deleteVersion(one));
  EXPECT_EQ(labels(project->versions()), (Names{"Base"}));
  EXPECT_EQ(tree.getCurrentVersion(), base);
  EXPECT_EQ(noted.lines, (Names{"version Base of Model"}));
}

TEST_F(CommandsTest, Delete_WhatWouldBreakAStudy_IsRefused) {
  ModelVersion *one = follow(base, "one");
  ModelVersion *two = follow(one, "two");
  EXPECT_EQ(commands.deleteVersion(base).problem, "The first version cannot be deleted.");
  EXPECT_EQ(commands.deleteVersion(nullptr).problem, "There is no such version.");
  two->setStudyType(EntityModel::ModelVersionStudyType::Parametric);
  EXPECT_EQ(commands.deleteVersion(one).problem, "The version \"two\" belongs to a study.");
  two->clearStudy();
  two->setReadOnlyVersion("true");
  EXPECT_EQ(commands.deleteVersion(one).problem, "The version \"two\" is read-only.");
  EXPECT_EQ(labels(project->versions()), (Names{"Base", "one", "two"}));
}

TEST_F(CommandsTest, SaveAs_SetsTheCurrentFile) {
  const TestFolder folder;
  EXPECT_EQ(commands.save().problem, "The project has no file yet; it has to be saved under a name.");
  EXPECT_TRUE(commands.saveAs(folder.path("p.optstudy")));
  EXPECT_EQ(EntityManager::s_CurrentFilename, folder.path("p.optstudy"));
  EXPECT_TRUE(commands.save());
}

TEST_F(CommandsTest, ManagerSetValue_TellsObserversAlsoWhenTheValueIsTheSame) {
  NotedNotifications noted;
  EXPECT_TRUE(EntityManager::setValue(partA, count, "3", true));
  EXPECT_TRUE(EntityManager::setValue(partA, count, "4", false));
  EXPECT_FALSE(EntityManager::setValue(nullptr, count, "3", true));
  EXPECT_THROW(EntityManager::setValue(partA, count, "x", true), std::exception);
  EXPECT_EQ(noted.lines, (Names{"edit A.Count=3"}));
}

TEST_F(CommandsTest, Selection_OfAMissingEntity_IsDroppedWithoutSelectingTheRoot) {
  EntityManager::s_CurrentEntity = partB;
  EntityManager::checkSelectionsAreValid();
  EXPECT_EQ(EntityManager::s_CurrentEntity, partB);
  EntityEditor::deleteEntity(partB, false, true);
  NotedNotifications noted;
  EntityManager::checkSelectionsAreValid();
  EXPECT_EQ(EntityManager::s_CurrentEntity, nullptr);
  EXPECT_TRUE(noted.lines.empty());
}

} // namespace
} // namespace EmbeddedHost
