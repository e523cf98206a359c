#include "EmbeddedHost/src/project/ProjectFormat.h"
#include "EmbeddedHost/tests/ModelFixture.h"

#include <filesystem>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

class ProjectRunsTest : public ModelTest {
protected:
  TestFolder folder;
  std::string file = folder.path("fan.optstudy");
  ModelVersion *row = follow(project->rootVersion(), "Row");
  const AttributePath mass{"Mass"};

  void saveAs() {
    std::string problem;
    ASSERT_TRUE(project->saveAs(file, problem)) << problem;
  }
  static RunRecord record() {
    RunRecord run;
    run.status = RunStatus::Failed;
    run.reason = "no result";
    run.keys = {"a", "", std::string("b\0c", 3)};
    run.startedAt = 1234567890123;
    run.durationSeconds = 0.125;
    run.command = {"solver", "-b", "in put"};
    run.exitCode = -11;
    run.solverVersion = "7.1";
    run.logTail = "last\nline \xff";
    return run;
  }
  std::string store(const std::vector<ResultValue> &results) {
    std::string problem;
    const bool isStored = project->recordRun(*row, record(), results, problem);
    EXPECT_EQ(isStored, problem.empty());
    return problem;
  }
  std::unique_ptr<Project> reopened() {
    std::string problem;
    std::unique_ptr<Project> other = Project::open(file, OpenMode::ReadOnly, problem);
    if (other == nullptr) {
      throw std::runtime_error(problem);
    }
    return other;
  }
  static std::string massIn(Project &other, const char *label, int part) {
    EntityModel::ChangeManager &versions = other.changeManager();
    versions.setCurrentVersion(versions.findVersion(label, nullptr), nullptr, false, nullptr, true);
    Entity *entity = other.attribute(other.rootEntity(), "Parts")->asList()->getEntity(part);
    return other.attribute(entity, "Mass")->getValueAsString();
  }
};

void expectRecord(const RunRecord &run) {
  EXPECT_EQ(run.status, RunStatus::Failed);
  EXPECT_EQ(run.reason, "no result");
  EXPECT_EQ(run.keys, (Names{"a", "", std::string("b\0c", 3)}));
  EXPECT_EQ(run.startedAt, 1234567890123);
  EXPECT_EQ(run.durationSeconds, 0.125);
  EXPECT_EQ(run.command, (Names{"solver", "-b", "in put"}));
  EXPECT_EQ(run.exitCode, -11);
  EXPECT_EQ(run.solverVersion, "7.1");
  EXPECT_EQ(run.logTail, "last\nline \xff");
}

TEST_F(ProjectRunsTest, Record_ComesBackAtOnceAndAfterReopening) {
  saveAs();
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::None);
  EXPECT_EQ(store({}), "");
  expectRecord(project->runRecord(*row));
  const auto other = reopened();
  expectRecord(other->runRecord(*other->changeManager().findVersion("Row", nullptr)));
  EXPECT_EQ(other->runRecord(*other->rootVersion()).status, RunStatus::None);
}

TEST_F(ProjectRunsTest, RunWithoutExitCode_HasNone) {
  saveAs();
  RunRecord run;
  run.status = RunStatus::Running;
  std::string problem;
  ASSERT_TRUE(project->recordRun(*row, run, {}, problem));
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::Running);
  EXPECT_FALSE(project->runRecord(*row).exitCode.has_value());
}

TEST_F(ProjectRunsTest, ResultsAreDurableTogetherWithTheRecord_OtherEditsAreNot) {
  saveAs();
  set(partA, "Count", "9");
  row->setLabel("Renamed");
  EXPECT_EQ(store({{partA, mass, 4.5}, {partB, mass, std::nullopt}}), "");
  EXPECT_TRUE(project->needsSave());

  const auto other = reopened();
  EXPECT_EQ(massIn(*other, "Row", 0), "4.5 kg");
  EXPECT_EQ(massIn(*other, "Base", 0), "");
  EXPECT_EQ(other->changeManager().findVersion("Renamed", nullptr), nullptr);
  Entity *first = other->attribute(other->rootEntity(), "Parts")->asList()->getEntity(0);
  EXPECT_EQ(other->attribute(first, "Count")->getValueAsString(), "3");
}

TEST_F(ProjectRunsTest, StoredResults_AreNothingToSaveAndNotWrittenAgain) {
  saveAs();
  EXPECT_EQ(store({{partA, mass, 4.5}}), "");
  EXPECT_FALSE(project->needsSave());
  {
    Database database(file, Database::Access::ReadWrite);
    database.execute("UPDATE value SET value = 7.5 WHERE value = 4.5");
  }
  std::string problem;
  ASSERT_TRUE(project->save(problem)) << problem;
  EXPECT_EQ(massIn(*reopened(), "Row", 0), "7.5 kg");
}

TEST_F(ProjectRunsTest, EarlierUnsavedValueOfAResult_DoesNotComeBackAtTheNextSave) {
  saveAs();
  show(row);
  set(partA, "Mass", "1");
  EXPECT_EQ(store({{partA, mass, 2.0}}), "");
  EXPECT_EQ(text(partA, "Mass"), "2 kg");
  std::string problem;
  ASSERT_TRUE(project->save(problem)) << problem;
  EXPECT_EQ(massIn(*reopened(), "Row", 0), "2 kg");
}

TEST_F(ProjectRunsTest, UnsetResult_HidesThePreviousVersionsResult) {
  set(partA, "Mass", "8");
  saveAs();
  EXPECT_EQ(store({{partA, mass, std::nullopt}}), "");
  const auto other = reopened();
  EXPECT_EQ(massIn(*other, "Base", 0), "8 kg");
  EXPECT_EQ(massIn(*other, "Row", 0), "");
}

TEST_F(ProjectRunsTest, WhatIsNotSavedYet_IsRefusedAndChangesNothing) {
  saveAs();
  ModelVersion *fresh = follow(project->rootVersion(), "Fresh");
  std::string problem;
  EXPECT_FALSE(project->recordRun(*fresh, record(), {}, problem));
  EXPECT_EQ(problem, "The version \"Fresh\" has to be saved before it is solved.");
  Entity *created = project->createEntity("Part", root, "Parts", "C");
  EXPECT_EQ(store({{partA, mass, 1.0}, {created, mass, 1.0}}),
            "The entity \"C\" has to be saved before its results are.");
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::None);
  show(row);
  EXPECT_EQ(text(partA, "Mass"), "");
}

TEST_F(ProjectRunsTest, ResultsThatAreNoNumbers_AreRefused) {
  saveAs();
  EXPECT_EQ(store({{partA, AttributePath("Note"), 1.0}}), "The result Note is no number that can be stored.");
  EXPECT_EQ(store({{partA, AttributePath("Nothing"), 1.0}}),
            "The result Nothing is no number that can be stored.");
  EXPECT_EQ(store({{nullptr, mass, 1.0}}), "The result Mass is no number that can be stored.");
  EXPECT_EQ(store({{partA, AttributePath("Cycles"), 1.5}}),
            "The result Cycles is no number that can be stored.");
  EXPECT_EQ(store({{partA, AttributePath("Material"), 4.0}}),
            "The result Material is no number that can be stored.");
  EXPECT_EQ(store({{partA, AttributePath("Cycles"), 12.0}}), "");
}

TEST_F(ProjectRunsTest, Result_IsANumberInTheDeclaredDisplayUnit) {
  EXPECT_EQ(store({{partA, AttributePath("Width"), 250.0}}), "");
  show(row);
  EXPECT_EQ(text(partA, "Width"), "250 mm");
}

TEST_F(ProjectRunsTest, ReadOnlyProject_StoresNoRuns) {
  saveAs();
  const auto other = reopened();
  std::string problem;
  EXPECT_FALSE(other->recordRun(*other->rootVersion(), record(), {}, problem));
  EXPECT_EQ(problem, "The project " + file + " was opened for reading only.");
}

// A run that is finished while somebody looks has results that he has not read.
TEST_F(ProjectRunsTest, ReadOnlyProject_ShowsRunsOfTheMomentOfItsValues) {
  saveAs();
  const auto before = reopened();
  EXPECT_EQ(store({{partA, mass, 4.5}}), "");
  EXPECT_EQ(before->runRecord(*before->changeManager().findVersion("Row", nullptr)).status, RunStatus::None);
  EXPECT_TRUE(before->runRecords().empty());
  EXPECT_EQ(massIn(*before, "Row", 0), "");
  const auto after = reopened();
  expectRecord(after->runRecord(*after->changeManager().findVersion("Row", nullptr)));
  EXPECT_EQ(after->runRecords().size(), 1U);
  EXPECT_EQ(massIn(*after, "Row", 0), "4.5 kg");
}

TEST_F(ProjectRunsTest, WithoutAFile_RunsAreKeptAndSavedLater) {
  EXPECT_EQ(store({{partA, mass, 4.5}}), "");
  EXPECT_TRUE(project->needsSave());
  expectRecord(project->runRecord(*row));
  saveAs();
  expectRecord(project->runRecord(*row));
  const auto other = reopened();
  EXPECT_EQ(massIn(*other, "Row", 0), "4.5 kg");
}

TEST_F(ProjectRunsTest, RunOfADestroyedVersion_LeavesTheFile) {
  saveAs();
  EXPECT_EQ(store({}), "");
  bool destroyed = false;
  tree.destroyVersion(row, nullptr, destroyed);
  std::string problem;
  ASSERT_TRUE(project->save(problem)) << problem;
  EXPECT_EQ(Database(file, Database::Access::ReadOnly).number("SELECT count(*) FROM run"), 0);
}

TEST(PackedTextsTest, Texts_ComeBackAndDamageGivesNone) {
  const Names texts = {"", "a", std::string("b\0:3", 4), "long text"};
  EXPECT_EQ(unpackTexts(packTexts(texts)), texts);
  EXPECT_EQ(packTexts({"ab", ""}), "2:ab0:");
  for (const char *damaged : {"x", "3:ab", "-1:a", "2", "99999999999999999999:a"}) {
    EXPECT_TRUE(unpackTexts(damaged).empty()) << damaged;
  }
}

TEST_F(ProjectRunsTest, EntityThatWasRenamedSinceTheLastSave_TakesResults) {
  saveAs();
  ASSERT_TRUE(project->renameEntity(partA, "Renamed"));
  EXPECT_EQ(store({{partA, mass, 4.5}}), "");
  EXPECT_EQ(massIn(*reopened(), "Row", 0), "4.5 kg");
}

TEST_F(ProjectRunsTest, AllRecordsAtOnce_AreThoseOfTheVersionsThatRan) {
  ModelVersion *other = follow(project->rootVersion(), "Other");
  ModelVersion *never = follow(project->rootVersion(), "Never");
  ModelVersion *destroyed = follow(project->rootVersion(), "Destroyed");
  saveAs();
  EXPECT_TRUE(project->runRecords().empty());
  std::string problem;
  ASSERT_EQ(store({}), "");
  RunRecord second = record();
  second.status = RunStatus::Ok;
  second.reason.clear();
  ASSERT_TRUE(project->recordRun(*other, second, {}, problem)) << problem;
  ASSERT_TRUE(project->recordRun(*destroyed, second, {}, problem)) << problem;
  bool isDestroyed = false;
  tree.destroyVersion(destroyed, nullptr, isDestroyed);

  const Project::RunRecords records = project->runRecords();

  EXPECT_EQ(records.size(), 2U);
  expectRecord(records.at(row));
  EXPECT_EQ(records.at(other).status, RunStatus::Ok);
  EXPECT_EQ(records.at(other).reason, "");
  EXPECT_EQ(records.count(never), 0U);
}

TEST_F(ProjectRunsTest, AllRecordsAtOnce_WithoutAFile_AreThoseOfTheModel) {
  ASSERT_EQ(store({}), "");
  const Project::RunRecords records = project->runRecords();
  EXPECT_EQ(records.size(), 1U);
  expectRecord(records.at(row));
}

TEST_F(ProjectRunsTest, AllRecordsAtOnce_BegunRun_RunsHereAndForReaders) {
  saveAs();
  std::string problem;
  ASSERT_TRUE(project->beginRun(*row, record(), {}, problem)) << problem;
  EXPECT_EQ(project->runRecords().at(row).status, RunStatus::Running);
  project->forEachRun([this](const ModelVersion &version, const RunRecord &seen) {
    EXPECT_EQ(&version, row);
    EXPECT_EQ(seen.status, RunStatus::Running);
  });
  const std::unique_ptr<Project> reader = reopened();
  EXPECT_EQ(reader->runRecords().at(reader->changeManager().findVersion("Row", nullptr)).status,
            RunStatus::Running);
}

} // namespace
} // namespace EmbeddedHost
