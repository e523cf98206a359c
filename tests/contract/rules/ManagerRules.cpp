// The running application: edits that are announced, selections, and who is told of what.

#include "HostModel/AttributePath.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace HostContract {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::ChangeSet;

namespace {

/// Edits the part again when it is told of an edit, and then looks at what it was told.
class EditsAgain final : public EntityGUI::Observer {
public:
  explicit EditsAgain(Scene &scene) : Observer(false, true), m_scene(scene) {
    EntityGUI::ObserverManager::process().addObserver(this);
  }
  ~EditsAgain() override { EntityGUI::ObserverManager::process().removeObserver(this); }

  void changedEntities(ChangeSet &changes) override {
    if (++calls == 1) {
      EntityManager::setValue(m_scene.partA(), AttributePath("Width"), "6", true);
      EntityManager::setValue(m_scene.partA(), AttributePath("Note"), "again", true);
      attributesSeen = changes.getModifiedEntities().at(0).attributes.size();
    }
  }

  int calls = 0;
  std::size_t attributesSeen = 0;

private:
  Scene &m_scene;
};

class Throws final : public EntityGUI::Observer {
public:
  Throws() : Observer(false, true) { EntityGUI::ObserverManager::process().addObserver(this); }
  ~Throws() override { EntityGUI::ObserverManager::process().removeObserver(this); }
  void changedEntities(ChangeSet & /*changes*/) override { throw std::runtime_error("not now"); }
};

} // namespace

std::vector<Rule> managerRules() {
  return {
      {"Manager_SetValue_TellsOfTheOneAttribute",
       [](Scene &scene) {
         const Notes notes(scene);
         EXPECT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Note"), "x", true));
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "x");
         EXPECT_EQ(notes.lines(), (Texts{"edit A.Note=x"}));
       }},
      {"Manager_SetValue_ThatIsThereAlready_IsToldOfToo",
       [](Scene &scene) {
         scene.set(scene.partA(), "Note", "x");
         const Notes notes(scene);
         EXPECT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Note"), "x", true));
         EXPECT_EQ(notes.lines(), (Texts{"edit A.Note=x"}));
       }},
      {"Manager_SetValue_Unannounced_TellsNobody",
       [](Scene &scene) {
         const Notes notes(scene);
         EXPECT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Note"), "x", false));
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "x");
         EXPECT_EQ(notes.lines(), Texts{});
       }},
      {"Manager_SetValue_Refused_TellsNobody",
       [](Scene &scene) {
         const Notes notes(scene);
         EXPECT_FALSE(EntityManager::setValue(nullptr, AttributePath("Note"), "x", true));
         EXPECT_FALSE(EntityManager::setValue(scene.partA(), AttributePath("Nothing"), "x", true));
         EXPECT_THROW(EntityManager::setValue(scene.partA(), AttributePath("Width"), "x", true),
                      std::exception);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(notes.lines(), Texts{});
       }},
      {"Manager_SetValue_WhileAnEditIsBeingTold_LeavesTheChangeSetAlone",
       [](Scene &scene) {
         EditsAgain observer(scene);
         EXPECT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Width"), "5", true));
         EXPECT_EQ(observer.calls, 3);
         EXPECT_EQ(observer.attributesSeen, 1U);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 6.0);
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "again");
       }},
      {"Manager_SetValue_ObserverThrows_TheValueIsSetAndTheHostUsable",
       [](Scene &scene) {
         {
           const Throws observer;
           EXPECT_THROW(EntityManager::setValue(scene.partA(), AttributePath("Width"), "5", true),
                        std::runtime_error);
         }
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.0);
         EXPECT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Width"), "6", true));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 6.0);
       }},
      {"Manager_NeedsSave_IsAMarkAndNothingElse",
       [](Scene &scene) {
         const Notes notes(scene);
         for (int row = 0; row < 1000; ++row) {
           EntityManager::setNeedsSave(true);
         }
         EXPECT_EQ(notes.lines(), Texts{});
         EXPECT_EQ(EntityManager::s_CurrentFilename, "");
         EXPECT_EQ(scene.current(), scene.base());
       }},
      {"Manager_Selection_OfWhatIsThere_IsKept",
       [](Scene &scene) {
         EntityManager::s_CurrentEntity = scene.partB();
         EntityManager::checkSelectionsAreValid();
         EXPECT_EQ(EntityManager::getCurrentEntity(), scene.partB());
       }},
      {"Manager_Selection_OfWhatIsGone_IsDroppedWithoutSelectingTheRoot",
       [](Scene &scene) {
         EntityManager::s_CurrentEntity = scene.partB();
         ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(scene.partB(), false, true));
         const Notes notes(scene);
         EntityManager::checkSelectionsAreValid();
         EXPECT_NE(EntityManager::s_CurrentEntity, scene.partB());
         EXPECT_EQ(notes.lines(), Texts{});
       }},
      {"Manager_Services_AreTheSameObjectsThroughout",
       [](Scene &scene) {
         const EntityModel::ChangeManager *tree = &scene.tree();
         const EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager();
         ASSERT_NE(observers, nullptr);
         EXPECT_EQ(EntityManager::getChangeManager(), tree);
         scene.show(scene.follow(scene.base(), "V"));
         scene.set(scene.partA(), "Width", "5");
         EXPECT_EQ(EntityManager::getChangeManager(), tree);
         EXPECT_EQ(&scene.tree(), tree);
         EXPECT_EQ(EntityManager::getObserverManager(), observers);
       }},
      {"Manager_Observers_AreThoseOfTheProcess",
       [](Scene &scene) {
         const Notes notes(scene);
         EntityManager::getObserverManager()->broadcastSetCurrentEntity(scene.root(), false);
         EXPECT_EQ(notes.lines(), (Texts{"entity root"}));
       }},
      {"Manager_BroadcastOfTheLibrary_ReachesEveryObserver",
       [](Scene &scene) {
         const Notes notes(scene);
         const Notes more(scene);
         ChangeSet changes;
         changes.addModifiedAttribute(scene.partA(), &scene.attribute(scene.partA(), "Note"));
         EntityManager::getObserverManager()->broadcastChangedVersion(changes, scene.root(), "any", false,
                                                                      true);
         EntityManager::getObserverManager()->broadcastUndoneOrRedone(changes);
         EXPECT_EQ(notes.lines(), (Texts{"version any of root A.Note=", "edit A.Note="}));
         EXPECT_EQ(more.lines(), notes.lines());
       }},
      {"Manager_Checker_SwitchesNothingAndSelectsNothing",
       [](Scene &scene) {
         ChangeSet changes;
         changes.addModifiedAttribute(scene.partA(), &scene.attribute(scene.partA(), "Width"));
         EntityManager::s_CurrentEntity = scene.partB();
         const Notes notes(scene);
         if (EntityGUI::AbstractModelChecker *checker = EntityManager::getModelChecker()) {
           checker->check(changes);
         }
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(EntityManager::getCurrentEntity(), scene.partB());
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         EXPECT_EQ(notes.lines(), Texts{});
       }},
      {"Manager_Open_SelectsTheRootAndSaysSoOnce",
       [](Scene &scene) {
         EntityManager::s_CurrentEntity = scene.partA();
         const Notes notes(scene);
         scene.subject().open();
         EXPECT_EQ(EntityManager::getCurrentEntity(), scene.root());
         ASSERT_EQ(notes.lines().size(), 1U);
         EXPECT_TRUE(notes.lines()[0] == "entity root" || notes.lines()[0] == "version Base of root")
             << notes.lines()[0];
       }},
      {"Manager_Close_LeavesNoVersionAndSaysSoWithTheRoot",
       [](Scene &scene) {
         const Notes notes(scene);
         scene.close();
         EXPECT_EQ(EntityManager::getCurrentVersion(), "");
         EXPECT_EQ(EntityManager::getCurrentEntity(), nullptr);
         EXPECT_EQ(notes.lines(), (Texts{"entity root"}));
       }},
  };
}

} // namespace HostContract
