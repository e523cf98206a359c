#include "EmbeddedHost/VersionLook.h"

#include "EmbeddedHost/tests/ModelFixture.h"

#include <gtest/gtest.h>

namespace EmbeddedHost {
namespace {

using EntityModel::ModelVersion;

class VersionLookTest : public ModelTest {
protected:
  VersionLookTest() {
    set(partA, "Count", "10");
    first = follow(project->rootVersion(), "First");
    second = follow(first, "Second");
    show(first);
    set(partA, "Count", "11");
    show(second);
    set(partA, "Note", "of the second");
    show(project->rootVersion());
  }

  ModelVersion *first = nullptr;
  ModelVersion *second = nullptr;
};

TEST_F(VersionLookTest, At_ShowsTheValuesOfThatVersion) {
  VersionLook look(*project);
  ASSERT_TRUE(look.at(*second));
  EXPECT_EQ(text(partA, "Count"), "11");
  EXPECT_EQ(text(partA, "Note"), "of the second");
  ASSERT_TRUE(look.at(*first));
  EXPECT_EQ(text(partA, "Count"), "11");
  EXPECT_EQ(text(partA, "Note"), "");
}

TEST_F(VersionLookTest, End_ShowsTheValuesOfTheCurrentVersionAgain) {
  {
    VersionLook look(*project);
    ASSERT_TRUE(look.at(*second));
  }
  EXPECT_EQ(text(partA, "Count"), "10");
  EXPECT_EQ(text(partA, "Note"), "");
}

TEST_F(VersionLookTest, At_LeavesTheCurrentVersionAndTellsNobody) {
  const NotedNotifications told;
  {
    VersionLook look(*project);
    ASSERT_TRUE(look.at(*second));
    EXPECT_EQ(project->currentVersion(), project->rootVersion());
  }
  EXPECT_EQ(project->currentVersion(), project->rootVersion());
  EXPECT_EQ(told.lines, std::vector<std::string>());
}

TEST_F(VersionLookTest, At_VersionOfAnotherProject_ShowsNothingElse) {
  const std::unique_ptr<Project> other = Project::create(testSchema());
  VersionLook look(*project);
  ASSERT_TRUE(look.at(*first));
  EXPECT_FALSE(look.at(*other->rootVersion()));
  EXPECT_EQ(text(partA, "Count"), "11");
}

TEST_F(VersionLookTest, EditAfterwards_IsOfTheCurrentVersionOnly) {
  {
    VersionLook look(*project);
    ASSERT_TRUE(look.at(*second));
  }
  set(partA, "Ratio", "0.5");
  show(second);
  EXPECT_EQ(text(partA, "Ratio"), "0.5");
  EXPECT_EQ(text(partA, "Count"), "11");
  show(project->rootVersion());
  EXPECT_EQ(text(partA, "Ratio"), "0.5");
  EXPECT_EQ(text(partA, "Count"), "10");
}

TEST_F(VersionLookTest, End_WithoutACurrentVersion_ShowsWhatWasShown) {
  show(first);
  project->changeManager().setCurrentVersion(nullptr, nullptr, false, nullptr, true);
  {
    VersionLook look(*project);
    ASSERT_TRUE(look.at(*second));
    EXPECT_EQ(text(partA, "Note"), "of the second");
  }
  EXPECT_EQ(text(partA, "Note"), "");
  EXPECT_EQ(text(partA, "Count"), "11");
}

} // namespace
} // namespace EmbeddedHost
