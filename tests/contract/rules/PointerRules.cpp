// Entities and attributes over versions and after their deletion: the library keeps their addresses.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;

namespace {

void expectNothing(Entity *entity) {
  EXPECT_EQ(entity->getName(true), "");
  EXPECT_EQ(entity->findAttribute(AttributePath("Width")), nullptr);
  EXPECT_EQ(entity->findAttribute(AttributePath()), nullptr);
  EXPECT_EQ(entity->getOwnerEntityLink(), nullptr);
  EXPECT_FALSE(EntityEditor::setValue(entity, AttributePath("Width"), "1", false, nullptr, true, true));
}

} // namespace

std::vector<Rule> pointerRules() {
  return {
      {"Pointer_Entities_KeepTheirAddress",
       [](Scene &scene) {
         Entity *root = scene.root();
         scene.show(scene.follow(scene.base(), "V"));
         EXPECT_EQ(scene.root(), root);
         EXPECT_EQ(scene.list(root, "Parts").getEntity(0), scene.partA());
         EXPECT_EQ(scene.list(root, "Parts").getEntity(1), scene.partB());
       }},
      {"Pointer_Attributes_KeepTheirAddress",
       [](Scene &scene) {
         std::vector<Attribute *> before;
         const char *const paths[] = {"Width", "Ratio", "Open", "Note", "Mass", "Next", "Parts"};
         for (const char *path : paths) {
           before.push_back(&scene.attribute(scene.partA(), path));
         }
         scene.set(scene.partA(), "Width", "5");
         scene.show(scene.follow(scene.base(), "V"));
         scene.set(scene.partA(), "Width", "6");
         std::size_t index = 0;
         for (const char *path : paths) {
           EXPECT_EQ(&scene.attribute(scene.partA(), path), before[index++]) << path;
         }
         EXPECT_EQ(before[0]->getStandardValue(), 6.0);
         scene.show(scene.base());
         EXPECT_EQ(before[0]->getStandardValue(), 5.0);
       }},
      {"Pointer_Versions_KeepTheirAddress",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         for (int count = 0; count < 50; ++count) {
           scene.follow(next, "W");
         }
         scene.show(next);
         EXPECT_EQ(scene.find("V"), next);
         EXPECT_EQ(*scene.base()->beginNext(), next);
       }},
      {"Pointer_EntityOfAnotherVersion_AnswersNothing",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         Entity *only = scene.create("Part", scene.root(), "Parts", "Only");
         ASSERT_NE(only, nullptr);
         scene.set(only, "Width", "8");
         scene.show(scene.base());
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         expectNothing(only);
         scene.show(next);
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B", "Only"}));
         EXPECT_EQ(scene.number(only, "Width"), 8.0);
         EXPECT_EQ(only->getOwnerEntityLink(), &scene.list(scene.root(), "Parts"));
       }},
      {"Pointer_LinkToAnEntityOfAnotherVersion_IsNull",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         ASSERT_TRUE(scene.link(scene.partA(), "Next", scene.partB()));
         scene.show(next);
         ASSERT_TRUE(EntityEditor::deleteEntity(scene.partB(), false, true));
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), nullptr);
         scene.show(scene.base());
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), scene.partB());
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
       }},
      {"Pointer_DeletedEntity_AnswersNothing",
       [](Scene &scene) {
         ASSERT_TRUE(scene.link(scene.partA(), "Next", scene.partB()));
         ASSERT_TRUE(EntityEditor::deleteEntity(scene.partB(), false, true));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A"}));
         expectNothing(scene.partB());
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), nullptr);
         EXPECT_EQ(scene.text(scene.partA(), "Next"), "");
       }},
      {"Pointer_ContentOfADeletedEntity_AnswersNothing",
       [](Scene &scene) {
         Entity *inner = scene.create("Part", scene.partB(), "Parts", "Inner");
         Entity *innermost = scene.create("Part", inner, "Parts", "Innermost");
         ASSERT_NE(innermost, nullptr);
         ASSERT_TRUE(EntityEditor::deleteEntity(scene.partB(), false, true));
         expectNothing(inner);
         expectNothing(innermost);
       }},
      {"Pointer_EntityMovedInAVersion_HasItsOldOwnerInOthers",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         EntityModel::ListAttribute &target = scene.list(scene.partA(), "Parts");
         ASSERT_TRUE(EntityEditor::moveEntity(scene.partB(), scene.partA(), &target, true, -1));
         EXPECT_EQ(scene.partB()->getOwnerEntityLink(), &target);
         scene.show(scene.base());
         EXPECT_EQ(scene.partB()->getOwnerEntityLink(), &scene.list(scene.root(), "Parts"));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         scene.show(next);
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A"}));
       }},
      {"Pointer_StudyEntities_KeepTheirAddress",
       [](Scene &scene) {
         Entity *study = scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         Entity *group = scene.create("OptimizationGroup", study, "OptimizationInputs", "");
         Entity *variable = scene.create("OptimizationAttribute", group, "OptimizationAttributes", "");
         ASSERT_NE(variable, nullptr);
         Attribute *path = &scene.attribute(variable, "Path");
         scene.show(scene.follow(scene.base(), "V"));
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getEntity(0), study);
         EXPECT_EQ(scene.list(study, "OptimizationInputs").getEntity(0), group);
         EXPECT_EQ(scene.list(group, "OptimizationAttributes").getEntity(0), variable);
         EXPECT_EQ(&scene.attribute(variable, "Path"), path);
       }},
  };
}

} // namespace HostContract
