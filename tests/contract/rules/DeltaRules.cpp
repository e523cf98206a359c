// Edits of versions, and how a version is read without making it current.

#include "HostModel/AttributePath.h"
#include "HostModel/Lookup.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::EditOperation;
using EntityModel::Entity;
using EntityModel::ModelDelta;
using EntityModel::ModelVersion;

namespace {

const EditOperation *valueSetIn(const ModelDelta *delta, Entity *entity, const std::string &path) {
  const EditOperation *operation =
      delta == nullptr ? nullptr : delta->findEditOperation(entity, AttributePath(path));
  return operation != nullptr && operation->getKind() == EditOperation::kValueSet ? operation : nullptr;
}

/// The value that the version has by the rule by which rows are loaded: what is kept elsewhere comes first, then the
/// version's own edits, then what the current version, which is its previous one, has now.
std::string textByRule(const Scene &scene, const ModelVersion *version, Entity *entity,
                       const std::string &path) {
  const EditOperation *operation = nullptr;
  if (const EntityModel::ModelVersionExternalData *external = version->getExternalData()) {
    for (auto item = external->begin(); item != external->end() && operation == nullptr; ++item) {
      operation = valueSetIn(*item, entity, path);
    }
  }
  operation = operation == nullptr ? valueSetIn(version->getDelta(true), entity, path) : operation;
  if (operation == nullptr) {
    return scene.text(entity, path);
  }
  return operation->getValue() == nullptr ? "(no attribute)" : operation->getValue()->getValueAsString();
}

const char *const kMembers[] = {"Width", "Ratio", "Open", "Note", "Mass"};

} // namespace

std::vector<Rule> deltaRules() {
  return {
      {"Delta_ReadingByRule_GivesWhatASwitchShows",
       [](Scene &scene) {
         scene.set(scene.partA(), "Mass", "12");
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *row = scene.alternate(copy, "Row");
         scene.show(row);
         scene.set(scene.partA(), "Width", "7");
         scene.set(scene.partA(), "Note", "of the row");
         scene.set(scene.partA(), "Mass", "");
         scene.show(scene.base());
         scene.set(scene.partA(), "Width", "8");
         scene.set(scene.partA(), "Ratio", "11");
         scene.set(scene.partA(), "Open", "0");
         for (const char *path : kMembers) {
           const std::string expected = textByRule(scene, row, scene.partA(), path);
           scene.show(row);
           EXPECT_EQ(scene.text(scene.partA(), path), expected) << path;
           scene.show(scene.base());
         }
         scene.show(row);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 7.0);
         EXPECT_EQ(scene.number(scene.partA(), "Ratio"), 11.0);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").hasValue());
       }},
      {"Delta_OfANewVersion_IsEmpty",
       [](Scene &scene) {
         scene.set(scene.partA(), "Note", "of the baseline");
         const ModelVersion *next = scene.follow(scene.base(), "V");
         for (const char *path : kMembers) {
           EXPECT_EQ(Scene::recorded(next, scene.partA(), path), "(none)") << path;
         }
       }},
      {"Delta_Version_ShowsWhatItsPreviousVersionHasNow",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.set(scene.partA(), "Width", "9");
         scene.show(next);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 9.0);
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Width"), "(none)");
       }},
      {"Delta_OwnEdit_IsNotOverwrittenByThePreviousVersion",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Note", "own");
         scene.show(scene.base());
         scene.set(scene.partA(), "Note", "of the baseline");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Note"), "1: own");
         scene.show(next);
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "own");
       }},
      {"Delta_HoldsTheLastValueSet",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Note", "first");
         scene.set(scene.partA(), "Note", "last");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Note"), "1: last");
         scene.show(scene.base());
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Note"), "1: last");
       }},
      {"Delta_EqualValue_IsRecordedAndFollowsNoLonger",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Width", scene.text(scene.partA(), "Width"));
         EXPECT_NE(Scene::recorded(next, scene.partA(), "Width"), "(none)");
         scene.show(scene.base());
         scene.set(scene.partA(), "Width", "15");
         scene.show(next);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
       }},
      {"Delta_ValueTakenAway_IsAnOperationWithoutValue",
       [](Scene &scene) {
         scene.set(scene.partA(), "Mass", "5");
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         EXPECT_EQ(scene.number(scene.partA(), "Mass"), 5.0);
         scene.set(scene.partA(), "Mass", "");
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").hasValue());
         scene.show(scene.base());
         EXPECT_EQ(scene.number(scene.partA(), "Mass"), 5.0);
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Mass"), "1: (no value)");
       }},
      {"Delta_WhatWasNotEdited_IsNotFound",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Note", "x");
         EXPECT_EQ(Scene::recorded(next, scene.partB(), "Note"), "(none)");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Width"), "(none)");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Nothing"), "(none)");
         EXPECT_EQ(Scene::recorded(next, nullptr, "Note"), "(none)");
       }},
      {"Delta_EditsOfTheBaseline_AreInNoFollower",
       [](Scene &scene) {
         const ModelVersion *next = scene.follow(scene.base(), "V");
         scene.set(scene.partA(), "Note", "x");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Note"), "(none)");
       }},
      {"Delta_Value_BelongsToNobody",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Width", "7");
         scene.show(scene.base());
         const EditOperation *operation = valueSetIn(next->getDelta(true), scene.partA(), "Width");
         ASSERT_NE(operation, nullptr);
         ASSERT_NE(operation->getValue(), nullptr);
         EXPECT_EQ(operation->getValue()->getOwnerEntity(), nullptr);
         const std::unique_ptr<EntityModel::Attribute> cell = operation->getValue()->clone();
         ASSERT_NE(cell, nullptr);
         EXPECT_EQ(cell->getStandardValue(), 7.0);
         EXPECT_EQ(cell->getTypeDescription(), scene.attribute(scene.partA(), "Width").getTypeDescription());
         cell->setValueFromString("8");
         scene.show(next);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 7.0);
       }},
      {"Delta_ListChanged_IsNoValueSet",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         ASSERT_NE(scene.create("Part", scene.root(), "Parts", "C"), nullptr);
         const EditOperation *operation =
             next->getDelta(true)->findEditOperation(scene.root(), AttributePath("Parts"));
         EXPECT_TRUE(operation == nullptr || operation->getKind() != EditOperation::kValueSet);
       }},
      {"Delta_ManyEdits_AreAllFoundAndUndone",
       [](Scene &scene) {
         std::vector<Entity *> parts(100);
         for (Entity *&part : parts) {
           part = scene.create("Part", scene.root(), "Parts", "P");
         }
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         for (std::size_t index = 0; index < parts.size(); ++index) {
           scene.set(parts[index], "Note", std::to_string(index));
         }
         scene.show(scene.base());
         for (std::size_t index = 0; index < parts.size(); ++index) {
           EXPECT_EQ(Scene::recorded(next, parts[index], "Note"), "1: " + std::to_string(index));
           EXPECT_EQ(scene.text(parts[index], "Note"), "");
         }
       }},
      {"Delta_Alternate_StartsWithTheEditsOfItsOrigin",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         scene.show(copy);
         scene.set(scene.partA(), "Note", "of the copy");
         ModelVersion *row = scene.alternate(copy, "Row");
         EXPECT_EQ(Scene::recorded(row, scene.partA(), "Note"), "1: of the copy");
         scene.set(scene.partA(), "Note", "later");
         scene.show(row);
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "of the copy");
         scene.set(scene.partA(), "Note", "of the row");
         scene.show(copy);
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "later");
       }},
      {"Delta_LinkSetInAVersion_IsSetNowhereElse",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         ASSERT_TRUE(scene.link(scene.partA(), "Next", scene.partB()));
         scene.show(scene.base());
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), nullptr);
         scene.show(next);
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), scene.partB());
       }},
  };
}

} // namespace HostContract
