#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ProjectFixture.h"
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

class ProjectSavingTest : public ProjectTest {};

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

TEST_F(ProjectSavingTest, DamagedRow_IsNamed) {
  ModelVersion *next = follow(base, "V");
  show(next);
  set(partA, "Count", "7");
  saveAs();
  project.reset();
  Database(file, Database::Access::ReadWrite).execute("UPDATE value SET path = 999 WHERE value = 7");
  std::string problem;
  EXPECT_EQ(Project::open(file, OpenMode::ReadOnly, problem), nullptr);
  EXPECT_EQ(problem, "The project " + file +
                         " is damaged: it holds a row that refers to an unknown text (version 2, entity 2).");
}

TEST_F(ProjectSavingTest, Save_WithNothingChanged_WritesNothing) {
  saveAs();
  set(partA, "Count", "7");
  save();
  const std::string content = contentOf(file);
  const auto written = std::filesystem::last_write_time(file);
  Database other(file, Database::Access::ReadWrite);
  const std::int64_t before = other.number("PRAGMA data_version");
  // Not even a transaction, which would have to wait for this one.
  other.execute("BEGIN IMMEDIATE");
  save();
  other.execute("ROLLBACK");
  // The flag is the program's to set; whether there is something to save is not its to say.
  EntityGUI::EntityManager::setNeedsSave(true);
  save();
  EXPECT_FALSE(project->needsSave());
  EXPECT_EQ(other.number("PRAGMA data_version"), before);
  EXPECT_EQ(std::filesystem::last_write_time(file), written);
  EXPECT_EQ(contentOf(file), content);
}

TEST_F(ProjectSavingTest, Save_OfOneEdit_WritesOneRow) {
  set(partA, "Count", "7");
  saveAs();
  Database &database = project->parts().file->database();
  const std::int64_t before = database.number("SELECT total_changes()");
  set(partA, "Count", "8");
  save();
  EXPECT_EQ(database.number("SELECT total_changes()"), before + 1);
}

TEST_F(ProjectSavingTest, Save_OfASwitchAlone_KeepsTheCurrentVersion) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  show(base);
  save();
  EXPECT_EQ(openCopy()->currentVersion()->getLabel(), "Base");
  show(next);
  save();
  EXPECT_EQ(openCopy()->currentVersion()->getLabel(), "V");
}

} // namespace
} // namespace EmbeddedHost
