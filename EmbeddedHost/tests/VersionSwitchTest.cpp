#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"

#include <gtest/gtest.h>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::EditOperation;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

class VersionSwitchTest : public ModelTest {
protected:
  ModelVersion *base = project->rootVersion();

  std::string recorded(ModelVersion *version, EntityModel::Entity *entity, const char *path) {
    const EditOperation *operation = version->getDelta(true)->findEditOperation(entity, AttributePath(path));
    if (operation == nullptr) {
      return "(none)";
    }
    const EntityModel::Attribute *value = operation->getValue();
    return std::to_string(operation->getKind()) + ": " +
           (value == nullptr    ? "(no attribute)"
            : value->hasValue() ? value->getValueAsString()
                                : "(no value)");
  }
};

TEST_F(VersionSwitchTest, Version_ShowsItsPreviousVersionsContentUntilItIsEdited) {
  ModelVersion *next = follow(base, "V");
  set(partA, "Width", "200");
  show(next);
  EXPECT_EQ(text(partA, "Width"), "200 mm");
  set(partA, "Width", "300");
  show(base);
  EXPECT_EQ(text(partA, "Width"), "200 mm");
  set(partA, "Width", "250");
  set(partA, "Count", "9");
  show(next);
  EXPECT_EQ(text(partA, "Width"), "300 mm");
  EXPECT_EQ(text(partA, "Count"), "9");
}

TEST_F(VersionSwitchTest, Siblings_DoNotSeeEachOther) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *one = alternate(copy, "One");
  ModelVersion *two = alternate(copy, "Two");
  show(one);
  set(partA, "Count", "1");
  show(two);
  EXPECT_EQ(text(partA, "Count"), "3");
  set(partA, "Count", "2");
  show(one);
  EXPECT_EQ(text(partA, "Count"), "1");
  show(copy);
  EXPECT_EQ(text(partA, "Count"), "3");
}

TEST_F(VersionSwitchTest, VersionWithManyEdits_HasOneOfEachAttributeStill) {
  ModelVersion *next = follow(base, "V");
  show(next);
  for (EntityModel::Entity *part : {partA, partB}) {
    for (const char *path : {"Width", "Ratio", "Count", "Mass", "Cycles", "Size.Height", "Size.Depth"}) {
      set(part, path, "1");
    }
  }
  set(partA, "Count", "7");
  set(partB, "Cycles", "8");
  EXPECT_EQ(recorded(next, partA, "Count"), "1: 7");
  EXPECT_EQ(recorded(next, partB, "Cycles"), "1: 8");
  EXPECT_EQ(recorded(next, partB, "Count"), "1: 1");
  show(base);
  show(next);
  EXPECT_EQ(text(partA, "Count"), "7");
}

TEST_F(VersionSwitchTest, UnsetValue_HidesThePreviousVersionsValue) {
  set(partA, "Mass", "5");
  ModelVersion *next = follow(base, "V");
  show(next);
  EXPECT_EQ(text(partA, "Mass"), "5 kg");
  set(partA, "Mass", "");
  EXPECT_EQ(recorded(next, partA, "Mass"), "1: (no value)");
  show(base);
  EXPECT_EQ(text(partA, "Mass"), "5 kg");
  show(next);
  EXPECT_FALSE(attribute(partA, "Mass").hasValue());
}

TEST_F(VersionSwitchTest, EqualValue_IsRecordedAndNoLongerFollows) {
  ModelVersion *next = follow(base, "V");
  show(next);
  set(partA, "Count", "3");
  EXPECT_EQ(recorded(next, partA, "Count"), "1: 3");
  show(base);
  set(partA, "Count", "15");
  show(next);
  EXPECT_EQ(text(partA, "Count"), "3");
}

TEST_F(VersionSwitchTest, EditOperations_HoldTheLastValueWithLimitsAndUnits) {
  ModelVersion *next = follow(base, "V");
  EXPECT_EQ(recorded(next, partA, "Width"), "(none)");
  show(next);
  set(partA, "Width", "1 m");
  set(partA, "Width", "30 cm");
  show(base);
  EXPECT_EQ(recorded(next, partA, "Width"), "1: 30 cm");
  EXPECT_EQ(recorded(next, partB, "Width"), "(none)");
  EXPECT_EQ(recorded(next, nullptr, "Width"), "(none)");
  EXPECT_EQ(recorded(next, partA, "Nothing"), "(none)");
  const auto value =
      next->getDelta(true)->findEditOperation(partA, AttributePath("Width"))->getValue()->clone();
  EXPECT_EQ(value->getUnits(0), "cm");
  EXPECT_THROW(value->setValueFromString("9 m"), std::exception);
}

// One copy after the other is made from what the one before was.
TEST_F(VersionSwitchTest, EditOperations_OfMembersOfAllKindsInTurn_EachHoldsItsOwnValue) {
  using Read = std::pair<std::string, std::string>;
  ModelVersion *next = follow(base, "V");
  show(next);
  set(partA, "Width", "30 cm");
  set(partA, "Ratio", "0.25");
  set(partA, "Count", "7");
  set(partA, "Material", "3");
  set(partA, "Note", "a note");
  set(partA, "Law", "Cubic");
  set(partB, "Width", "40 mm");
  set(partB, "Ratio", "");
  set(root, "Title", "a title");
  show(base);
  const std::vector<std::pair<EntityModel::Entity *, const char *>> order = {
      {partA, "Width"}, {partA, "Ratio"}, {partA, "Law"},     {partA, "Count"},
      {partA, "Law"},   {partA, "Note"},  {root, "Title"},    {partB, "Width"},
      {partB, "Ratio"}, {partA, "Width"}, {partA, "Material"}};
  std::vector<Read> read;
  for (const auto &[entity, path] : order) {
    const EntityModel::Attribute *value =
        next->getDelta(true)->findEditOperation(entity, AttributePath(path))->getValue();
    ASSERT_NE(value, nullptr);
    read.emplace_back(value->getTypeDescription(),
                      value->hasValue() ? value->getValueAsString() : "(no value)");
  }
  const std::string law = attribute(partA, "Law").getTypeDescription();
  const std::string material = attribute(partA, "Material").getTypeDescription();
  EXPECT_EQ(read, (std::vector<Read>{{"real m", "30 cm"},
                                     {"real ", "0.25"},
                                     {law, "Cubic"},
                                     {"integer", "7"},
                                     {law, "Cubic"},
                                     {"text", "a note"},
                                     {"text", "a title"},
                                     {"real m", "40 mm"},
                                     {"real ", "(no value)"},
                                     {"real m", "30 cm"},
                                     {material, "3"}}));
}

TEST_F(VersionSwitchTest, EditOperations_AttributeWithLimitsOfItsOwn_OnlyItsValueHasThem) {
  ModelVersion *next = follow(base, "V");
  show(next);
  set(partA, "Count", "7");
  set(partB, "Count", "8");
  attribute(partA, "Count").setOptionalMaximum(9.0);
  const auto copyOf = [next](EntityModel::Entity *entity) {
    return next->getDelta(true)->findEditOperation(entity, AttributePath("Count"))->getValue()->clone();
  };
  EXPECT_NO_THROW(copyOf(partB)->setValueFromString("50"));
  EXPECT_THROW(copyOf(partA)->setValueFromString("50"), std::exception);
  EXPECT_NO_THROW(copyOf(partB)->setValueFromString("50"));
}

TEST_F(VersionSwitchTest, RowRule_OperationElsePreviousValue_EqualsTheSwitchedValue) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *row = alternate(copy, "Row");
  show(row);
  set(partA, "Width", "7");
  set(partA, "Note", "x");
  show(base);
  set(partA, "Width", "8");
  set(partA, "Count", "11");
  for (const char *path : {"Width", "Note", "Count", "Ratio", "Open", "Material", "Mass"}) {
    const EditOperation *operation = row->getDelta(true)->findEditOperation(partA, AttributePath(path));
    const std::string expected =
        operation != nullptr ? operation->getValue()->getValueAsString() : text(partA, path);
    show(row);
    EXPECT_EQ(text(partA, path), expected) << path;
    show(base);
  }
}

TEST_F(VersionSwitchTest, ManyEditsInOneVersion_AreAllFoundAndUndone) {
  std::vector<EntityModel::Entity *> parts;
  parts.reserve(200);
  for (int index = 0; index < 200; ++index) {
    parts.push_back(project->createEntity("Part", root, "Parts", "P"));
  }
  ModelVersion *next = follow(base, "V");
  show(next);
  for (int index = 0; index < 200; ++index) {
    set(parts[static_cast<std::size_t>(index)], "Ratio", std::to_string(index));
  }
  for (int index = 0; index < 200; ++index) {
    EXPECT_EQ(recorded(next, parts[static_cast<std::size_t>(index)], "Ratio"), "1: " + std::to_string(index));
  }
  show(base);
  for (EntityModel::Entity *part : parts) {
    EXPECT_EQ(text(part, "Ratio"), "0.5");
  }
}

TEST_F(VersionSwitchTest, EntityCreatedInAVersion_IsAbsentFromOthers) {
  ModelVersion *next = follow(base, "V");
  show(next);
  EntityModel::Entity *only = project->createEntity("Part", root, "Parts", "Only");
  set(only, "Count", "8");
  set(partA, "Next", "Only #" + std::to_string(Project::entityNumber(*only)));
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B", "Only"}));

  show(base);

  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B"}));
  EXPECT_EQ(only->findAttribute(AttributePath("Count")), nullptr);
  EXPECT_EQ(only->getOwnerEntityLink(), nullptr);
  EXPECT_FALSE(
      EntityModel::EntityEditor::setValue(only, AttributePath("Count"), "1", false, nullptr, true, true));
  show(next);
  EXPECT_EQ(text(only, "Count"), "8");
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), only);
  EXPECT_EQ(only->getOwnerEntityLink(), &list(root, "Parts"));
}

TEST_F(VersionSwitchTest, EntityDeletedInAVersion_IsStillInOthers) {
  ModelVersion *next = follow(base, "V");
  set(partA, "Next", "B #" + std::to_string(Project::entityNumber(*partB)));
  show(next);
  ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(partB, false, true));
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), nullptr);
  show(base);
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B"}));
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), partB);
  show(next);
  EXPECT_EQ(names(root, "Parts"), (Names{"A"}));
  EXPECT_EQ(partB->getName(true), "");
}

TEST_F(VersionSwitchTest, EntityMovedInAVersion_HasItsOldOwnerInOthers) {
  ModelVersion *next = follow(base, "V");
  show(next);
  ASSERT_TRUE(EntityModel::EntityEditor::moveEntity(partB, partA, &list(partA, "Parts"), true, -1));
  EXPECT_EQ(partB->getOwnerEntity(), partA);
  show(base);
  EXPECT_EQ(partB->getOwnerEntity(), root);
  show(next);
  EXPECT_EQ(partB->getOwnerEntity(), partA);
  EXPECT_EQ(names(root, "Parts"), (Names{"A"}));
}

TEST_F(VersionSwitchTest, ListChangedInAVersion_IsAnOperationOfAnotherKind) {
  ModelVersion *next = follow(base, "V");
  show(next);
  project->createEntity("Part", root, "Parts", "Only");
  EXPECT_EQ(recorded(next, root, "Parts"), "2: (no attribute)");
}

TEST_F(VersionSwitchTest, AlternateOfAVersionWithAListOfItsOwn_HasACopyOfIt) {
  ModelVersion *copy = follow(base, "Copy");
  show(copy);
  project->createEntity("Part", root, "Parts", "C");
  ModelVersion *row = alternate(copy, "Row");
  show(row);
  project->createEntity("Part", root, "Parts", "D");
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B", "C", "D"}));
  show(copy);
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B", "C"}));
}

TEST_F(VersionSwitchTest, ChangeSet_HoldsWhatDiffers) {
  ModelVersion *next = follow(base, "V");
  show(next);
  set(partA, "Width", "7");
  set(partA, "Count", "3");
  EntityModel::ChangeSet changes;

  tree.setCurrentVersion(base, &changes, false, nullptr, true);

  ASSERT_EQ(changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(changes.getModifiedEntities()[0].entity, partA);
  EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
            std::vector<EntityModel::Attribute *>{&attribute(partA, "Width")});
}

TEST_F(VersionSwitchTest, ChangeSet_BetweenVersionsThatEditTheSame_HoldsItOnce) {
  ModelVersion *one = follow(base, "One");
  ModelVersion *two = follow(base, "Two");
  show(one);
  set(partA, "Width", "7");
  set(partA, "Count", "4");
  show(two);
  set(partA, "Width", "8");
  set(partA, "Count", "4");
  EntityModel::ChangeSet changes;

  tree.setCurrentVersion(one, &changes, false, nullptr, true);

  ASSERT_EQ(changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
            std::vector<EntityModel::Attribute *>{&attribute(partA, "Width")});
}

TEST_F(VersionSwitchTest, RecordRun_InAVersionThatIsNotShown_LeavesTheShownOneAlone) {
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *row = alternate(copy, "Row");
  std::string problem;
  ASSERT_TRUE(project->recordRun(*row, {}, {{partA, AttributePath("Mass"), 4.5}}, problem)) << problem;
  EXPECT_FALSE(attribute(partA, "Mass").hasValue());
  show(row);
  EXPECT_EQ(text(partA, "Mass"), "4.5 kg");
}

TEST_F(VersionSwitchTest, RecordRun_InTheBaseline_ShowsThroughVersionsWithoutOwnResult) {
  ModelVersion *row = follow(base, "Row");
  ModelVersion *deeper = follow(row, "Deeper");
  show(deeper);
  set(partA, "Mass", "9");
  std::string problem;

  ASSERT_TRUE(project->recordRun(
      *base, {}, {{partA, AttributePath("Mass"), 1.0}, {partB, AttributePath("Mass"), 2.0}}, problem));

  EXPECT_EQ(text(partA, "Mass"), "9 kg");
  EXPECT_EQ(text(partB, "Mass"), "2 kg");
  ASSERT_TRUE(project->recordRun(*row, {}, {{partA, AttributePath("Mass"), 3.0}}, problem));
  EXPECT_EQ(text(partA, "Mass"), "9 kg");
  show(row);
  EXPECT_EQ(text(partA, "Mass"), "3 kg");
  show(base);
  EXPECT_EQ(text(partA, "Mass"), "1 kg");
  show(deeper);
  EXPECT_EQ(text(partA, "Mass"), "9 kg");
}

TEST_F(VersionSwitchTest, NoCurrentVersion_TakesNoEdits) {
  ASSERT_TRUE(tree.setCurrentVersion(nullptr, nullptr, false, nullptr, true));
  EXPECT_EQ(tree.getCurrentVersion(), nullptr);
  EXPECT_FALSE(project->setValue(partA, "Width", "1"));
  EXPECT_EQ(project->createEntity("Part", root, "Parts", "X"), nullptr);
  EXPECT_FALSE(EntityModel::EntityEditor::deleteEntity(partA, false, true));
  EXPECT_NE(project->createEntity("OptimizationData", root, "OptimizationDataList", ""), nullptr);
  show(base);
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B"}));
}

TEST_F(VersionSwitchTest, ForeignVersion_IsNotMadeCurrent) {
  auto other = Project::create(testSchema());
  EXPECT_FALSE(tree.setCurrentVersion(other->rootVersion(), nullptr, false, nullptr, true));
  EXPECT_EQ(tree.getCurrentVersion(), base);
}

} // namespace
} // namespace EmbeddedHost
