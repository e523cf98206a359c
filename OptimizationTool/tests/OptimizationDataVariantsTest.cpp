#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace OptimizationTool {
namespace {

using EntityModel::EditOperation;
using StudyTesting::AdjustedDelta;
using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

class OptimizationDataVariantsTest : public ::testing::Test {
protected:
  // Rows "Base" (10, 20, 100, 50), "A" (11, 21, 100, 50) and "B" (12, 22, 100, 50).
  void beginWithRows() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  // A detached value like the one at the path, with another text.
  std::unique_ptr<EntityModel::Attribute> value(EntityModel::Entity *entity, const std::string &path,
                                                const std::string &text) {
    std::unique_ptr<EntityModel::Attribute> copy =
        study.host().original(study.attribute(entity, path))->clone();
    copy->setValueFromString(text);
    return copy;
  }

  // Loads the rows again, with these deltas kept outside the own delta of a version.
  void reloadWithExternalData(const std::string &label, std::vector<EntityModel::ModelDelta *> deltas) {
    study.adjusted().setExternalData(study.project().changeManager().findVersion(label, nullptr),
                                     std::move(deltas));
    study.reopen();
    study.data().initializeVariants(nullptr);
  }

  EntityModel::Entity *fan() { return study.host().original(study.fan()); }

  RecordedStudy study;
};

TEST_F(OptimizationDataVariantsTest, GetVariantName_RowExists_IsItsName) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantName(0), "Base");
  EXPECT_EQ(study.data().getVariantName(1), "A");
  EXPECT_EQ(study.data().getVariantName(2), "B");
}

TEST_F(OptimizationDataVariantsTest, GetVariantName_IndexOutOfRange_IsEmpty) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantName(3), "");
  EXPECT_EQ(study.data().getVariantName(99), "");
}

TEST_F(OptimizationDataVariantsTest, ContainsVariant_ComparesNamesByteForByte) {
  beginWithRows();

  EXPECT_TRUE(study.data().containsVariant("A"));
  EXPECT_TRUE(study.data().containsVariant("Base"));
  EXPECT_FALSE(study.data().containsVariant("a"));
  EXPECT_FALSE(study.data().containsVariant("A "));
  EXPECT_FALSE(study.data().containsVariant(""));
}

TEST_F(OptimizationDataVariantsTest, GetVariantIndex_RowExists_IsItsPosition) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantIndex("Base"), std::optional<std::size_t>(0));
  EXPECT_EQ(study.data().getVariantIndex("B"), std::optional<std::size_t>(2));
}

TEST_F(OptimizationDataVariantsTest, GetVariantIndex_NoSuchRow_IsEmpty) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantIndex("C"), std::nullopt);
}

TEST_F(OptimizationDataVariantsTest, GetVariantIndex_TwoRowsWithOneName_IsTheFirst) {
  beginWithRows();
  study.data().setVariantName(2, "A");

  EXPECT_EQ(study.data().getVariantIndex("A"), std::optional<std::size_t>(1));
}

TEST_F(OptimizationDataVariantsTest, GetVariantCost_RowIsPriced_IsItsCost) {
  beginWithRows();
  study.data().setCostFunction("%Fan.Speed% + %Fan.Power%");

  EXPECT_EQ(study.data().getVariantCost(0), std::optional<double>(110.0));
  EXPECT_EQ(study.data().getVariantCost(2), std::optional<double>(112.0));
}

TEST_F(OptimizationDataVariantsTest, GetVariantCost_WithoutCostFunction_IsEmpty) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantCost(1), std::nullopt);
}

TEST_F(OptimizationDataVariantsTest, GetVariantCost_IndexOutOfRange_IsEmpty) {
  beginWithRows();
  study.data().setCostFunction("1.0");

  EXPECT_EQ(study.data().getVariantCost(3), std::nullopt);
}

TEST_F(OptimizationDataVariantsTest, GetVariantGroup_CellExists_IsItsCopy) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantGroup(true, 1, 1)->getValueAsString(), "21");
  EXPECT_EQ(study.data().getVariantGroup(false, 2, 0)->getValueAsString(), "100");
  EXPECT_EQ(study.data().getVariantGroup(true, 1, 1)->getOwnerEntity(), nullptr);
}

TEST_F(OptimizationDataVariantsTest, GetVariantGroup_RowOutOfRange_IsNull) {
  beginWithRows();

  EXPECT_EQ(study.data().getVariantGroup(true, 3, 0), nullptr);
  EXPECT_EQ(study.data().getVariantGroup(false, 3, 0), nullptr);
}

TEST_F(OptimizationDataVariantsTest, GetVariantGroup_GroupEqualToCount_IsNullThoughTheRowHasTheCell) {
  beginWithRows();
  ASSERT_TRUE(study.data().getGroups(true).remove(1));
  ASSERT_TRUE(study.data().getGroups(false).remove(1));

  EXPECT_EQ(study.data().getVariantGroup(true, 1, 1), nullptr);
  EXPECT_EQ(study.data().getVariantGroup(false, 1, 1), nullptr);
  EXPECT_NE(study.data().getVariantGroup(true, 1, 0), nullptr);
}

TEST_F(OptimizationDataVariantsTest, GetVariantGroup_RowHasFewerCells_IsNull) {
  beginWithRows();
  study.data().getGroups(true).appendGroup();
  study.data().getGroups(false).appendGroup();

  EXPECT_EQ(study.data().getVariantGroup(true, 1, 2), nullptr);
  EXPECT_EQ(study.data().getVariantGroup(false, 1, 2), nullptr);
}

TEST_F(OptimizationDataVariantsTest, VariantStandardVal_IsTheColumnInRowOrder) {
  beginWithRows();

  EXPECT_EQ(study.data().variantStandardVal(true, 1), (std::vector<double>{20.0, 21.0, 22.0}));
  EXPECT_EQ(study.data().variantStandardVal(false, 0), (std::vector<double>{100.0, 100.0, 100.0}));
}

TEST_F(OptimizationDataVariantsTest, VariantStandardVal_NoSuchCell_IsZeroForEachRow) {
  beginWithRows();

  EXPECT_EQ(study.data().variantStandardVal(false, 2), (std::vector<double>{0.0, 0.0, 0.0}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_HasNameOfVersionAndNoCost) {
  beginWithRows();
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.data().getVariantName(1), "A");
  EXPECT_EQ(study.data().getVariantCost(1), std::nullopt);
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_TakesEditsOfItsVersionBeforeTheValuesThatTheModelHoldsNow) {
  beginWithRows();
  study.setValueIn("A", study.fan(), "Noise", "51");
  study.setValueIn("Base", study.fan(), "Power", "101");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(0), (Texts{"10", "20", "101", "50"}));
  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "101", "51"}));
  EXPECT_EQ(study.cells(2), (Texts{"12", "22", "101", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_EqualsTheValuesSeenAfterSwitchingToItsVersion) {
  beginWithRows();
  study.setValueIn("B", study.fan(), "Speed", "0.30000000000000004");
  study.setValueIn("B", study.fan(), "Power", "");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(2), (Texts{"0.30000000000000004", "22", "", "50"}));
  EXPECT_EQ(study.cells(2),
            (Texts{study.valueIn("B", study.fan(), "Speed"), study.valueIn("B", study.fan(), "Angle"),
                   study.valueIn("B", study.fan(), "Power"), study.valueIn("B", study.fan(), "Noise")}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_TakesTheFirstVariableOfAGroupOnly) {
  beginWithRows();
  study.setValueIn("A", study.pump(), "Speed", "99");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_ExternalDataComesBeforeTheOwnDelta) {
  beginWithRows();
  AdjustedDelta external;
  external.add(fan(), "Speed", EditOperation::kValueSet, value(study.fan(), "Speed", "31"));
  external.add(fan(), "Power", EditOperation::kValueSet, value(study.fan(), "Power", "131"));

  reloadWithExternalData("A", {&external});

  EXPECT_EQ(study.cells(1), (Texts{"31", "21", "131", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_FirstItemOfExternalDataWins) {
  beginWithRows();
  AdjustedDelta first;
  AdjustedDelta second;
  first.add(fan(), "Speed", EditOperation::kValueSet, value(study.fan(), "Speed", "31"));
  second.add(fan(), "Speed", EditOperation::kValueSet, value(study.fan(), "Speed", "32"));
  second.add(fan(), "Angle", EditOperation::kValueSet, value(study.fan(), "Angle", "42"));

  reloadWithExternalData("A", {&first, &second});

  EXPECT_EQ(study.cells(1), (Texts{"31", "42", "100", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_ItemOfExternalDataWithoutDelta_IsSkipped) {
  beginWithRows();
  AdjustedDelta external;
  external.add(fan(), "Speed", EditOperation::kValueSet, value(study.fan(), "Speed", "31"));

  reloadWithExternalData("A", {nullptr, &external, nullptr});

  EXPECT_EQ(study.cells(1), (Texts{"31", "21", "100", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_OperationOfAnotherKindHidesNoLaterOne) {
  beginWithRows();
  AdjustedDelta first;
  AdjustedDelta second;
  first.add(fan(), "Speed", 2, value(study.fan(), "Speed", "31"));
  first.add(fan(), "Angle", 3, value(study.fan(), "Angle", "41"));
  second.add(fan(), "Speed", EditOperation::kValueSet, value(study.fan(), "Speed", "32"));

  reloadWithExternalData("A", {&first, &second});

  EXPECT_EQ(study.cells(1), (Texts{"32", "21", "100", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_OperationOfAnotherKindAlone_LeavesTheModelsValue) {
  beginWithRows();
  AdjustedDelta external;
  external.add(fan(), "Power", 2, value(study.fan(), "Power", "131"));

  reloadWithExternalData("A", {&external});

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_OperationThatCarriesNoValue_GivesNoCell) {
  beginWithRows();
  AdjustedDelta external;
  external.add(fan(), "Speed", EditOperation::kValueSet, nullptr);

  reloadWithExternalData("A", {&external});

  EXPECT_EQ(study.cells(1), (Texts{"21", "-", "100", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_AsksForEditsNotYetSavedWithTheEditingFlagSet) {
  beginWithRows();
  study.reopen();
  study.host().record("ModelVersion::getDelta");

  study.data().initializeVariants(nullptr);

  Texts asked = study.host().textsWithState();
  asked.erase(
      std::remove_if(asked.begin(), asked.end(),
                     [](const std::string &text) { return text.find("getDelta") == std::string::npos; }),
      asked.end());
  EXPECT_EQ(asked, (Texts{
                       R"(E- ModelVersion::getDelta("Base", includeUnsaved=true))",
                       R"(E- ModelVersion::getDelta("A", includeUnsaved=true))",
                       R"(E- ModelVersion::getDelta("B", includeUnsaved=true))",
                   }));
  EXPECT_FALSE(study.data().isEditingVersions());
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_FirstVariableOfAnInputGroupIsGone_CellsMoveUp) {
  study.makeEntity();
  study.data().addGroup(true, study.attribute(study.pump(), "Speed"));
  study.data().addGroup(true, study.attribute(study.fan(), "Angle"));
  study.data().addGroup(false, study.attribute(study.fan(), "Noise"));
  ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(study.pump(), false, true));

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(0), (Texts{"20", "-", "50"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_FirstVariableOfAGroupIsGone_TheSecondDoesNotTakeItsPlace) {
  study.makeEntity();
  study.data().addGroup(true, study.attribute(study.pump(), "Speed"));
  study.data().getGroup(true, 0).appendVariable(study.attribute(study.fan(), "Speed"));
  ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(study.pump(), false, true));

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(0), (Texts{"-"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_FirstVariableOfAnOutputGroupIsGone_CellsMoveUp) {
  study.makeEntity();
  study.data().addGroup(true, study.attribute(study.fan(), "Angle"));
  study.data().addGroup(false, study.attribute(study.pump(), "Power"));
  study.data().addGroup(false, study.attribute(study.fan(), "Noise"));
  ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(study.pump(), false, true));

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(0), (Texts{"20", "50", "-"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_GroupWithoutVariables_GetsNoCell) {
  study.makeEntity();
  study.data().getGroups(true).appendGroup();
  study.data().addGroup(true, study.attribute(study.fan(), "Angle"));
  study.data().getGroups(false).appendGroup();
  study.data().addGroup(false, study.attribute(study.fan(), "Noise"));

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.cells(0), (Texts{"20", "-", "50", "-"}));
}

TEST_F(OptimizationDataVariantsTest, LoadedRow_IsPricedAsLoaded) {
  beginWithRows();
  study.data().setCostFunction("%Fan.Speed% * 2.0");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.data().getVariantCost(1), std::optional<double>(22.0));
}

} // namespace
} // namespace OptimizationTool
