#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/AttributeSorter.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"

namespace EmbeddedHost {
namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::TypeRef;
using Names = std::vector<std::string>;

class ModelEntityTest : public ModelTest {
protected:
  Entity *create(const char *type, Entity *owner, const char *path, const char *name, int position = -1) {
    return EntityEditor::createEntity(TypeRef::fromLabel(type), owner, AttributePath(path), nullptr, true,
                                      true, false, name, position);
  }
  bool link(Entity *owner, const char *path, Entity *entity) {
    return EntityEditor::addEntity(owner, AttributePath(path), entity, false, true, true, true, false, -1);
  }
};

TEST_F(ModelEntityTest, EmptyPath_IsTheEntityItself) {
  EXPECT_EQ(EntityModel::findAttribute(partA, AttributePath()), partA);
  EXPECT_TRUE(partA->isEntity());
  EXPECT_EQ(static_cast<Attribute *>(partA)->asEntity(), partA);
  EXPECT_EQ(partA->getValueAsString(), "A");
  EXPECT_TRUE(partA->getAttributePath().empty());
}

TEST_F(ModelEntityTest, Attributes_KeepTheirAddress) {
  Attribute *width = &attribute(partA, "Width");
  set(partA, "Width", "5");
  show(follow(project->rootVersion(), "V"));
  EXPECT_EQ(&attribute(partA, "Width"), width);
  EXPECT_EQ(width->getOwnerEntity(), partA);
}

TEST_F(ModelEntityTest, FindAttribute_ByTypeAndThroughComposites) {
  EXPECT_EQ(partA->findAttribute(TypeRef::fromLabel("Width"), false), &attribute(partA, "Width"));
  EXPECT_EQ(partA->findAttribute(TypeRef::fromLabel("Height"), false), nullptr);
  EXPECT_EQ(partA->findAttribute(TypeRef::fromLabel("Height"), true), &attribute(partA, "Size.Height"));
  auto *size = dynamic_cast<EntityModel::CompositeAttribute *>(&attribute(partA, "Size"));
  ASSERT_NE(size, nullptr);
  EXPECT_EQ(size->findAttribute(AttributePath("Depth")), &attribute(partA, "Size.Depth"));
  EXPECT_EQ(size->findAttribute(AttributePath()), size);
  EXPECT_EQ(size->findAttribute(TypeRef::fromLabel("Height"), false), &attribute(partA, "Size.Height"));
  EXPECT_EQ(size->findAttribute(TypeRef::fromLabel("Width"), true), nullptr);
}

TEST_F(ModelEntityTest, Path_GoesOnThroughALink) {
  ASSERT_TRUE(link(partA, "Next", partB));
  EXPECT_EQ(project->attribute(partA, "Next.Width"), &attribute(partB, "Width"));
  EXPECT_EQ(project->attribute(partA, "Next.Size.Depth"), &attribute(partB, "Size.Depth"));
  EXPECT_EQ(project->attribute(partB, "Next.Width"), nullptr);
  EXPECT_TRUE(EntityEditor::setValue(partA, AttributePath("Next.Width"), "7", false, nullptr, true, true));
  EXPECT_EQ(text(partB, "Width"), "7 mm");
}

TEST_F(ModelEntityTest, CreateEntity_PositionsAndDefaults) {
  create("Part", root, "Parts", "First", 0);
  create("Part", root, "Parts", "Last", 99);
  Entity *unnamed = create("Part", root, "Parts", "", -1);
  EXPECT_EQ(names(root, "Parts"), (Names{"First", "A", "B", "Last", ""}));
  EXPECT_EQ(text(unnamed, "Width"), "100 mm");
  EXPECT_EQ(text(unnamed, "Size.Depth"), "2");
  EXPECT_EQ(unnamed->getOwnerEntityLink(), &list(root, "Parts"));
  EXPECT_EQ(unnamed->getOwnerEntity(), root);
}

TEST_F(ModelEntityTest, CreateEntity_WhatDoesNotFit_IsNull) {
  EXPECT_EQ(create("Nothing", root, "Parts", ""), nullptr);
  EXPECT_EQ(create("Part", root, "Nowhere", ""), nullptr);
  EXPECT_EQ(create("Part", root, "Title", ""), nullptr);
  EXPECT_EQ(create("Part", nullptr, "Parts", ""), nullptr);
  EXPECT_EQ(create("Mark", root, "Parts", ""), nullptr);
  EXPECT_EQ(create("Model", root, "Parts", ""), nullptr);
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B"}));
}

TEST_F(ModelEntityTest, CreateEntity_InALink_OnlyOnce) {
  Entity *core = create("Part", partA, "Core", "Core");
  ASSERT_NE(core, nullptr);
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Core")), core);
  EXPECT_EQ(create("Part", partA, "Core", "Second"), nullptr);
  EXPECT_EQ(core->getOwnerEntityLink(), &attribute(partA, "Core"));
}

TEST_F(ModelEntityTest, AddEntity_LinksWithoutOwning) {
  ASSERT_TRUE(link(partA, "Next", partB));
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), partB);
  EXPECT_EQ(partB->getOwnerEntityLink(), &list(root, "Parts"));
  EXPECT_TRUE(EntityEditor::deleteEntity(partA, false, true));
  EXPECT_EQ(names(root, "Parts"), (Names{"B"}));
  EXPECT_FALSE(link(partB, "Next", nullptr));
  EXPECT_FALSE(link(partB, "Marks", root));
}

TEST_F(ModelEntityTest, LinkTexts_NameTheEntityByItsNumber) {
  const std::string textOfB = "B #" + std::to_string(Project::entityNumber(*partB));
  ASSERT_TRUE(link(partA, "Next", partB));
  EXPECT_EQ(text(partA, "Next"), textOfB);
  set(partA, "Next", "");
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), nullptr);
  set(partA, "Next", textOfB);
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), partB);
}

TEST_F(ModelEntityTest, DeletedEntity_StaysAllocatedAndAnswersNothing) {
  ASSERT_TRUE(link(partA, "Next", partB));
  Attribute *width = &attribute(partB, "Width");
  Entity *inner = create("Part", partB, "Parts", "Inner");

  EXPECT_TRUE(EntityEditor::deleteEntity(partB, false, true));

  EXPECT_EQ(names(root, "Parts"), (Names{"A"}));
  for (Entity *gone : {partB, inner}) {
    EXPECT_EQ(gone->getName(true), "");
    EXPECT_EQ(gone->findAttribute(AttributePath("Width")), nullptr);
    EXPECT_EQ(gone->findAttribute(AttributePath()), nullptr);
    EXPECT_EQ(gone->getOwnerEntityLink(), nullptr);
    EXPECT_EQ(gone->getOwnerEntity(), nullptr);
    EXPECT_EQ(gone->getType().getKindCode(), EntityModel::Type::kNoKind);
    EXPECT_FALSE(gone->hasValue());
  }
  EXPECT_EQ(width->getOwnerEntity(), partB);
  EXPECT_EQ(EntityModel::getLinkedEntity(partA, AttributePath("Next")), nullptr);
  EXPECT_EQ(text(partA, "Next"), "");
  EXPECT_FALSE(EntityEditor::deleteEntity(partB, false, true));
  EXPECT_FALSE(EntityEditor::deleteEntity(nullptr, false, true));
  EXPECT_FALSE(EntityEditor::deleteEntity(root, false, true));
}

TEST_F(ModelEntityTest, DeleteEntities_DeletesAllOfThem) {
  std::vector<Entity *> both = {partA, partB};
  EXPECT_TRUE(EntityEditor::deleteEntities(both, false, true));
  EXPECT_EQ(names(root, "Parts"), Names{});
  EXPECT_FALSE(EntityEditor::deleteEntities(both, false, true));
}

TEST_F(ModelEntityTest, ListElements_OutsideTheRange_AreNull) {
  EntityModel::ListAttribute &parts = list(root, "Parts");
  EXPECT_EQ(parts.getCount(), 2);
  EXPECT_EQ(parts.getEntity(-1), nullptr);
  EXPECT_EQ(parts.getEntity(2), nullptr);
  EXPECT_EQ(parts.getEntity(1), partB);
  EXPECT_EQ(parts.indexOf(partB), 1);
  EXPECT_EQ(parts.indexOf(root), -1);
  EXPECT_EQ(parts.indexOf(nullptr), -1);
  EXPECT_EQ(parts.getLinkedEntity(), partA);
}

TEST_F(ModelEntityTest, MoveInList_GoesBeforeTheElementAtTheTarget) {
  create("Part", root, "Parts", "C");
  create("Part", root, "Parts", "D");
  EntityModel::ListAttribute &parts = list(root, "Parts");
  EXPECT_TRUE(parts.moveEntity(partA, 2));
  EXPECT_EQ(names(root, "Parts"), (Names{"B", "A", "C", "D"}));
  EXPECT_EQ(parts.indexOf(partA), 1);
  EXPECT_TRUE(parts.moveEntity(partA, 4));
  EXPECT_EQ(names(root, "Parts"), (Names{"B", "C", "D", "A"}));
  EXPECT_TRUE(parts.moveEntity(partA, 0));
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B", "C", "D"}));
  EXPECT_TRUE(parts.moveEntity(partB, 1));
  EXPECT_EQ(names(root, "Parts"), (Names{"A", "B", "C", "D"}));
  EXPECT_FALSE(parts.moveEntity(partA, 5));
  EXPECT_FALSE(parts.moveEntity(partA, -1));
  EXPECT_FALSE(parts.moveEntity(root, 0));
}

TEST_F(ModelEntityTest, MoveEntity_ToAnotherOwnerAndToTheEndOfItsList) {
  EXPECT_TRUE(EntityEditor::moveEntity(partA, root, &list(root, "Parts"), true, -1));
  EXPECT_EQ(names(root, "Parts"), (Names{"B", "A"}));
  EXPECT_TRUE(EntityEditor::moveEntity(partA, partB, &list(partB, "Parts"), true, -1));
  EXPECT_EQ(names(root, "Parts"), (Names{"B"}));
  EXPECT_EQ(names(partB, "Parts"), (Names{"A"}));
  EXPECT_EQ(partA->getOwnerEntity(), partB);
}

TEST_F(ModelEntityTest, MoveEntity_IntoItself_IsRefused) {
  ASSERT_TRUE(EntityEditor::moveEntity(partA, partB, &list(partB, "Parts"), true, -1));
  EXPECT_FALSE(EntityEditor::moveEntity(partB, partA, &list(partA, "Parts"), true, -1));
  EXPECT_FALSE(EntityEditor::moveEntity(partB, partB, &list(partB, "Parts"), true, -1));
  EXPECT_FALSE(EntityEditor::moveEntity(partB, root, nullptr, true, -1));
  EXPECT_EQ(names(root, "Parts"), (Names{"B"}));
}

TEST_F(ModelEntityTest, Rename_IsSeenInEveryVersion) {
  EXPECT_TRUE(project->renameEntity(partA, "Anna"));
  show(follow(project->rootVersion(), "V"));
  EXPECT_EQ(partA->getName(true), "Anna");
  partA->setValueFromString("Adam");
  EXPECT_EQ(partA->getName(false), "Adam");
}

TEST_F(ModelEntityTest, StudyStorage_IsInternalAndTheSameInEveryVersion) {
  EntityModel::ModelVersion *follower = follow(project->rootVersion(), "V");
  show(follower);
  Entity *study = create("OptimizationData", root, "OptimizationDataList", "");
  ASSERT_NE(study, nullptr);
  set(study, "CostFunction", "1 + 1");
  Entity *group = create("OptimizationGroup", study, "OptimizationInputs", "");
  Entity *variable = create("OptimizationAttribute", group, "OptimizationAttributes", "");
  EXPECT_EQ(text(variable, "LowBoundEnabled"), "0");
  ASSERT_TRUE(link(variable, "ParentEntity", partA));

  show(project->rootVersion());

  EXPECT_EQ(list(root, "OptimizationDataList").getEntity(0), study);
  EXPECT_EQ(text(study, "CostFunction"), "1 + 1");
  EXPECT_EQ(EntityModel::getLinkedEntity(variable, AttributePath("ParentEntity")), partA);
  EXPECT_TRUE(attribute(study, "CostFunction").isInternal());
  EXPECT_EQ(follower->getDelta(true)->findEditOperation(study, AttributePath("CostFunction")), nullptr);
  EXPECT_TRUE(EntityEditor::deleteEntity(study, false, true));
  show(follower);
  EXPECT_EQ(list(root, "OptimizationDataList").getCount(), 0);
  EXPECT_EQ(variable->findAttribute(AttributePath("Path")), nullptr);
}

TEST_F(ModelEntityTest, OptimisationTarget_TakesItsTwoTypesOnly) {
  Entity *study = create("OptimizationData", root, "OptimizationDataList", "");
  const AttributePath target(EntityModel::OptimisationTarget_t);
  EXPECT_TRUE(EntityEditor::setValueNoThrow(study, target, "Maximise", false, nullptr, true));
  EXPECT_FALSE(EntityEditor::setValueNoThrow(study, target, "Sideways", false, nullptr, true));
  EXPECT_EQ(EntityModel::getTypeValue(study, target, TypeRef()), EntityModel::Maximise_t);
}

TEST_F(ModelEntityTest, Sorter_OrdersByTreePositionThenPath) {
  const EntityModel::AttributeSorter before;
  EXPECT_TRUE(before(&attribute(partA, "Width"), &attribute(partB, "Count")));
  EXPECT_TRUE(before(&attribute(partA, "Count"), &attribute(partA, "Width")));
  EXPECT_FALSE(before(&attribute(partA, "Width"), &attribute(partA, "Width")));
}

TEST_F(ModelEntityTest, EntitiesOfOtherProjects_AreNotEdited) {
  auto other = Project::create(testSchema());
  Entity *foreign = other->createEntity("Part", other->rootEntity(), "Parts", "X");
  EXPECT_FALSE(EntityEditor::setValue(foreign, AttributePath("Width"), "1", false, nullptr, true, true));
  EXPECT_FALSE(link(partA, "Next", foreign));
  EXPECT_FALSE(EntityEditor::deleteEntity(foreign, false, true));
  EXPECT_EQ(other->attribute(foreign, "Width")->getValueAsString(), "100 mm");
}

} // namespace
} // namespace EmbeddedHost
