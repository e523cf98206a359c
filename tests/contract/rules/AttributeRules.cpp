// What attributes, links, lists and entities answer.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/Type.h"
#include "HostModel/TypeConstants.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

#include <utility>

namespace HostContract {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::TypeRef;

namespace {

const char *const kMembers[] = {"Width", "Ratio", "Open", "Note", "Mass", "Next", "Parts"};

/// One letter for each kind that the attribute says it is of.
std::string kindsOf(const Attribute &attribute) {
  std::string kinds;
  kinds += attribute.isInteger() ? "i" : "";
  kinds += attribute.isReal() ? "r" : "";
  kinds += attribute.isChoice() ? "c" : "";
  kinds += attribute.isBoolean() ? "b" : "";
  kinds += attribute.isEntityLink() ? "k" : "";
  kinds += attribute.isTypeReference() ? "t" : "";
  kinds += attribute.isEntityList() ? "l" : "";
  kinds += attribute.isText() ? "x" : "";
  kinds += attribute.isAttributeReference() ? "a" : "";
  kinds += attribute.isEntity() ? "e" : "";
  return kinds;
}

} // namespace

std::vector<Rule> attributeRules() {
  return {
      {"Attribute_EmptyPath_IsTheEntityItself",
       [](Scene &scene) {
         EXPECT_EQ(EntityModel::findAttribute(scene.partA(), AttributePath()), scene.partA());
         EXPECT_EQ(EntityModel::findAttribute(scene.root(), AttributePath()), scene.root());
         EXPECT_TRUE(scene.partA()->getAttributePath().empty());
         EXPECT_EQ(static_cast<Attribute *>(scene.partA())->asEntity(), scene.partA());
         EXPECT_EQ(scene.partA()->getValueAsString(), "A");
       }},
      {"Attribute_OwnerAndPath_FindItAgain",
       [](Scene &scene) {
         for (const char *path : kMembers) {
           Attribute &found = scene.attribute(scene.partA(), path);
           ASSERT_EQ(found.getOwnerEntity(), scene.partA()) << path;
           EXPECT_EQ(EntityModel::findAttribute(found.getOwnerEntity(), found.getAttributePath()), &found)
               << path;
           const AttributePath read(found.getAttributePath().toString('.'));
           EXPECT_EQ(EntityModel::findAttribute(scene.partA(), read), &found) << path;
         }
       }},
      {"Attribute_MissingPath_IsNull",
       [](Scene &scene) {
         EXPECT_EQ(scene.find(scene.partA(), "Nothing"), nullptr);
         EXPECT_EQ(scene.find(scene.partA(), "Width.Deeper"), nullptr);
         EXPECT_EQ(scene.find(scene.partA(), "width"), nullptr);
         EXPECT_EQ(scene.find(scene.root(), "Width"), nullptr);
       }},
      {"Attribute_FindByType_FindsTheListsOfAStudy",
       [](Scene &scene) {
         Entity *study = scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         ASSERT_NE(study, nullptr);
         EXPECT_EQ(study->findAttribute(EntityModel::OptimizationInputs_t, false),
                   &scene.attribute(study, "OptimizationInputs"));
         EXPECT_EQ(study->findAttribute(TypeRef::fromLabel("Nothing"), false), nullptr);
         EXPECT_EQ(scene.root()->findAttribute(EntityModel::OptimizationDataList_t, false),
                   &scene.attribute(scene.root(), "OptimizationDataList"));
       }},
      {"Attribute_OwnerLink_IsTheListThatHoldsTheEntity",
       [](Scene &scene) {
         EXPECT_EQ(scene.partB()->getOwnerEntityLink(), &scene.list(scene.root(), "Parts"));
         EXPECT_EQ(scene.partB()->getOwnerEntityLink()->getOwnerEntity(), scene.root());
         EXPECT_EQ(scene.partB()->getOwnerEntityLink()->getAttributePath().toString('.'), "Parts");
         EXPECT_EQ(scene.root()->getOwnerEntityLink(), nullptr);
       }},
      {"Attribute_ListElements_OutsideTheRange_AreNull",
       [](Scene &scene) {
         const EntityModel::ListAttribute &parts = scene.list(scene.root(), "Parts");
         EXPECT_EQ(parts.getCount(), 2);
         EXPECT_EQ(parts.getEntity(-1), nullptr);
         EXPECT_EQ(parts.getEntity(2), nullptr);
         EXPECT_EQ(parts.getEntity(1), scene.partB());
         EXPECT_EQ(parts.indexOf(scene.partB()), 1);
         EXPECT_EQ(parts.indexOf(scene.root()), -1);
         EXPECT_EQ(parts.indexOf(nullptr), -1);
         EXPECT_EQ(parts.getLinkedEntity(), scene.partA());
         EXPECT_EQ(scene.list(scene.partA(), "Parts").getEntity(0), nullptr);
         EXPECT_EQ(scene.list(scene.partA(), "Parts").getLinkedEntity(), nullptr);
       }},
      {"Attribute_MoveInAList_CountsPositionsBeforeTheMove",
       [](Scene &scene) {
         scene.create("Part", scene.root(), "Parts", "C");
         scene.create("Part", scene.root(), "Parts", "D");
         EntityModel::ListAttribute &parts = scene.list(scene.root(), "Parts");
         EXPECT_TRUE(parts.moveEntity(scene.partA(), 2));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B", "A", "C", "D"}));
         EXPECT_TRUE(parts.moveEntity(scene.partA(), 4));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B", "C", "D", "A"}));
         EXPECT_TRUE(parts.moveEntity(scene.partA(), 0));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B", "C", "D"}));
       }},
      {"Attribute_MoveInAList_OutOfRangeOrNoElement_IsRefused",
       [](Scene &scene) {
         EntityModel::ListAttribute &parts = scene.list(scene.root(), "Parts");
         EXPECT_FALSE(parts.moveEntity(scene.partA(), 3));
         EXPECT_FALSE(parts.moveEntity(scene.partA(), -1));
         EXPECT_FALSE(parts.moveEntity(scene.root(), 0));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
       }},
      {"Attribute_Kinds_ExcludeEachOther",
       [](Scene &scene) {
         const std::pair<const char *, const char *> rows[] = {
             {"Width", "r"}, {"Open", "b"}, {"Note", "x"}, {"Mass", "r"}, {"Next", "k"}, {"Parts", "kl"}};
         for (const auto &[path, kinds] : rows) {
           EXPECT_EQ(kindsOf(scene.attribute(scene.partA(), path)), kinds) << path;
         }
         EXPECT_EQ(kindsOf(*scene.partA()), "e");
         Entity *study = scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         EXPECT_EQ(kindsOf(scene.attribute(study, "OptimisationTarget")), "t");
       }},
      {"Attribute_MoreKinds_ExcludeEachOther",
       [](Scene &scene) {
         EXPECT_EQ(kindsOf(scene.attribute(scene.partA(), "Count")), "i");
         EXPECT_EQ(kindsOf(scene.attribute(scene.partA(), "Material")), "c");
         EXPECT_EQ(kindsOf(scene.attribute(scene.partA(), "Law")), "t");
       },
       {Capability::MoreKinds}},
      {"Attribute_Casts_AnswerTheObjectOfThatKindOnly",
       [](Scene &scene) {
         Attribute &width = scene.attribute(scene.partA(), "Width");
         EXPECT_EQ(width.asEntity(), nullptr);
         EXPECT_EQ(width.asLink(), nullptr);
         EXPECT_EQ(width.asList(), nullptr);
         EXPECT_EQ(width.asTypeAttribute(), nullptr);
         EXPECT_EQ(width.getReferencedAttribute(), nullptr);
         Attribute &next = scene.attribute(scene.partA(), "Next");
         EXPECT_EQ(next.asLink(), &next);
         EXPECT_EQ(next.asList(), nullptr);
         Attribute &parts = scene.attribute(scene.partA(), "Parts");
         EXPECT_EQ(parts.asLink(), &parts);
         EXPECT_EQ(parts.asList(), &parts);
         EXPECT_EQ(scene.partA()->asLink(), nullptr);
       }},
      {"Attribute_TypeCodes_TellKindsApart",
       [](Scene &scene) {
         const int real = scene.attribute(scene.partA(), "Width").getType().getKindCode();
         EXPECT_NE(real, EntityModel::Type::kNoKind);
         EXPECT_EQ(real, scene.attribute(scene.partA(), "Ratio").getType().getKindCode());
         EXPECT_NE(real, scene.attribute(scene.partA(), "Note").getType().getKindCode());
         EXPECT_NE(real, scene.attribute(scene.partA(), "Open").getType().getKindCode());
         EXPECT_TRUE(scene.attribute(scene.partA(), "Width").getType().getReference() ==
                     TypeRef::fromLabel("Width"));
         EXPECT_TRUE(scene.partA()->getType().getReference() == TypeRef::fromLabel("Part"));
       }},
      {"Attribute_OrdinaryMembers_AreOfferedToStudies",
       [](Scene &scene) {
         for (const char *path : {"Width", "Ratio", "Open", "Note"}) {
           const Attribute &member = scene.attribute(scene.partA(), path);
           EXPECT_FALSE(member.isInternal()) << path;
           EXPECT_FALSE(member.isLocked()) << path;
           EXPECT_FALSE(member.isMonitor()) << path;
           EXPECT_FALSE(member.isReadOnly(false)) << path;
         }
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").isInternal());
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").isMonitor());
       }},
      {"Attribute_TypesOfTargets_AreComparable",
       [](Scene &scene) {
         Entity *one = scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         Entity *two = scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         EntityModel::TypeAttribute *target = scene.attribute(one, "OptimisationTarget").asTypeAttribute();
         EntityModel::TypeAttribute *other = scene.attribute(two, "OptimisationTarget").asTypeAttribute();
         ASSERT_NE(target, nullptr);
         ASSERT_NE(other, nullptr);
         EXPECT_TRUE(target->hasSameTypes(*other));
         EXPECT_TRUE(target->getTypeValue().isEmpty());
       }},
  };
}

} // namespace HostContract
