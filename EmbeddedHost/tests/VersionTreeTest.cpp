#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/FreedLabels.h"
#include "HostModel/ObserverManager.h"

#include <gtest/gtest.h>

namespace EmbeddedHost {
namespace {

using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

class VersionTreeTest : public ModelTest {
protected:
  ModelVersion *base = project->rootVersion();

  std::vector<ModelVersion *> alternatesOf(ModelVersion *version) {
    std::vector<ModelVersion *> list;
    tree.getAlternates(version, list);
    return list;
  }
  static std::vector<ModelVersion *> followersOf(const ModelVersion *version) {
    return {version->beginNext(), version->endNext()};
  }
  bool destroy(std::vector<ModelVersion *> versions) {
    bool destroyed = false;
    tree.destroyVersions(versions, nullptr, destroyed);
    return destroyed;
  }
};

TEST_F(VersionTreeTest, NewProject_HasOneCurrentRootVersion) {
  EXPECT_EQ(tree.getRootVersion(true), base);
  EXPECT_EQ(tree.getCurrentVersion(), base);
  EXPECT_EQ(base->getLabel(), "Base");
  EXPECT_EQ(base->getPrevious(), nullptr);
  EXPECT_EQ(base->beginNext(), base->endNext());
  EXPECT_EQ(EntityGUI::EntityManager::getCurrentVersion(), "Base");
}

TEST_F(VersionTreeTest, NewVersion_FollowsItsOrigin_AndIsNotCurrent) {
  ModelVersion *next = tree.startNewVersion("V", "d", "a", "c", nullptr, base, true);
  EXPECT_EQ(next->getPrevious(), base);
  EXPECT_EQ(labels(followersOf(base)), (Names{"V"}));
  EXPECT_EQ(tree.getCurrentVersion(), base);
  EXPECT_TRUE(Project::isReadOnly(*next));
  EXPECT_EQ(tree.startNewVersion("V", "", "", "", nullptr, nullptr, false), nullptr);
}

TEST_F(VersionTreeTest, NewAlternate_HasThePreviousVersionOfItsOrigin) {
  ModelVersion *copy = follow(base, "Copy");
  show(copy);
  set(partA, "Count", "42");
  ModelVersion *row = tree.startNewAlternate(copy, nullptr, true, SIZE_MAX);
  EXPECT_EQ(row->getPrevious(), base);
  EXPECT_EQ(row->getLabel(), "Copy (2)");
  EXPECT_EQ(tree.getCurrentVersion(), copy);
  ModelVersion *empty = tree.startNewAlternate(copy, nullptr, false, SIZE_MAX);
  show(row);
  EXPECT_EQ(text(partA, "Count"), "42");
  show(empty);
  EXPECT_EQ(text(partA, "Count"), "3");
  EXPECT_EQ(labels(followersOf(base)), (Names{"Copy", "Copy (2)", "Copy (3)"}));
}

TEST_F(VersionTreeTest, NewAlternate_OfNothingOrOfTheRoot_IsRefused) {
  EXPECT_EQ(tree.startNewAlternate(nullptr, nullptr, true, SIZE_MAX), nullptr);
  EXPECT_EQ(tree.startNewAlternate(base, nullptr, true, SIZE_MAX), nullptr);
}

TEST_F(VersionTreeTest, Alternates_StandInTheOrderOfTheirPositions) {
  ModelVersion *copy = follow(base, "Copy");
  alternate(copy, "one");
  alternate(copy, "two");
  alternate(copy, "first", 0);
  alternate(copy, "middle", 2);
  alternate(copy, "end", 99);
  EXPECT_EQ(labels(alternatesOf(copy)), (Names{"first", "one", "middle", "two", "end"}));
}

TEST_F(VersionTreeTest, AlternateOfTheLastAlternate_PastTheEnd_IsAppended) {
  ModelVersion *copy = follow(project->rootVersion(), "Copy");
  alternate(copy, "First");
  ModelVersion *last = alternate(copy, "Last");
  alternate(last, "New");
  std::vector<ModelVersion *> alternates;
  tree.getAlternates(copy, alternates);
  EXPECT_EQ(labels(alternates), (std::vector<std::string>{"First", "Last", "New"}));
}

TEST_F(VersionTreeTest, AlternatesOfAnAlternate_BelongToTheSameFamily) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *one = alternate(copy, "one");
  alternate(copy, "two");
  alternate(one, "afterTwo", 1);
  alternate(one, "beforeTwo", 0);
  EXPECT_EQ(labels(alternatesOf(copy)), (Names{"beforeTwo", "one", "two", "afterTwo"}));
  EXPECT_EQ(labels(alternatesOf(one)), (Names{"beforeTwo", "two", "afterTwo"}));
}

TEST_F(VersionTreeTest, Alternates_AreNotAllFollowersOfTheBaseline) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *second = follow(base, "Second copy");
  alternate(copy, "one");
  EXPECT_TRUE(alternatesOf(second).empty());
  std::vector<ModelVersion *> none = {base};
  tree.getAlternates(nullptr, none);
  EXPECT_TRUE(none.empty());
}

TEST_F(VersionTreeTest, ManyInsertionsAtOnePlace_KeepTheirOrder) {
  ModelVersion *copy = follow(base, "Copy");
  alternate(copy, "last");
  Names expected = {"last"};
  for (int index = 0; index < 200; ++index) {
    alternate(copy, std::to_string(index), 0);
    expected.insert(expected.begin(), std::to_string(index));
  }
  for (int index = 0; index < 200; ++index) {
    alternate(copy, "m" + std::to_string(index), 1);
    expected.insert(expected.begin() + 1, "m" + std::to_string(index));
  }
  EXPECT_EQ(labels(alternatesOf(copy)), expected);
}

TEST_F(VersionTreeTest, FindVersion_GivesTheFirstCreatedWithExactlyThisLabel) {
  ModelVersion *one = follow(base, "Same");
  ModelVersion *two = follow(base, "Same");
  EXPECT_EQ(tree.findVersion("Same", nullptr), one);
  EXPECT_EQ(tree.findVersion("same", nullptr), nullptr);
  EXPECT_EQ(tree.findVersion("", nullptr), nullptr);
  one->setLabel("Other");
  EXPECT_EQ(tree.findVersion("Same", nullptr), two);
  one->setLabel("Same");
  EXPECT_EQ(tree.findVersion("Same", nullptr), one);
  one->setLabel("Same");
  destroy({one});
  EXPECT_EQ(tree.findVersion("Same", nullptr), two);
}

TEST_F(VersionTreeTest, FindVersion_AmongVersionsThatShareALabel_FollowsTheOrderOfCreation) {
  ModelVersion *one = follow(base, "Same");
  ModelVersion *two = follow(base, "Same");
  ModelVersion *three = follow(base, "Same");
  three->setLabel("Other");
  ModelVersion *four = follow(base, "Same");
  three->setLabel("Same");
  one->setLabel("Other");
  EXPECT_EQ(tree.findVersion("Same", nullptr), two);
  destroy({two});
  EXPECT_EQ(tree.findVersion("Same", nullptr), three);
  destroy({three});
  EXPECT_EQ(tree.findVersion("Same", nullptr), four);
  destroy({four});
  EXPECT_EQ(tree.findVersion("Same", nullptr), nullptr);
  EXPECT_EQ(tree.findVersion("Other", nullptr), one);
}

TEST_F(VersionTreeTest, FindVersion_WithAnEntity_TakesVersionsThatHaveIt) {
  ModelVersion *one = follow(base, "Same");
  ModelVersion *two = follow(base, "Same");
  show(two);
  EntityModel::Entity *only = project->createEntity("Part", partA, "Parts", "Only");
  show(base);
  EXPECT_EQ(tree.findVersion("Same", only), two);
  EXPECT_EQ(tree.findVersion("Same", partA), one);
  EXPECT_EQ(tree.findVersion("Base", only), nullptr);
}

TEST_F(VersionTreeTest, UniqueName_LeavesFreeLabelsAndNumbersTakenOnes) {
  EXPECT_EQ(tree.getUniqueName("Free", {}), "Free");
  EXPECT_EQ(tree.getUniqueName("Base", {}), "Base (2)");
  follow(base, "Base (2)");
  EXPECT_EQ(tree.getUniqueName("Base", {}), "Base (3)");
  EXPECT_EQ(tree.getUniqueName("Free", {{"Free", nullptr}, {"Free (2)", nullptr}}), "Free (3)");
  EXPECT_EQ(tree.getUniqueName("", {}), "");
}

TEST_F(VersionTreeTest, UniqueName_HasTheLowestNumberThatIsFree) {
  ModelVersion *copy = follow(base, "Copy");
  for (int count = 0; count < 5; ++count) {
    tree.startNewAlternate(copy, nullptr, false, SIZE_MAX);
  }
  const std::vector<ModelVersion *> made = alternatesOf(copy);
  EXPECT_EQ(labels(made), (Names{"Copy (2)", "Copy (3)", "Copy (4)", "Copy (5)", "Copy (6)"}));
  EXPECT_EQ(tree.getUniqueName("Copy", {}), "Copy (7)");
  made[2]->setLabel("Other");
  EXPECT_EQ(tree.getUniqueName("Copy", {}), "Copy (4)");
  destroy({made[1]});
  EXPECT_EQ(tree.getUniqueName("Copy", {}), "Copy (3)");
  follow(base, "Copy (3)");
  EXPECT_EQ(tree.getUniqueName("Copy", {}), "Copy (4)");
  follow(base, "Copy (4)");
  EXPECT_EQ(tree.getUniqueName("Copy", {{"Copy (7)", nullptr}}), "Copy (8)");
  EXPECT_EQ(tree.getUniqueName("Copy", {}), "Copy (7)");
}

TEST_F(VersionTreeTest, Destroy_RemovesFromTreeFamilyAndLabels) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *one = alternate(copy, "one");
  alternate(copy, "two");
  bool destroyed = false;
  tree.destroyVersion(one, nullptr, destroyed);
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(labels(alternatesOf(copy)), (Names{"two"}));
  EXPECT_EQ(labels(followersOf(base)), (Names{"Copy", "two"}));
  EXPECT_EQ(tree.findVersion("one", nullptr), nullptr);
  EXPECT_EQ(labels(project->versions()), (Names{"Base", "Copy", "two"}));
}

TEST_F(VersionTreeTest, Destroy_TakesWhatFollowsAlong) {
  ModelVersion *one = follow(base, "one");
  ModelVersion *two = follow(one, "two");
  follow(two, "three");
  EXPECT_TRUE(destroy({one}));
  EXPECT_EQ(labels(project->versions()), (Names{"Base"}));
}

TEST_F(VersionTreeTest, Destroy_TheRootNullAndUnknownVersions_AreIgnored) {
  auto other = Project::create(testSchema());
  EXPECT_FALSE(destroy({base, nullptr, other->rootVersion()}));
  EXPECT_EQ(labels(project->versions()), (Names{"Base"}));
}

TEST_F(VersionTreeTest, Destroy_TheCurrentVersion_ShowsTheNearestSurvivor) {
  ModelVersion *one = follow(base, "one");
  ModelVersion *two = follow(one, "two");
  ModelVersion *three = follow(two, "three");
  show(one);
  set(partA, "Count", "1");
  show(three);
  set(partA, "Count", "3");
  NotedNotifications noted;
  EXPECT_TRUE(destroy({two, three}));
  EXPECT_EQ(tree.getCurrentVersion(), one);
  EXPECT_EQ(text(partA, "Count"), "1");
  EXPECT_TRUE(noted.lines.empty());
}

TEST_F(VersionTreeTest, Destroy_TheOriginOfAlternates_MakesThemOrdinary) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *one = alternate(copy, "one");
  alternate(copy, "two");
  copy->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
  EXPECT_TRUE(one->isStudyCase(true, false));
  destroy({copy});
  EXPECT_FALSE(one->isStudyCase(true, false));
  EXPECT_EQ(labels(alternatesOf(one)), (Names{"two"}));
}

TEST_F(VersionTreeTest, EditedVersion_AcceptsReadOnlyVersionsAndRefusesNull) {
  ModelVersion *one = follow(base, "one");
  one->setReadOnlyVersion("true");
  EntityGUI::EntityManager::setNeedsSave(false);
  bool edited = false;
  tree.editedVersion(one, nullptr, edited, true);
  EXPECT_TRUE(edited);
  EXPECT_TRUE(project->needsSave());
  tree.editedVersion(nullptr, nullptr, edited, true);
  EXPECT_FALSE(edited);
}

TEST_F(VersionTreeTest, VersionFolder_WithoutAFile_IsEmpty) {
  EXPECT_EQ(tree.getVersionFolder(base, true), "");
  EXPECT_EQ(tree.getVersionFolder(nullptr, false), "");
}

TEST_F(VersionTreeTest, Switch_TellsObserversOnce_WithTheRootAndTheNewLabel) {
  ModelVersion *one = follow(base, "one");
  NotedNotifications noted;
  EXPECT_TRUE(tree.setCurrentVersion(one, nullptr, false, nullptr, true));
  EXPECT_EQ(noted.lines, (Names{"version one of Model"}));
  EXPECT_TRUE(tree.setCurrentVersion(one, nullptr, false, nullptr, true));
  EXPECT_EQ(noted.lines.size(), 1U);
  EXPECT_TRUE(tree.setCurrentVersion(one, nullptr, true, nullptr, true));
  EXPECT_EQ(noted.lines.size(), 2U);
}

TEST_F(VersionTreeTest, Switch_WithAChangeSet_HandsItToObservers) {
  ModelVersion *one = follow(base, "one");
  show(one);
  set(partA, "Count", "5");
  NotedNotifications noted;
  EntityModel::ChangeSet changes;
  tree.setCurrentVersion(base, &changes, false, nullptr, true);
  EXPECT_EQ(noted.lines, (Names{"version Base of Model A.Count=3"}));
}

TEST_F(VersionTreeTest, CreatingVersions_TellsNobody) {
  NotedNotifications noted;
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *one = alternate(copy, "one");
  destroy({one});
  EXPECT_TRUE(noted.lines.empty());
}

TEST_F(VersionTreeTest, ObserverThatSwitchesOn_IsReportedByTheAnswer) {
  class Switcher final : public EntityGUI::Observer {
  public:
    explicit Switcher(Project &project) : Observer(false, true), m_project(project) {
      EntityGUI::EntityManager::getObserverManager()->addObserver(this);
    }
    ~Switcher() override { EntityGUI::EntityManager::getObserverManager()->removeObserver(this); }
    void changedVersion(EntityModel::ChangeSet & /*changes*/, EntityModel::Entity * /*entity*/,
                        const std::string & /*versionName*/, bool /*reload*/) override {
      m_project.changeManager().setCurrentVersion(m_project.rootVersion(), nullptr, false, nullptr, true);
    }

  private:
    Project &m_project;
  };
  ModelVersion *one = follow(base, "one");
  const Switcher switcher(*project);
  EXPECT_FALSE(tree.setCurrentVersion(one, nullptr, false, nullptr, true));
  EXPECT_EQ(tree.getCurrentVersion(), base);
}

class EagerHostTest : public ModelTest {
protected:
  EagerHostTest() : ModelTest({true, true}) {}
};

TEST_F(EagerHostTest, NewVersions_BecomeCurrentAndSaySo) {
  NotedNotifications noted;
  ModelVersion *copy = follow(project->rootVersion(), "Copy");
  EXPECT_EQ(tree.getCurrentVersion(), copy);
  ModelVersion *row = tree.startNewAlternate(copy, nullptr, true, SIZE_MAX);
  EXPECT_EQ(tree.getCurrentVersion(), row);
  EXPECT_EQ(noted.lines, (Names{"version Copy of Model", "version Copy (2) of Model"}));
}

class SilentHostTest : public ModelTest {
protected:
  SilentHostTest() : ModelTest({false, false}) {}
};

TEST_F(SilentHostTest, Switches_TellNobody_ButTheCommandDoes) {
  ModelVersion *one = follow(project->rootVersion(), "one");
  NotedNotifications noted;
  show(one);
  EXPECT_TRUE(noted.lines.empty());
  Commands commands(*project);
  EXPECT_TRUE(commands.switchVersion("Base"));
  EXPECT_EQ(noted.lines, (Names{"version Base of Model"}));
}

class FreedLabelsTest : public VersionTreeTest {
protected:
  std::uint64_t freed() const {
    return dynamic_cast<const EntityModel::FreedLabels &>(tree).countFreedLabels();
  }
};

TEST_F(FreedLabelsTest, LabelThatNobodyAskedForGoes_CountsNothing) {
  const std::uint64_t before = freed();
  follow(base, "A")->setLabel("B");
  EXPECT_EQ(tree.getUniqueName("A", {}), "A");
  EXPECT_EQ(freed(), before);
}

TEST_F(FreedLabelsTest, LabelThatWasFoundTakenGoes_CountsOnce) {
  ModelVersion *version = follow(base, "A");
  EXPECT_EQ(tree.getUniqueName("A", {}), "A (2)");
  EXPECT_EQ(tree.getUniqueName("A", {}), "A (2)");
  const std::uint64_t before = freed();
  version->setLabel("B");
  EXPECT_EQ(freed(), before + 1);
  version->setLabel("A");
  version->setLabel("B");
  EXPECT_EQ(freed(), before + 1);
}

TEST_F(FreedLabelsTest, VersionIsDestroyed_Counts) {
  ModelVersion *version = follow(base, "A");
  tree.getUniqueName("A", {});
  const std::uint64_t before = freed();
  destroy({version});
  EXPECT_EQ(freed(), before + 1);
}

TEST_F(FreedLabelsTest, AnotherVersionHasTheLabelStill_CountsWhenTheLastGoes) {
  ModelVersion *first = follow(base, "A");
  ModelVersion *second = follow(base, "A");
  tree.getUniqueName("A", {});
  const std::uint64_t before = freed();
  first->setLabel("B");
  EXPECT_EQ(freed(), before);
  second->setLabel("B");
  EXPECT_EQ(freed(), before + 1);
}

TEST_F(FreedLabelsTest, LabelTakenByAFurtherNameOnly_CountsNothing) {
  const std::uint64_t before = freed();
  EXPECT_EQ(tree.getUniqueName("A", {{"A", nullptr}}), "A (2)");
  follow(base, "A")->setLabel("B");
  EXPECT_EQ(freed(), before);
}

} // namespace
} // namespace EmbeddedHost
