#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ProjectFixture.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/ModellingImpact.h"

#include <vector>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;

/// Entities that several places own, that own each other in a circle, or that are nested deeply.
class OwnerCircleTest : public ProjectTest {
protected:
  Entity *partC = project->createEntity("Part", root, "Parts", "C");
  ModelVersion *before = follow(base, "Before");
  ModelVersion *after = follow(before, "After");

  bool move(Entity *entity, Entity *owner, const std::string &path = "Parts") {
    return EntityEditor::moveEntity(entity, owner, attribute(owner, path).asLink(), false, -1);
  }
  static std::string ownerOf(Entity *entity) {
    return entity->getOwnerEntity() == nullptr ? "(none)" : entity->getOwnerEntity()->getName(true);
  }
  // In the later version C goes into A, then in the earlier one into B.
  void moveInBoth() {
    show(after);
    ASSERT_TRUE(move(partC, partA));
    show(before);
    ASSERT_TRUE(move(partC, partB));
  }
  // In the later version A goes into B, which is deleted there; then B goes into A in the earlier one.
  void makeCircle() {
    show(after);
    ASSERT_TRUE(move(partA, partB));
    ASSERT_TRUE(EntityEditor::deleteEntity(partB, true, false));
    show(before);
    ASSERT_TRUE(move(partB, partA));
    show(after);
  }
  void alter(const std::string &sql) const {
    Database(file, Database::Access::ReadWrite).execute(sql.c_str());
  }
};

TEST_F(OwnerCircleTest, EntityMovedInTwoVersions_IsWhereTheLaterVersionHasIt) {
  moveInBoth();
  for (int round = 0; round < 2; ++round) {
    show(after);
    EXPECT_EQ(ownerOf(partC), "A");
    show(before);
    EXPECT_EQ(ownerOf(partC), "B");
    show(base);
    EXPECT_EQ(ownerOf(partC), "Model");
  }
  EXPECT_EQ(tree.findVersion("After", partC), after);
}

TEST_F(OwnerCircleTest, EntityMovedInTwoVersions_StaysThereWhenItsFormerListIsEdited) {
  moveInBoth();
  show(after);
  ASSERT_NE(project->createEntity("Part", partB, "Parts", "New"), nullptr);
  EXPECT_EQ(ownerOf(partC), "A");
  show(base);
  show(after);
  EXPECT_EQ(ownerOf(partC), "A");
}

TEST_F(OwnerCircleTest, EntityMovedInTwoVersions_IsDeletedInTheLaterOneOnly) {
  moveInBoth();
  show(after);
  ASSERT_TRUE(EntityEditor::deleteEntity(partC, true, false));
  EXPECT_EQ(partC->getName(true), "");
  show(before);
  EXPECT_EQ(ownerOf(partC), "B");
  show(after);
  EXPECT_EQ(partC->getName(true), "");
  EXPECT_EQ(tree.findVersion("After", partC), nullptr);
}

TEST_F(OwnerCircleTest, DeletedEntitiesThatOwnEachOther_AreSavedAndReadAgain) {
  makeCircle();
  saveAs();
  closeProject();
  const auto other = openCopy(OpenMode::ReadWrite);
  const HostModel::HostInstallation installed(*other);
  EntityModel::ChangeManager &versions = other->changeManager();
  Entity *first = other->parts().model.findEntity(2);
  Entity *second = other->parts().model.findEntity(3);
  EXPECT_EQ(first->getName(true) + second->getName(true), "");
  EXPECT_EQ(versions.findVersion("After", first), nullptr);
  ASSERT_TRUE(
      versions.setCurrentVersion(versions.findVersion("Before", nullptr), nullptr, false, nullptr, true));
  EXPECT_EQ(ownerOf(first), "Model");
  EXPECT_EQ(ownerOf(second), "A");
  // Not the shown version, so that the circle is walked.
  EXPECT_EQ(versions.findVersion("After", first), nullptr);
  EXPECT_EQ(versions.findVersion("After", second), nullptr);
}

TEST_F(OwnerCircleTest, ImpactOfDeletedEntitiesThatOwnEachOther_IsFound) {
  makeCircle();
  const Entity *deleted = project->parts().model.findEntity(3);
  EXPECT_FALSE(project->getModellingImpact()->hasModellingImpact(deleted, "NoCFDImpact", true));
  EXPECT_EQ(deleted->getName(true), "");
}

TEST_F(OwnerCircleTest, RootThatIsOwned_IsDamage) {
  saveAs();
  closeProject();
  alter("UPDATE value SET value = '2+1+3+' WHERE value = '2+3+4+'");
  EXPECT_EQ(problemOfOpening(OpenMode::ReadOnly),
            "The project " + file +
                " is damaged: it holds an owner of an entity that it cannot own (version 1, entity 1).");
}

TEST_F(OwnerCircleTest, EntityOfTheProjectInAListOfAVersion_IsDamage) {
  saveAs();
  closeProject();
  alter("UPDATE entity SET project_level = 1 WHERE number = 3");
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite),
            "The project " + file +
                " is damaged: it holds an owner of an entity that it cannot own (version 1, entity 1).");
}

TEST(OwnerChainTest, DeepNesting_IsSearchedAndDeletedWithoutDeepCalls) {
  MemberType list;
  list.label = "Parts";
  list.kind = MemberKind::EntityList;
  ModelSchema schema;
  ASSERT_EQ(schema.declareType("Part", {list}), "");
  list.isProjectLevel = true;
  ASSERT_EQ(schema.declareRootMembers({list}), "");
  const auto project = Project::create(schema);
  Model &model = project->parts().model;
  const AttributePath path("Parts");
  constexpr int kDepth = 300000;
  Slot *owner = model.root().findSlot(path);
  ModelEntity *first = nullptr;
  ModelEntity *last = nullptr;
  for (int depth = 0; depth < kDepth; ++depth) {
    last = &model.restore(model.nextNumber(), schema.findType("Part"), "P", true);
    first = first == nullptr ? last : first;
    Model::show(*owner, std::make_shared<ListContent>(ListContent{{{last, true}}}));
    owner = last->findSlot(path);
  }
  EXPECT_TRUE(last->exists());
  EXPECT_EQ(project->changeManager().findVersion("Base", last), project->rootVersion());
  EXPECT_FALSE(project->getModellingImpact()->hasModellingImpact(last, "NoCFDImpact", true));
  EXPECT_TRUE(model.remove(*first));
  EXPECT_FALSE(last->exists());
  EXPECT_EQ(model.deletedEntities().size(), 300000U);
}

} // namespace
} // namespace EmbeddedHost
