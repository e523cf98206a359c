#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/EntityManager.h"
#include "HostModel/StudyTypeName.h"

#include <functional>

namespace EmbeddedHost {
namespace {

using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;
using VersionType = EntityModel::ModelVersion::VersionType;

class VersionMarksTest : public ModelTest {
protected:
  ModelVersion *base = project->rootVersion();
  ModelVersion *copy = follow(base, "Copy");
  ModelVersion *row = alternate(copy, "Row");
  ModelVersion *other = follow(base, "Other");

  void begin() {
    base->setStudyType(ModelVersionStudyType::Parametric);
    copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  }
};

TEST_F(VersionMarksTest, WithoutStudy_EveryVersionIsOrdinary) {
  for (const ModelVersion *version : {base, copy, row, other}) {
    EXPECT_EQ(version->getVersionType(), VersionType::Ordinary);
    EXPECT_EQ(version->getStudyBaseline(), nullptr);
    EXPECT_FALSE(version->isStudyBaseline());
    EXPECT_FALSE(version->isStudyCase(true, false));
    EXPECT_EQ(version->getStudyType(), ModelVersionStudyType::None);
  }
}

TEST_F(VersionMarksTest, WithStudy_TypesAndBaselines) {
  begin();
  EXPECT_EQ(base->getVersionType(), VersionType::StudyBaseline);
  EXPECT_EQ(copy->getVersionType(), VersionType::Copy);
  EXPECT_EQ(row->getVersionType(), VersionType::Alternate);
  EXPECT_EQ(other->getVersionType(), VersionType::Ordinary);
  EXPECT_EQ(base->getStudyBaseline(), base);
  EXPECT_EQ(copy->getStudyBaseline(), base);
  EXPECT_EQ(row->getStudyBaseline(), base);
  EXPECT_EQ(other->getStudyBaseline(), nullptr);
  EXPECT_FALSE(base->isStudyCase(true, false));
}

TEST_F(VersionMarksTest, Alternate_IsACaseThroughItsCopyOnly) {
  begin();
  row->clearStudy();
  EXPECT_TRUE(row->isStudyCase(true, false));
  EXPECT_FALSE(row->isStudyCase(false, false));
  copy->clearStudy();
  EXPECT_FALSE(row->isStudyCase(true, false));
  EXPECT_EQ(row->getVersionType(), VersionType::Ordinary);
}

TEST_F(VersionMarksTest, RemoveFromStudy_TakesTheMarksAway) {
  begin();
  row->removeFromStudy();
  EXPECT_FALSE(row->isStudyCase(true, false));
  EXPECT_EQ(row->getStudyBaseline(), nullptr);
  copy->removeFromStudy();
  EXPECT_FALSE(copy->isStudyCase(true, false));
  base->removeFromStudy();
  EXPECT_FALSE(base->isStudyBaseline());
  row->clearStudy();
  copy->clearStudy();
  copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  EXPECT_TRUE(row->isStudyCase(true, false));
}

TEST_F(VersionMarksTest, ClearStudy_OfTheBaseline_LetsAStudyBeginAgain) {
  begin();
  base->clearStudy();
  EXPECT_EQ(base->getStudyType(), ModelVersionStudyType::None);
  EXPECT_EQ(base->getVersionType(), VersionType::Ordinary);
  EXPECT_EQ(copy->getStudyBaseline(), nullptr);
  other->clearStudy();
  EXPECT_EQ(other->getVersionType(), VersionType::Ordinary);
}

TEST_F(VersionMarksTest, CaseFlag_CanBeTakenBack) {
  copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, false);
  EXPECT_FALSE(copy->isStudyCase(true, false));
}

TEST_F(VersionMarksTest, NewVersions_InheritNoMarks) {
  begin();
  ModelVersion *next = follow(base, "Next");
  EXPECT_EQ(next->getStudyType(), ModelVersionStudyType::None);
  ModelVersion *ofCopy = follow(copy, "OfCopy");
  EXPECT_FALSE(ofCopy->isStudyCase(true, false));
}

TEST_F(VersionMarksTest, ReadOnly_IsSetAndReleasedByText) {
  EXPECT_FALSE(Project::isReadOnly(*row));
  row->setReadOnlyVersion("true");
  EXPECT_TRUE(Project::isReadOnly(*row));
  row->setReadOnlyVersion("false");
  EXPECT_FALSE(Project::isReadOnly(*row));
}

TEST_F(VersionMarksTest, CanBeginStudy_OnAnythingButACase) {
  begin();
  EXPECT_TRUE(tree.canBeginPACStudy(base));
  EXPECT_TRUE(tree.canBeginPACStudy(other));
  EXPECT_FALSE(tree.canBeginPACStudy(copy));
  EXPECT_FALSE(tree.canBeginPACStudy(row));
  EXPECT_FALSE(tree.canBeginPACStudy(nullptr));
}

TEST_F(VersionMarksTest, EveryChangeOfMarks_NeedsSaving) {
  const struct {
    const char *name;
    std::function<void(ModelVersion &)> change;
  } rows[] = {
      {"type",
       [](ModelVersion &v) {
         v.setStudyType(ModelVersionStudyType::Parametric);
       }},
      {"clear",
       [](ModelVersion &v) {
         v.clearStudy();
       }},
      {"remove",
       [](ModelVersion &v) {
         v.removeFromStudy();
       }},
      {"flag",
       [](ModelVersion &v) {
         v.setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
       }},
      {"read-only",
       [](ModelVersion &v) {
         v.setReadOnlyVersion("true");
       }},
      {"label",
       [](ModelVersion &v) {
         v.setLabel("New");
       }},
  };
  for (const auto &row_ : rows) {
    EntityGUI::EntityManager::setNeedsSave(false);
    row_.change(*other);
    EXPECT_TRUE(project->needsSave()) << row_.name;
  }
}

TEST_F(VersionMarksTest, StudyTypeNames_HoldNoPercentSign) {
  for (const int type : {0, 1, 2, 3, 4, 17}) {
    const QString name =
        EntityModel::modelVersionStudyTypeToQString(static_cast<ModelVersionStudyType>(type));
    EXPECT_FALSE(name.isEmpty());
    EXPECT_FALSE(name.contains(QLatin1Char('%')));
  }
  EXPECT_EQ(EntityModel::modelVersionStudyTypeToQString(ModelVersionStudyType::Parametric),
            QLatin1String("Parametric"));
}

} // namespace
} // namespace EmbeddedHost
