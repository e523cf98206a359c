// Editing of the model: the layer that the library writes with. It tells nobody and refuses nothing to be read-only.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;

namespace {

bool setValue(Entity *entity, const char *path, const std::string &text) {
  return EntityEditor::setValue(entity, AttributePath(path), text, false, nullptr, true, true);
}

bool setNoThrow(Entity *entity, const char *path, const std::string &text) {
  return EntityEditor::setValueNoThrow(entity, AttributePath(path), text, false, nullptr, true);
}

} // namespace

std::vector<Rule> editorRules() {
  return {
      {"Editor_TellsNobody",
       [](Scene &scene) {
         const Notes notes(scene);
         scene.set(scene.partA(), "Width", "5");
         Entity *part = scene.create("Part", scene.root(), "Parts", "C");
         scene.link(scene.partA(), "Next", part);
         EntityEditor::moveEntity(part, scene.partA(), &scene.list(scene.partA(), "Parts"), true, -1);
         EntityEditor::deleteEntity(part, false, true);
         EXPECT_EQ(notes.lines(), Texts{});
       }},
      {"Editor_SetValue_SetsAndAnswersTrue",
       [](Scene &scene) {
         EXPECT_TRUE(setValue(scene.partA(), "Width", "5.25"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.25);
         EXPECT_TRUE(setValue(scene.partA(), "Open", "0"));
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "0");
         EXPECT_TRUE(setValue(scene.partA(), "Note", "any text"));
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "any text");
         EXPECT_EQ(scene.number(scene.partB(), "Width"), 4.0);
       }},
      {"Editor_SetValue_ThatIsThereAlready_AnswersTrue",
       [](Scene &scene) {
         EXPECT_TRUE(setValue(scene.partA(), "Note", "x"));
         EXPECT_TRUE(setValue(scene.partA(), "Note", "x"));
         EXPECT_TRUE(setValue(scene.partA(), "Width", scene.text(scene.partA(), "Width")));
       }},
      {"Editor_SetValue_OfAResult_IsDone",
       [](Scene &scene) {
         EXPECT_TRUE(setValue(scene.partA(), "Mass", "2.5"));
         EXPECT_EQ(scene.number(scene.partA(), "Mass"), 2.5);
         EXPECT_TRUE(scene.attribute(scene.partA(), "Mass").hasValue());
       }},
      {"Editor_EmptyText_TakesTheValueOfANumberAway",
       [](Scene &scene) {
         for (const char *path : {"Width", "Open", "Mass"}) {
           EXPECT_TRUE(setValue(scene.partA(), path, "")) << path;
           EXPECT_FALSE(scene.attribute(scene.partA(), path).hasValue()) << path;
           EXPECT_EQ(scene.text(scene.partA(), path), "") << path;
         }
       }},
      {"Editor_EmptyText_IsAText",
       [](Scene &scene) {
         scene.set(scene.partA(), "Note", "x");
         EXPECT_TRUE(setValue(scene.partA(), "Note", ""));
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "");
         EXPECT_TRUE(scene.attribute(scene.partA(), "Note").hasValue());
       }},
      {"Editor_BadText_ThrowsAndChangesNothing",
       [](Scene &scene) {
         EXPECT_THROW(setValue(scene.partA(), "Width", "wide"), std::exception);
         EXPECT_THROW(setValue(scene.partA(), "Width", "1,5"), std::exception);
         EXPECT_THROW(setValue(scene.partA(), "Open", "2"), std::exception);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "1");
       }},
      {"Editor_BadText_IsNotRecorded",
       [](Scene &scene) {
         EntityModel::ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         EXPECT_FALSE(setNoThrow(scene.partA(), "Width", "wide"));
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Width"), "(none)");
       }},
      {"Editor_SetValueNoThrow_AnswersFalseInstead",
       [](Scene &scene) {
         EXPECT_FALSE(setNoThrow(scene.partA(), "Width", "wide"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_TRUE(setNoThrow(scene.partA(), "Width", "5"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.0);
         EXPECT_FALSE(setNoThrow(nullptr, "Width", "5"));
         EXPECT_FALSE(setNoThrow(scene.partA(), "Nothing", "5"));
       }},
      {"Editor_SetBoolean_SetsBooleansOnly",
       [](Scene &scene) {
         EXPECT_TRUE(EntityEditor::setValueNoThrow(scene.partA(), AttributePath("Open"), false, true));
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "0");
         EXPECT_TRUE(EntityEditor::setValueNoThrow(scene.partA(), AttributePath("Open"), true, true));
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "1");
         EXPECT_FALSE(EntityEditor::setValueNoThrow(nullptr, AttributePath("Open"), true, true));
         EXPECT_FALSE(EntityEditor::setValueNoThrow(scene.partA(), AttributePath("Nothing"), true, true));
       }},
      {"Editor_NullEntityOrMissingPath_AnswersFalse",
       [](Scene &scene) {
         EXPECT_FALSE(setValue(nullptr, "Width", "1"));
         EXPECT_FALSE(setValue(scene.partA(), "Nothing", "1"));
         EXPECT_FALSE(EntityEditor::deleteEntity(nullptr, false, true));
         EXPECT_FALSE(scene.link(nullptr, "Next", scene.partB()));
         EXPECT_FALSE(scene.link(scene.partA(), "Nothing", scene.partB()));
         EXPECT_FALSE(EntityEditor::moveEntity(scene.partA(), scene.root(), nullptr, true, -1));
       }},
      {"Editor_CreateEntity_MakesAllMembers",
       [](Scene &scene) {
         Entity *part = scene.create("Part", scene.root(), "Parts", "C");
         ASSERT_NE(part, nullptr);
         EXPECT_EQ(part->getName(true), "C");
         EXPECT_EQ(scene.number(part, "Width"), 4.0);
         EXPECT_EQ(scene.number(part, "Ratio"), 0.5);
         EXPECT_EQ(scene.text(part, "Open"), "1");
         EXPECT_EQ(scene.text(part, "Note"), "");
         EXPECT_FALSE(scene.attribute(part, "Mass").hasValue());
         EXPECT_EQ(scene.list(part, "Parts").getCount(), 0);
         EXPECT_EQ(EntityModel::getLinkedEntity(part, AttributePath("Next")), nullptr);
         EXPECT_EQ(part->getOwnerEntityLink(), &scene.list(scene.root(), "Parts"));
       }},
      {"Editor_CreateEntity_AtItsPosition",
       [](Scene &scene) {
         scene.create("Part", scene.root(), "Parts", "First", 0);
         scene.create("Part", scene.root(), "Parts", "Last", -1);
         scene.create("Part", scene.root(), "Parts", "Second", 1);
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"First", "Second", "A", "B", "Last"}));
       }},
      {"Editor_CreateEntity_WithoutName_HasNone",
       [](Scene &scene) {
         const Entity *part = scene.create("Part", scene.root(), "Parts", "");
         ASSERT_NE(part, nullptr);
         EXPECT_EQ(part->getName(true), "");
         EXPECT_EQ(part->getName(false), "");
       }},
      {"Editor_CreateEntity_WhatDoesNotFit_IsNull",
       [](Scene &scene) {
         EXPECT_EQ(scene.create("No such type", scene.root(), "Parts", ""), nullptr);
         EXPECT_EQ(scene.create("Part", scene.root(), "Nowhere", ""), nullptr);
         EXPECT_EQ(scene.create("Part", scene.partA(), "Width", ""), nullptr);
         EXPECT_EQ(scene.create("Part", nullptr, "Parts", ""), nullptr);
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
       }},
      {"Editor_AddEntity_LinksWithoutOwning",
       [](Scene &scene) {
         ASSERT_TRUE(scene.link(scene.partA(), "Next", scene.partB()));
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), scene.partB());
         EXPECT_EQ(scene.partB()->getOwnerEntityLink(), &scene.list(scene.root(), "Parts"));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         ASSERT_TRUE(EntityEditor::deleteEntity(scene.partA(), false, true));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B"}));
       }},
      {"Editor_AddEntity_Null_IsRefused",
       [](Scene &scene) {
         EXPECT_FALSE(scene.link(scene.partA(), "Next", nullptr));
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), nullptr);
       }},
      {"Editor_MoveEntity_ToTheEndOfAList",
       [](Scene &scene) {
         EXPECT_TRUE(EntityEditor::moveEntity(scene.partA(), scene.root(), &scene.list(scene.root(), "Parts"),
                                              true, -1));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B", "A"}));
         scene.create("Part", scene.partB(), "Parts", "Inner");
         EXPECT_TRUE(EntityEditor::moveEntity(scene.partA(), scene.partB(),
                                              &scene.list(scene.partB(), "Parts"), true, -1));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B"}));
         EXPECT_EQ(scene.names(scene.partB(), "Parts"), (Texts{"Inner", "A"}));
         EXPECT_EQ(scene.partA()->getOwnerEntityLink(), &scene.list(scene.partB(), "Parts"));
       }},
      {"Editor_MoveEntity_IntoItself_IsRefused",
       [](Scene &scene) {
         ASSERT_TRUE(EntityEditor::moveEntity(scene.partA(), scene.partB(),
                                              &scene.list(scene.partB(), "Parts"), true, -1));
         EXPECT_FALSE(EntityEditor::moveEntity(scene.partB(), scene.partA(),
                                               &scene.list(scene.partA(), "Parts"), true, -1));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B"}));
         EXPECT_EQ(scene.names(scene.partB(), "Parts"), (Texts{"A"}));
       }},
      {"Editor_DeleteEntity_TwiceOrTheRoot_IsRefused",
       [](Scene &scene) {
         EXPECT_TRUE(EntityEditor::deleteEntity(scene.partB(), false, true));
         EXPECT_FALSE(EntityEditor::deleteEntity(scene.partB(), false, true));
         EXPECT_FALSE(EntityEditor::deleteEntity(scene.root(), false, true));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A"}));
       }},
      {"Editor_DeleteEntities_DeletesAllOfThem",
       [](Scene &scene) {
         std::vector<Entity *> both = {scene.partA(), scene.partB()};
         EXPECT_TRUE(EntityEditor::deleteEntities(both, false, true));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), Texts{});
       }},
      {"Editor_Target_TakesItsTwoTypesOnly",
       [](Scene &scene) {
         Entity *study = scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         const AttributePath target(EntityModel::OptimisationTarget_t);
         EXPECT_TRUE(EntityModel::getTypeValue(study, target, EntityModel::TypeRef()).isEmpty());
         EXPECT_TRUE(setNoThrow(study, "OptimisationTarget", "Maximise"));
         EXPECT_FALSE(setNoThrow(study, "OptimisationTarget", "Sideways"));
         EXPECT_EQ(EntityModel::getTypeValue(study, target, EntityModel::TypeRef()), EntityModel::Maximise_t);
         EXPECT_TRUE(setNoThrow(study, "OptimisationTarget", "Minimise"));
         EXPECT_EQ(EntityModel::getTypeValue(study, target, EntityModel::TypeRef()), EntityModel::Minimise_t);
       }},
  };
}

} // namespace HostContract
