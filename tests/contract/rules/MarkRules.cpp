// The marks by which versions belong to studies, and what is computed from them.

#include "HostModel/StudyTypeName.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <QString>
#include <gtest/gtest.h>

namespace HostContract {

using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;
using VersionType = ModelVersion::VersionType;

namespace {

/// A baseline with a copy, an alternate of it, and a version that has nothing to do with them.
struct Family {
  explicit Family(Scene &scene)
      : base(scene.base()), copy(scene.follow(base, "Copy")), row(scene.alternate(copy, "Row")),
        other(scene.follow(base, "Other")) {}

  /// Marks them as a study does.
  void begin() const {
    base->setStudyType(ModelVersionStudyType::Parametric);
    copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  }

  ModelVersion *base;
  ModelVersion *copy;
  ModelVersion *row;
  ModelVersion *other;
};

} // namespace

std::vector<Rule> markRules() {
  return {
      {"Marks_WithoutStudy_EveryVersionIsOrdinary",
       [](Scene &scene) {
         const Family family(scene);
         for (const ModelVersion *version : {family.base, family.copy, family.row, family.other}) {
           EXPECT_EQ(version->getVersionType(), VersionType::Ordinary) << version->getLabel();
           EXPECT_EQ(version->getStudyBaseline(), nullptr) << version->getLabel();
           EXPECT_FALSE(version->isStudyBaseline()) << version->getLabel();
           EXPECT_FALSE(version->isStudyCase(true, false)) << version->getLabel();
           EXPECT_EQ(version->getStudyType(), ModelVersionStudyType::None) << version->getLabel();
         }
       }},
      {"Marks_StudyType_IsKeptAndMakesABaseline",
       [](Scene &scene) {
         for (const int type : {1, 3, 4, 77}) {
           scene.base()->setStudyType(static_cast<ModelVersionStudyType>(type));
           EXPECT_EQ(static_cast<int>(scene.base()->getStudyType()), type);
           EXPECT_TRUE(scene.base()->isStudyBaseline()) << type;
           EXPECT_EQ(scene.base()->getVersionType(), VersionType::StudyBaseline) << type;
         }
         scene.base()->setStudyType(ModelVersionStudyType::None);
         EXPECT_FALSE(scene.base()->isStudyBaseline());
         EXPECT_EQ(scene.base()->getVersionType(), VersionType::Ordinary);
       }},
      {"Marks_Baseline_IsItselfForABaselineAndWhatACaseFollows",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         EXPECT_EQ(family.base->getStudyBaseline(), family.base);
         EXPECT_EQ(family.copy->getStudyBaseline(), family.base);
         EXPECT_EQ(family.row->getStudyBaseline(), family.base);
       }},
      {"Marks_OrdinaryVersionOfABaseline_HasNoBaseline",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         EXPECT_EQ(family.other->getStudyBaseline(), nullptr);
         EXPECT_EQ(family.other->getVersionType(), VersionType::Ordinary);
         EXPECT_FALSE(family.other->isStudyCase(true, false));
       }},
      {"Marks_CopiesAndAlternates_AreNeitherOrdinaryNorBaselines",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         EXPECT_EQ(family.copy->getVersionType(), VersionType::Copy);
         EXPECT_EQ(family.row->getVersionType(), VersionType::Alternate);
       }},
      {"Marks_Alternate_IsACaseThroughItsCopy",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.row->clearStudy();
         EXPECT_TRUE(family.row->isStudyCase(true, false));
         EXPECT_TRUE(family.copy->isStudyCase(true, false));
         EXPECT_FALSE(family.base->isStudyCase(true, false));
       }},
      {"Marks_CopyCleared_TheAlternatesAreOrdinaryAgain",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.copy->clearStudy();
         EXPECT_FALSE(family.copy->isStudyCase(true, false));
         EXPECT_FALSE(family.row->isStudyCase(true, false));
         EXPECT_EQ(family.row->getVersionType(), VersionType::Ordinary);
         EXPECT_EQ(family.row->getStudyBaseline(), nullptr);
       }},
      {"Marks_CopyDestroyed_TheAlternatesAreOrdinaryAgain",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         ASSERT_TRUE(scene.destroy({family.copy}));
         EXPECT_FALSE(family.row->isStudyCase(true, false));
         EXPECT_EQ(family.row->getVersionType(), VersionType::Ordinary);
       }},
      {"Marks_ClearStudy_OfTheBaseline_LetsAStudyBeginAgain",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.base->clearStudy();
         EXPECT_EQ(family.base->getStudyType(), ModelVersionStudyType::None);
         EXPECT_EQ(family.base->getVersionType(), VersionType::Ordinary);
         EXPECT_EQ(family.base->getStudyBaseline(), nullptr);
       }},
      {"Marks_ClearStudy_IsHarmlessWithoutMarks",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.other->clearStudy();
         EXPECT_EQ(family.other->getVersionType(), VersionType::Ordinary);
         EXPECT_EQ(family.base->getVersionType(), VersionType::StudyBaseline);
       }},
      {"Marks_RemoveFromStudy_EndsTheCaseButNotTheVersion",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.row->removeFromStudy();
         EXPECT_FALSE(family.row->isStudyCase(true, false));
         EXPECT_EQ(family.row->getStudyBaseline(), nullptr);
         EXPECT_EQ(scene.find("Row"), family.row);
         EXPECT_TRUE(family.copy->isStudyCase(true, false));
       }},
      {"Marks_RemoveFromStudy_TakesTypeAndFlags",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.copy->removeFromStudy();
         EXPECT_FALSE(family.copy->isStudyCase(true, false));
         family.base->removeFromStudy();
         EXPECT_FALSE(family.base->isStudyBaseline());
       }},
      {"Marks_ClearStudy_EndsTheRemoval",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.row->removeFromStudy();
         family.row->clearStudy();
         EXPECT_TRUE(family.row->isStudyCase(true, false));
       }},
      {"Marks_CaseFlag_CanBeTakenBack",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         family.copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, false);
         EXPECT_FALSE(family.copy->isStudyCase(true, false));
       }},
      {"Marks_NewVersions_InheritNone",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         const ModelVersion *next = scene.follow(family.base, "Next");
         EXPECT_EQ(next->getStudyType(), ModelVersionStudyType::None);
         EXPECT_EQ(next->getVersionType(), VersionType::Ordinary);
         EXPECT_FALSE(scene.follow(family.copy, "Of the copy")->isStudyCase(true, false));
         EXPECT_FALSE(scene.alternate(family.copy, "Row 2")->isStudyCase(false, false));
       }},
      {"Marks_StudiesMayBegin_OnAnythingButACase",
       [](Scene &scene) {
         const Family family(scene);
         family.begin();
         EXPECT_TRUE(scene.tree().canBeginPACStudy(family.base));
         EXPECT_TRUE(scene.tree().canBeginPACStudy(family.other));
         EXPECT_FALSE(scene.tree().canBeginPACStudy(family.copy));
         EXPECT_FALSE(scene.tree().canBeginPACStudy(family.row));
         EXPECT_FALSE(scene.tree().canBeginPACStudy(nullptr));
       }},
      {"Marks_NamesOfStudyTypes_AreConstantAndWithoutPercentSigns",
       [](Scene & /*scene*/) {
         for (const int type : {0, 1, 3, 4, 77}) {
           const auto studyType = static_cast<ModelVersionStudyType>(type);
           const QString name = EntityModel::modelVersionStudyTypeToQString(studyType);
           EXPECT_FALSE(name.contains('%')) << type;
           EXPECT_TRUE(name == EntityModel::modelVersionStudyTypeToQString(studyType)) << type;
         }
       }},
  };
}

} // namespace HostContract
