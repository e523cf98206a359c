#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"

#include <cmath>
#include <filesystem>
#include <limits>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

class ProjectSavingTest : public ModelTest {
protected:
  TestFolder folder;
  std::string file = folder.path("fan.optstudy");
  ModelVersion *base = project->rootVersion();

  void saveAs() {
    std::string problem;
    ASSERT_TRUE(project->saveAs(file, problem)) << problem;
    EXPECT_FALSE(project->needsSave());
  }
  void save() {
    std::string problem;
    ASSERT_TRUE(project->save(problem)) << problem;
  }
  std::unique_ptr<Project> openCopy(OpenMode mode = OpenMode::ReadOnly) {
    std::string problem;
    std::unique_ptr<Project> opened = Project::open(file, mode, problem);
    EXPECT_EQ(problem, "");
    if (opened == nullptr) {
      throw std::runtime_error(problem);
    }
    return opened;
  }
  static Entity *part(Project &other, int index) {
    return other.attribute(other.rootEntity(), "Parts")->asList()->getEntity(index);
  }
};

TEST_F(ProjectSavingTest, EveryKindOfValue_ComesBack) {
  set(partA, "Width", "12.5 cm");
  set(partA, "Ratio", "0.30000000000000004");
  set(partA, "Count", "-4");
  set(partA, "Open", "0");
  set(partA, "Material", "3");
  set(partA, "Note", std::string("line\nbyte \xff, zero ") + '\0' + "!");
  set(partA, "Law", "Cubic");
  set(partA, "Next", "B #" + std::to_string(Project::entityNumber(*partB)));
  set(partA, "Driver", "B #" + std::to_string(Project::entityNumber(*partB)) + ":Size.Depth");
  set(partA, "Mass", "2.5");
  set(partA, "Cycles", "9007199254740993");
  set(partA, "Size.Height", "7");
  set(partB, "Width", "");
  project->createEntity("Part", partA, "Core", "Core");
  Entity *inner = project->createEntity("Part", partA, "Parts", "Inner");
  project->createEntity("Part", inner, "Parts", "Innermost");
  saveAs();

  const auto other = openCopy();
  Entity *a = part(*other, 0);
  for (const char *path : {"Width", "Ratio", "Count", "Open", "Material", "Note", "Law", "Next", "Driver",
                           "Mass", "Cycles", "Size.Height", "Size.Depth", "Core", "Parts", "Remark"}) {
    EXPECT_EQ(other->attribute(a, path)->getValueAsString(), text(partA, path)) << path;
    EXPECT_EQ(other->attribute(a, path)->hasValue(), attribute(partA, path).hasValue()) << path;
  }
  EXPECT_FALSE(other->attribute(part(*other, 1), "Width")->hasValue());
  EXPECT_EQ(other->attribute(a, "Driver")->getReferencedAttribute(),
            other->attribute(part(*other, 1), "Size.Depth"));
  EXPECT_EQ(other->attribute(a, "Parts")->asList()->getEntity(0)->getName(true), "Inner");
  EXPECT_FALSE(other->needsSave());
}

TEST_F(ProjectSavingTest, EveryDouble_ComesBackBitForBit) {
  const double values[] = {-0.0,
                           0.0,
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::denorm_min(),
                           std::numeric_limits<double>::max(),
                           1.0 / 3.0,
                           100.0};
  saveAs();
  for (const double value : values) {
    std::string problem;
    ASSERT_TRUE(project->recordRun(*base, {}, {{partA, AttributePath("Field"), value}}, problem)) << problem;
    const auto other = openCopy();
    const double read = other->attribute(part(*other, 0), "Field")->getNumericValue();
    EXPECT_EQ(read, value);
    EXPECT_EQ(std::signbit(read), std::signbit(value));
  }
  set(partA, "Ratio", "nan");
  save();
  const auto other = openCopy();
  EXPECT_TRUE(std::isnan(other->attribute(part(*other, 0), "Ratio")->getNumericValue()));
  EXPECT_TRUE(other->attribute(part(*other, 0), "Ratio")->hasValue());
}

TEST_F(ProjectSavingTest, Versions_ComeBackWithTheirMarksAndEdits) {
  const std::string hostile = "a\nb\"'\\%\xff";
  ModelVersion *copy = follow(base, hostile);
  ModelVersion *row = alternate(copy, "Row");
  alternate(copy, "First", 0);
  base->setStudyType(EntityModel::ModelVersionStudyType::Optimality);
  copy->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, true);
  row->setReadOnlyVersion("true");
  ModelVersion *removed = alternate(copy, "Removed");
  removed->removeFromStudy();
  show(row);
  set(partA, "Count", "7");
  set(partA, "Mass", "");
  saveAs();

  const auto other = openCopy();
  EXPECT_EQ(labels(other->versions()), (Names{"Base", hostile, "Row", "First", "Removed"}));
  EntityModel::ChangeManager &versions = other->changeManager();
  ModelVersion *otherRow = versions.findVersion("Row", nullptr);
  ASSERT_NE(otherRow, nullptr);
  EXPECT_EQ(other->currentVersion(), otherRow);
  EXPECT_EQ(other->attribute(part(*other, 0), "Count")->getValueAsString(), "7");
  EXPECT_TRUE(Project::isReadOnly(*otherRow));
  EXPECT_TRUE(otherRow->isStudyCase(true, false));
  EXPECT_EQ(otherRow->getPrevious(), other->rootVersion());
  EXPECT_EQ(other->rootVersion()->getStudyType(), EntityModel::ModelVersionStudyType::Optimality);
  EXPECT_FALSE(versions.findVersion("Removed", nullptr)->isStudyCase(true, false));
  std::vector<ModelVersion *> rows;
  versions.getAlternates(versions.findVersion(hostile, nullptr), rows);
  EXPECT_EQ(labels(rows), (Names{"First", "Row", "Removed"}));
  const auto *unset = otherRow->getDelta(true)->findEditOperation(part(*other, 0), AttributePath("Mass"));
  ASSERT_NE(unset, nullptr);
  EXPECT_FALSE(unset->getValue()->hasValue());
  ASSERT_TRUE(versions.setCurrentVersion(other->rootVersion(), nullptr, false, nullptr, true));
  EXPECT_EQ(other->attribute(part(*other, 0), "Count")->getValueAsString(), "3");
}

TEST_F(ProjectSavingTest, StudyStorage_ComesBackWithItsOrder) {
  Entity *study = project->createEntity("OptimizationData", root, "OptimizationDataList", "");
  Entity *first = project->createEntity("OptimizationGroup", study, "OptimizationInputs", "");
  Entity *second = project->createEntity("OptimizationGroup", study, "OptimizationInputs", "");
  set(first, "Group_Name", "first");
  set(second, "Group_Name", "second");
  Entity *variable = project->createEntity("OptimizationAttribute", second, "OptimizationAttributes", "");
  EntityModel::EntityEditor::addEntity(variable, AttributePath("ParentEntity"), partB, false, true, true,
                                       true, false, -1);
  set(variable, "LowBoundEnabled", "1");
  list(study, "OptimizationInputs").moveEntity(second, 0);
  saveAs();
  EntityModel::EntityEditor::deleteEntity(first, false, true);
  set(study, "CostFunction", "2 * %x%");
  save();

  const auto other = openCopy();
  Entity *otherStudy = other->attribute(other->rootEntity(), "OptimizationDataList")->asList()->getEntity(0);
  ASSERT_NE(otherStudy, nullptr);
  EXPECT_EQ(other->attribute(otherStudy, "CostFunction")->getValueAsString(), "2 * %x%");
  EntityModel::ListAttribute *groups = other->attribute(otherStudy, "OptimizationInputs")->asList();
  ASSERT_EQ(groups->getCount(), 1);
  EXPECT_EQ(other->attribute(groups->getEntity(0), "Group_Name")->getValueAsString(), "second");
  Entity *otherVariable =
      other->attribute(groups->getEntity(0), "OptimizationAttributes")->asList()->getEntity(0);
  EXPECT_EQ(EntityModel::getLinkedEntity(otherVariable, AttributePath("ParentEntity")), part(*other, 1));
  EXPECT_TRUE(EntityModel::getBoolValue(otherVariable, AttributePath("LowBoundEnabled"), false));
}

TEST_F(ProjectSavingTest, Save_WritesOnlyWhatHasChanged) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  {
    // What is not written again is left as it was put here behind the project's back.
    Database database(file, Database::Access::ReadWrite);
    database.execute("UPDATE version SET comment = 'kept' WHERE label = 'V'");
    database.execute("UPDATE entity SET name = 'kept' WHERE name = 'B'");
    database.execute("UPDATE value SET value = 77 WHERE value = 3");
  }
  set(partA, "Ratio", "0.25");
  save();

  Database database(file, Database::Access::ReadOnly);
  EXPECT_EQ(database.number("SELECT count(*) FROM version WHERE comment = 'kept'"), 1);
  EXPECT_EQ(database.number("SELECT count(*) FROM entity WHERE name = 'kept'"), 1);
  EXPECT_EQ(database.number("SELECT count(*) FROM value WHERE value = 0.25"), 1);
  next->setLabel("W");
  save();
  EXPECT_EQ(database.number("SELECT count(*) FROM version WHERE comment = 'kept'"), 0);
}

TEST_F(ProjectSavingTest, DestroyedVersionsAndDeletedEntities_LeaveTheFile) {
  ModelVersion *next = follow(base, "V");
  show(next);
  set(partA, "Count", "7");
  Entity *study = project->createEntity("OptimizationData", root, "OptimizationDataList", "");
  saveAs();
  bool destroyed = false;
  tree.destroyVersion(next, nullptr, destroyed);
  EntityModel::EntityEditor::deleteEntity(study, false, true);
  save();

  Database database(file, Database::Access::ReadOnly);
  EXPECT_EQ(database.number("SELECT count(*) FROM version"), 1);
  EXPECT_EQ(database.number("SELECT count(*) FROM value WHERE version > 1"), 0);
  EXPECT_EQ(database.number("SELECT count(*) FROM entity WHERE type = 'OptimizationData'"), 0);
  const auto other = openCopy();
  EXPECT_EQ(labels(other->versions()), (Names{"Base"}));
}

TEST_F(ProjectSavingTest, NumbersOfDestroyedVersions_AreNotGivenAgain) {
  saveAs();
  ModelVersion *next = follow(base, "V");
  save();
  const std::string gone = project->versionFolder(*next, false);
  bool destroyed = false;
  tree.destroyVersion(next, nullptr, destroyed);
  save();
  project.reset();
  const auto other = openCopy(OpenMode::ReadWrite);
  ModelVersion *again =
      other->changeManager().startNewVersion("V", "", "", "", nullptr, other->rootVersion(), false);
  EXPECT_NE(other->versionFolder(*again, false), gone);
  std::string problem;
  ASSERT_TRUE(other->save(problem)) << problem;
  Database database(file, Database::Access::ReadOnly);
  EXPECT_EQ(database.number("SELECT number FROM version WHERE label = 'V'"), 3);
}

TEST_F(ProjectSavingTest, UnsavedEdits_AreNotInTheFile) {
  saveAs();
  set(partA, "Count", "7");
  EXPECT_TRUE(project->needsSave());
  EXPECT_EQ(openCopy()->attribute(part(*openCopy(), 0), "Count")->getValueAsString(), "3");
}

TEST_F(ProjectSavingTest, SavedAgain_ReopenedProjectTakesFurtherEdits) {
  saveAs();
  project.reset();
  {
    const auto other = openCopy(OpenMode::ReadWrite);
    EXPECT_TRUE(other->setValue(part(*other, 0), "Count", "8"));
    EXPECT_NE(other->createEntity("Part", other->rootEntity(), "Parts", "C"), nullptr);
    std::string problem;
    ASSERT_TRUE(other->save(problem)) << problem;
  }
  const auto third = openCopy();
  EXPECT_EQ(third->attribute(part(*third, 0), "Count")->getValueAsString(), "8");
  EXPECT_EQ(part(*third, 2)->getName(true), "C");
}

TEST_F(ProjectSavingTest, DeclaredTypes_ComeBack) {
  saveAs();
  const auto other = openCopy();
  const Member *width = other->schema().findType("Part")->findMember(AttributePath("Width"));
  ASSERT_NE(width, nullptr);
  EXPECT_EQ(width->standardUnit, "m");
  EXPECT_EQ(width->displayUnit, "mm");
  EXPECT_EQ(width->maximum, 2.0);
  EXPECT_FALSE(width->isResult);
  EXPECT_TRUE(other->schema().findType("Part")->findMember(AttributePath("Mass"))->isResult);
  EXPECT_EQ(other->schema().findType("Part")->findMember(AttributePath("Material"))->options,
            (Names{"Steel", "Copper", "Air"}));
  EXPECT_TRUE(other->schema().rootType()->findMember(AttributePath("Marks"))->hasNoSimulationEffect);
  EXPECT_EQ(other->schema().findType("Part")->members().size(),
            project->schema().findType("Part")->members().size());
}

TEST_F(ProjectSavingTest, SaveAs_RefusesExistingFilesAndSharedResults) {
  saveAs();
  std::string problem;
  EXPECT_FALSE(project->saveAs(file, problem));
  EXPECT_EQ(problem, "There is a file " + file + " already.");
  EXPECT_FALSE(project->saveAs(folder.path("fan.other"), problem));
  EXPECT_EQ(problem, "Two projects cannot share the results folder " + folder.path("fan.results") +
                         "; choose another name.");
  EXPECT_FALSE(project->saveAs(folder.path("no/such/folder.optstudy"), problem));
  EXPECT_EQ(project->file(), file);
  EXPECT_FALSE(std::filesystem::exists(folder.path("fan.other")));
}

TEST_F(ProjectSavingTest, SaveAs_MovesOnWithACopyOfEverything) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  writeFile(project->versionFolder(*next, true) + "/result.txt", "42");
  std::string problem;
  ASSERT_TRUE(project->recordRun(*next, {RunStatus::Ok, "", {"key"}, 1, 2.0, {}, 0, "", ""}, {}, problem))
      << problem;
  set(partA, "Count", "9");
  const std::string second = folder.path("second.optstudy");

  ASSERT_TRUE(project->saveAs(second, problem)) << problem;

  EXPECT_EQ(project->file(), second);
  EXPECT_EQ(contentOf(project->versionFolder(*next, false) + "/result.txt"), "42");
  EXPECT_EQ(project->versionFolder(*next, false).rfind(folder.path("second.results/"), 0), 0U);
  EXPECT_EQ(project->runRecord(*next).keys, (Names{"key"}));
  const auto old = openCopy(OpenMode::ReadWrite);
  EXPECT_EQ(old->attribute(part(*old, 0), "Count")->getValueAsString(), "3");
  ModelVersion *oldNext = old->changeManager().findVersion("V", nullptr);
  EXPECT_EQ(contentOf(old->versionFolder(*oldNext, false) + "/result.txt"), "42");
}

TEST_F(ProjectSavingTest, MovedProject_GoesOnWithItsResults) {
  saveAs();
  writeFile(project->versionFolder(*base, true) + "/result.txt", "42");
  project.reset();
  std::filesystem::create_directory(folder.path("moved"));
  std::filesystem::rename(file, folder.path("moved/fan.optstudy"));
  std::filesystem::rename(folder.path("fan.results"), folder.path("moved/fan.results"));
  file = folder.path("moved/fan.optstudy");
  const auto other = openCopy();
  EXPECT_EQ(contentOf(other->versionFolder(*other->rootVersion(), false) + "/result.txt"), "42");
  EXPECT_EQ(contentOf(file).find(folder.path()), std::string::npos);
}

TEST_F(ProjectSavingTest, DestroyedVersion_LosesItsFolderWhenThatIsSaved) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  const std::string results = project->versionFolder(*next, true);
  bool destroyed = false;
  tree.destroyVersion(next, nullptr, destroyed);
  EXPECT_TRUE(std::filesystem::exists(results));
  save();
  EXPECT_FALSE(std::filesystem::exists(results));
}

TEST_F(ProjectSavingTest, RemovalThatWasInterrupted_IsFinishedAtTheNextOpening) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  const std::string results = project->versionFolder(*next, true);
  const std::string name = std::filesystem::path(results).filename().string();
  std::filesystem::create_directories(folder.path("fan.results/unfinished/half"));
  project.reset();
  {
    Database database(file, Database::Access::ReadWrite);
    database.execute(("INSERT INTO removed_folder VALUES ('" + name + "')").c_str());
  }
  openCopy(OpenMode::ReadOnly);
  EXPECT_TRUE(std::filesystem::exists(results));
  openCopy(OpenMode::ReadWrite);
  EXPECT_FALSE(std::filesystem::exists(results));
  EXPECT_FALSE(std::filesystem::exists(folder.path("fan.results/unfinished")));
  EXPECT_EQ(Database(file, Database::Access::ReadOnly).number("SELECT count(*) FROM removed_folder"), 0);
}

TEST_F(ProjectSavingTest, VersionThatWasNeverSaved_LeavesNoFolder) {
  saveAs();
  ModelVersion *next = follow(base, "V");
  const std::string results = project->versionFolder(*next, true);
  EXPECT_TRUE(std::filesystem::exists(results));
  project.reset();
  EXPECT_FALSE(std::filesystem::exists(results));
}

} // namespace
} // namespace EmbeddedHost
