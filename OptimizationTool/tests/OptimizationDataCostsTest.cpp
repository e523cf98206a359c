#include "ExpressionBuilder/Expression.h"
#include "HostModel/Attribute.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/AdjustedHost.h"
#include "OptimizationTool/tests/RecordedStudy.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <algorithm>

namespace {

using EntityModel::AttributePath;
using EntityModel::EditOperation;
using HostTesting::FaultKind;
using HostTesting::FaultyHost;
using HostTesting::RecordingHost;
using MathematicalUtilities::OptimisationStrategy;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationGroup;
using StudyTesting::thrownBy;
using Costs = std::vector<std::optional<double>>;
using Strings = std::vector<std::string>;

const Costs kNoCosts = {std::nullopt, std::nullopt, std::nullopt};

// Counts the signal and keeps the costs that the rows had when it came.
class Listener final : public QObject {
public:
  explicit Listener(OptimizationData &data) {
    connect(&data, &OptimizationData::costFunctionChanged, this, [this, &data] {
      ++signals_;
      baselineCost = data.getVariantCost(0);
      text = data.getCostFunction();
    });
  }
  int count() const { return signals_; }

  std::optional<double> baselineCost;
  std::string text;

private:
  int signals_ = 0;
};

class OptimizationDataCostsTest : public StudyTesting::StudyDataFixture {
protected:
  /// A group that the matrix knows nothing of.
  void addGroupBehindTheMatrix(bool isInput, const std::string &attributeName) {
    OptimizationGroup group = data().getGroups(isInput).appendGroup();
    group.appendVariable(attribute(attributeName));
  }
  /// Makes a study of the version "Base" with these input groups, which know of no list that holds them.
  static void script(StudyTesting::ScriptedEntity &study, const std::string &costFunction,
                     const std::vector<EntityModel::Entity *> &inputs) {
    using StudyTesting::ScriptedAttribute;
    study.add(AttributePath(EntityModel::BaseVersionName_t), std::make_unique<ScriptedAttribute>("Base"));
    study.add(AttributePath(EntityModel::CostFunction_t), std::make_unique<ScriptedAttribute>(costFunction));
    study.add(AttributePath(EntityModel::OptimizationInputs_t),
              std::make_unique<StudyTesting::ScriptedList>(inputs));
  }
};

TEST_F(OptimizationDataCostsTest, CostFunction_IsEmptyAtFirst) {
  beginWithRows();
  EXPECT_EQ(data().getCostFunction(), "");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(data().getLastCostFunctionErrorPosition(), std::nullopt);
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_StoresTheTextAndPricesEveryRow) {
  beginWithRows();
  data().setCostFunction(" 2.0 * %FanA.Speed% + %FanA.Blades%");
  EXPECT_EQ(data().getCostFunction(), " 2.0 * %FanA.Speed% + %FanA.Blades%");
  EXPECT_EQ(project().attribute(data().get(), "CostFunction")->getValueAsString(),
            " 2.0 * %FanA.Speed% + %FanA.Blades%");
  EXPECT_EQ(costs(), Costs({25.0, 46.0, 67.0}));
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_SetsTheMemberOfTheEntityAndMarksTheProject) {
  beginWithRows();
  RecordingHost &recording = record();
  recording.setAlias(studyEntity(), "Study");
  data().setCostFunction("1.5");
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::setValue(Study.CostFunction, \"1.5\", force=false, affected=null, "
                     "notify=true, edited=true)",
                     "EntityManager::setNeedsSave(true)"}));
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_EmitsOnceAfterTheRowsArePriced) {
  beginWithRows();
  const Listener listener(data());
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(listener.count(), 1);
  EXPECT_EQ(listener.baselineCost, 10.0);
  EXPECT_EQ(listener.text, "%FanA.Speed%");
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_TextThatDoesNotBuild_EmitsToo) {
  beginWithRows();
  const Listener listener(data());
  data().setCostFunction("1 +");
  EXPECT_EQ(listener.count(), 1);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_RefusedByTheHost_ChangesNothing) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  FaultyHost &faulty = injectFaults();
  const Listener listener(data());
  faulty.fail("EntityEditor::setValue", FaultKind::Refused);
  data().setCostFunction("%FanA.Blades%");
  EXPECT_EQ(data().getCostFunction(), "%FanA.Speed%");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
  data().setCostFunction("1 +");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
  EXPECT_EQ(listener.count(), 0);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_WithoutStudyEntity_DoesNothing) {
  OptimizationData study(nullptr, nullptr);
  const Listener listener(study);
  study.setCostFunction("1 +");
  EXPECT_EQ(listener.count(), 0);
  EXPECT_EQ(study.getLastCostFunctionError(), "");
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_ExceptionOfTheHost_PassesBeforeAnyChange) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  FaultyHost &faulty = injectFaults();
  const Listener listener(data());
  faulty.fail("EntityEditor::setValue", FaultKind::Throws);
  EXPECT_EQ(thrownBy([this] { data().setCostFunction("1 +"); }), "std::runtime_error: injected fault");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
  EXPECT_EQ(listener.count(), 0);
}

// The address sanitizer watches over the data that are gone.
TEST(OptimizationDataCostsLivenessTest, SetCostFunction_StudyEndsMeanwhile_StopsQuietly) {
  for (const char *operation : {"EntityEditor::setValue", "EntityManager::setNeedsSave"}) {
    StudyTesting::RecordedStudy study;
    study.begin();
    study.hooked().runBefore(operation, [&] { study.drop(); });
    EXPECT_NO_THROW(study.data().setCostFunction("%Fan.Speed%"));
    EXPECT_FALSE(study.isAlive()) << operation;
  }
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_TextThatCannotBeRead_ClearsTheCosts) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  FaultyHost &faulty = injectFaults();
  ASSERT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
  const Listener listener(data());
  faulty.fail("Attribute::getValueAsString", FaultKind::Throws, 1);
  EXPECT_EQ(thrownBy([this] { data().setCostFunction("1.5"); }), "nothing");
  EXPECT_EQ(faulty.strikes(), 1);
  EXPECT_EQ(listener.count(), 1);
  EXPECT_EQ(costs(), kNoCosts);
  data().recalculateCosts();
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_BlanksAndTabsOnly_ClearsCostsAndError) {
  beginWithRows();
  for (const char *text : {"", " ", "\t", " \t\t  \t "}) {
    data().setCostFunction("%FanA.Speed%");
    ASSERT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
    data().setCostFunction("1 +");
    ASSERT_NE(data().getLastCostFunctionError(), "");
    const Listener listener(data());
    data().setCostFunction(text);
    EXPECT_EQ(data().getCostFunction(), text);
    EXPECT_EQ(data().getLastCostFunctionError(), "");
    EXPECT_EQ(data().getLastCostFunctionErrorPosition(), std::nullopt);
    EXPECT_EQ(costs(), kNoCosts);
    EXPECT_EQ(listener.count(), 1);
  }
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_BlanksAfterABuiltOne_DropTheCalculator) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().setCostFunction(" \t");
  EXPECT_EQ(costs(), kNoCosts);
  data().recalculateCosts();
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_BlanksAroundTheText_AreNoObstacle) {
  beginWithRows();
  data().setCostFunction("  %FanA.Blades%  ");
  EXPECT_EQ(costs(), Costs({5.0, 6.0, 7.0}));
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_TextThatDoesNotBuild_ClearsTheCostsAndKeepsTheError) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().setCostFunction("1 +");
  EXPECT_EQ(data().getLastCostFunctionError(), "Syntax error - Right hand side invalid");
  EXPECT_EQ(costs(), kNoCosts);
  data().recalculateCosts();
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_UnknownVariable_IsABuildError) {
  beginWithRows();
  data().setCostFunction("1.0 + %FanB.Speed%");
  EXPECT_EQ(data().getLastCostFunctionError(), "Undefined variable : FanB.Speed");
  EXPECT_EQ(data().getLastCostFunctionErrorPosition(), 6U);
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_AfterAnError_ClearsIt) {
  beginWithRows();
  data().setCostFunction("1 +");
  data().setCostFunction("%FanA.Blades%");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(costs(), Costs({5.0, 6.0, 7.0}));
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_TextOfWhichNothingIsRead_IsABuildError) {
  beginWithRows();
  for (const char *text : {"\t1.0", "=", "\n", "\n\t"}) {
    data().setCostFunction("%FanA.Speed%");
    ASSERT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
    EXPECT_EQ(thrownBy([&] { data().setCostFunction(text); }), "nothing");
    EXPECT_EQ(data().getLastCostFunctionError(), "Syntax error") << text;
    EXPECT_EQ(costs(), kNoCosts);
  }
}

TEST_F(OptimizationDataCostsTest, SetCostFunction_SameTextAgain_Rebuilds) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  addInput("FanB.Blades");
  ASSERT_EQ(thrownBy([this] { data().recalculateCosts(); }), "std::out_of_range: Variable does not exist");
  const Listener listener(data());
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(listener.count(), 1);
  EXPECT_EQ(thrownBy([this] { data().recalculateCosts(); }), "nothing");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, Load_BuildsTheStoredCostFunctionAndPricesTheRowsWithoutASignal) {
  beginWithRows();
  data().setCostFunction("%FanB.Ratio%");
  reconstruct();
  const Listener listener(data());
  data().initializeVariants(nullptr);
  EXPECT_EQ(costs(), Costs({1.0, 2.0, 3.0}));
  EXPECT_EQ(listener.count(), 0);
}

TEST_F(OptimizationDataCostsTest, Pricing_UsesInputsAndOutputsOfTheRow) {
  beginWithRows();
  setIn("Base", "FanA.Noise", "100");
  setIn("Row 1", "FanA.Noise", "200");
  setIn("Row 2", "FanA.Noise", "300");
  reload();
  data().setCostFunction("%FanA.Noise% + %FanA.Blades%");
  EXPECT_EQ(costs(), Costs({105.0, 206.0, 307.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_RowWithoutAValueThatIsNeeded_HasNoCost) {
  beginWithRows();
  setIn("Row 1", "FanA.Noise", "200");
  reload();
  data().setCostFunction("%FanA.Noise% + %FanA.Blades%");
  EXPECT_EQ(costs(), Costs({std::nullopt, 206.0, std::nullopt}));
}

TEST_F(OptimizationDataCostsTest, Pricing_RowThatLosesAValue_LosesItsCost) {
  beginWithRows();
  setIn("Row 1", "FanA.Noise", "200");
  reload();
  data().setCostFunction("%FanA.Noise%");
  ASSERT_EQ(data().getVariantCost(1), 200.0);
  setIn("Row 1", "FanA.Noise", "");
  data().updateAlternate(OptimizationData::ReadFromModel, "Row 1");
  EXPECT_EQ(data().getVariantCost(1), std::nullopt);
}

TEST_F(OptimizationDataCostsTest, Pricing_RowWithoutACellThatIsNeeded_HasNoCost) {
  beginWithRows();
  addGroupBehindTheMatrix(true, "FanB.Blades");
  data().setCostFunction("%FanB.Blades% + %FanA.Speed%");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, Pricing_CellOrValueThatIsNotNeeded_CountsAsZero) {
  beginWithRows();
  addGroupBehindTheMatrix(true, "FanB.Blades");
  // Under these names the groups do not occur in the text, though their variables do.
  data().setGroupName(true, 3, "other blades");
  data().setGroupName(false, 0, "power");
  data().setCostFunction("%FanB.Blades% + %FanA.Power% + %FanA.Speed%");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_NamedGroupInTheText_IsNeeded) {
  beginWithRows();
  data().setGroupName(false, 0, "Speed");
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, Pricing_GroupThatMakesARowIncomplete_IsProcessedAllTheSame) {
  beginWithRows();
  data().setCostFunction("%FanA.Power%");
  addOutput("FanB.Power");
  data().setGroupName(false, 2, "Power");
  // The first output lacks its value, and so does the one that the expression does not know.
  EXPECT_EQ(thrownBy([this] { data().recalculateCost(0); }), "std::out_of_range: Variable does not exist");
}

TEST_F(OptimizationDataCostsTest, Pricing_UsesTheUnitsOfTheBaseline) {
  beginWithRows();
  setIn("Base", "FanA.Speed", "10000 mm/s");
  reload();
  ASSERT_EQ(column(true, 0), Strings({"10000 mm/s", "20 m/s", "30 m/s"}));
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(costs(), Costs({10000.0, 20000.0, 30000.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_IgnoresTheUnitsOfTheRow) {
  beginWithRows();
  setIn("Row 1", "FanA.Speed", "20000 mm/s");
  reload();
  ASSERT_EQ(column(true, 0), Strings({"10 m/s", "20000 mm/s", "30 m/s"}));
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_WithoutABaselineCell_UsesStandardUnits) {
  begin();
  addInput("FanA.Ratio");
  addInput("FanA.Speed");
  data().addVariant({"2", "20000 mm/s"}, "Row 1", 100);
  // An edit of the baseline that leaves no value: the row is loaded without its last cell.
  StudyTesting::AdjustedDelta delta;
  delta.add(fan("FanA"), "Speed", EditOperation::kValueSet, nullptr);
  StudyTesting::AdjustedHost adjusted(*HostModel::installedHost());
  adjusted.setExternalData(version("Base"), {&delta});
  const HostModel::HostInstallation installed(adjusted);
  reload();
  ASSERT_EQ(column(true, 1), Strings({StudyTesting::kNoCell, "20000 mm/s"}));
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(costs(), Costs({std::nullopt, 20.0}));
  drop();
}

TEST_F(OptimizationDataCostsTest, Pricing_TakesNumbersOfEveryKind) {
  begin();
  addInput("FanA.Blades");
  addInput("FanA.Enabled");
  addInput("FanA.Mode");
  addInput("FanA.Note");
  data().addVariant({"6", "0", "3", "loud"}, "Row 1", 100);
  data().setCostFunction("100.0 * %FanA.Blades% + 10.0 * %FanA.Enabled% + %FanA.Mode% + %FanA.Note%");
  EXPECT_EQ(costs(), Costs({511.0, 603.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_RootAttribute_IsFoundByItsMacro) {
  begin();
  addInput("Load");
  const std::string macro = data().getVariable(true, 0).getAttributeMacro();
  ASSERT_EQ(data().getVariable(true, 0).getDisplayName(), "Load");
  data().setCostFunction("%" + macro + "%");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(costs(), Costs{2.0});
}

TEST_F(OptimizationDataCostsTest, Pricing_GroupWithoutVariables_IsTheVariableWithTheEmptyName) {
  beginWithRows();
  data().addGroupFromGroup(true, 0);
  data().setCostFunction("%% + %FanA.Blades%");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(costs(), Costs({15.0, 26.0, 37.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_OfGroupsWithOneMacro_TheLastOneCounts) {
  begin();
  addInput("FanA.Ratio");
  addInput("FanA.Ratio");
  addOutput("FanA.Ratio");
  data().setVariantValue(0, 0, "7");
  setIn("Base", "FanA.Ratio", "9");
  data().updateAlternate(OptimizationData::ReadFromModel, 0);
  ASSERT_EQ(row(true, 0), Strings({"7", "1"}));
  ASSERT_EQ(row(false, 0), Strings({"9"}));
  data().setCostFunction("%FanA.Ratio%");
  EXPECT_EQ(costs(), Costs{9.0});
  data().removeGroup(false, 0);
  data().setCostFunction("%FanA.Ratio%");
  EXPECT_EQ(costs(), Costs{1.0});
}

TEST_F(OptimizationDataCostsTest, Pricing_MissingGroup_IsTheVariableWithTheEmptyName) {
  StudyTesting::ScriptedEntity study;
  script(study, "1.5", {nullptr});
  OptimizationData alone(&study, nullptr);
  EXPECT_EQ(thrownBy([&] { alone.initializeVariants(nullptr); }),
            "std::out_of_range: Variable does not exist");
  EXPECT_EQ(alone.getVariantCost(0), std::nullopt);

  const auto empty = StudyTesting::makeScriptedGroup({});
  StudyTesting::ScriptedEntity studyWithAnEmptyGroup;
  script(studyWithAnEmptyGroup, "%% + 1.5", {nullptr, empty.get()});
  OptimizationData both(&studyWithAnEmptyGroup, nullptr);
  both.initializeVariants(nullptr);
  EXPECT_EQ(both.getVariantCost(0), 1.5);
}

TEST_F(OptimizationDataCostsTest, Pricing_GroupThatNoListHolds_CountsAsZero) {
  const auto variable = StudyTesting::makeScriptedVariable(fan("FanA"), "Blades");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  script(entity, "%FanA.Blades% + 1.5", {group.get()});
  OptimizationData study(&entity, nullptr);
  study.initializeVariants(nullptr);
  ASSERT_NE(study.getVariantGroup(true, 0, 0), nullptr);
  EXPECT_EQ(study.getVariantCost(0), 1.5);
}

TEST_F(OptimizationDataCostsTest, Pricing_GroupAddedSinceTheBuild_ThrowsAndKeepsTheCosts) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  addInput("FanB.Blades");
  const std::string error = "std::out_of_range: Variable does not exist";
  EXPECT_EQ(thrownBy([this] { data().recalculateCosts(); }), error);
  EXPECT_EQ(thrownBy([this] { data().recalculateCost(1); }), error);
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_EntityRenamedSinceTheBuild_Throws) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  project().renameEntity(fan("FanB"), "FanC");
  EXPECT_EQ(thrownBy([this] { data().recalculateCosts(); }), "std::out_of_range: Variable does not exist");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_GroupRemovedSinceTheBuild_KeepsItsLastValue) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed% + %FanB.Ratio%");
  ASSERT_EQ(costs(), Costs({11.0, 22.0, 33.0}));
  data().removeGroup(true, 2);
  data().recalculateCosts();
  EXPECT_EQ(costs(), Costs({13.0, 23.0, 33.0}));
}

TEST_F(OptimizationDataCostsTest, Pricing_IntegerDivisionByZero_PassesThrough) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  const Listener listener(data());
  EXPECT_EQ(thrownBy([this] { data().setCostFunction("1 / (int)(%FanB.Ratio% - 2.0)"); }),
            "std::runtime_error: Integer division by zero");
  EXPECT_EQ(data().getVariantCost(0), -1.0);
  EXPECT_EQ(data().getVariantCost(1), 20.0);
  EXPECT_EQ(data().getVariantCost(2), 30.0);
  EXPECT_EQ(listener.count(), 0);
}

TEST_F(OptimizationDataCostsTest, RecalculateCost_PricesThatRowOnly) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts();
  data().recalculateCost(1);
  EXPECT_EQ(costs(), Costs({std::nullopt, 20.0, std::nullopt}));
}

TEST_F(OptimizationDataCostsTest, RecalculateCost_OutOfRange_DoesNothing) {
  beginWithRows();
  EXPECT_EQ(thrownBy([this] { data().recalculateCost(9); }), "nothing");
  EXPECT_EQ(costs(), kNoCosts);
  data().setCostFunction("%FanA.Speed%");
  EXPECT_EQ(thrownBy([this] { data().recalculateCost(9); }), "nothing");
  EXPECT_EQ(thrownBy([this] { data().recalculateCost(3); }), "nothing");
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, RecalculateCost_WithoutCalculator_LeavesNoCost) {
  beginWithRows();
  data().recalculateCost(1);
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, RecalculateCosts_PricesEveryRow) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts();
  data().recalculateCosts();
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, RecalculateCosts_GoesInRowOrder) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts();
  EXPECT_EQ(thrownBy([this] { data().setCostFunction("1 / (int)(%FanB.Ratio% - 2.0)"); }),
            "std::runtime_error: Integer division by zero");
  // The second row ends the pass.
  EXPECT_EQ(costs(), Costs({-1.0, std::nullopt, std::nullopt}));
}

TEST_F(OptimizationDataCostsTest, ClearCosts_ClearsEveryRow) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts();
  EXPECT_EQ(costs(), kNoCosts);
}

TEST_F(OptimizationDataCostsTest, ClearCosts_OfOneRow_ClearsThatRowOnly) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts(1);
  EXPECT_EQ(costs(), Costs({10.0, std::nullopt, 30.0}));
}

TEST_F(OptimizationDataCostsTest, ClearCosts_OfTheBaselineByALiteral_ClearsIt) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts(0);
  EXPECT_EQ(costs(), Costs({std::nullopt, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, ClearCosts_OutOfRange_DoesNothing) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts(3);
  EXPECT_EQ(costs(), Costs({10.0, 20.0, 30.0}));
}

TEST_F(OptimizationDataCostsTest, PricingAndClearing_LeaveTheHostAsItIs) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  const RecordingHost &recording = record();
  data().recalculateCosts();
  data().recalculateCost(1);
  data().clearCosts(1);
  data().clearCosts();
  EXPECT_EQ(recording.texts(), Strings());
}

TEST_F(OptimizationDataCostsTest, TakesPart_NamedGroup_ByItsNameAnywhereInTheText) {
  beginWithRows();
  data().setGroupName(true, 0, "x1");
  data().setGroupName(true, 1, "x");
  data().setGroupName(true, 2, "X1");
  data().setCostFunction("x1 + 2");
  EXPECT_TRUE(data().isVariableInCostFunction(0, true));
  EXPECT_TRUE(data().isVariableInCostFunction(1, true));
  EXPECT_FALSE(data().isVariableInCostFunction(2, true));
}

TEST_F(OptimizationDataCostsTest, TakesPart_NamedGroup_NotByItsVariable) {
  beginWithRows();
  data().setGroupName(true, 0, "speed");
  data().setCostFunction("%FanA.Speed%");
  EXPECT_FALSE(data().isVariableInCostFunction(0, true));
}

TEST_F(OptimizationDataCostsTest, TakesPart_UnnamedGroup_ByTheDisplayNameOfItsFirstVariable) {
  beginWithRows();
  addVariable(true, 0, "FanB.Speed");
  data().setCostFunction("%FanA.Speed% + 1.0");
  EXPECT_TRUE(data().isVariableInCostFunction(0, true));
  EXPECT_FALSE(data().isVariableInCostFunction(1, true));
  data().setCostFunction("%FanB.Speed% + 1.0");
  EXPECT_FALSE(data().isVariableInCostFunction(0, true));
}

TEST_F(OptimizationDataCostsTest, TakesPart_RootAttribute_ByItsDisplayNameNotItsMacro) {
  begin();
  addInput("Load");
  ASSERT_NE(data().getVariable(true, 0).getAttributeMacro(), "Load");
  data().setCostFunction("Load + 1.0");
  EXPECT_TRUE(data().isVariableInCostFunction(0, true));
}

TEST_F(OptimizationDataCostsTest, TakesPart_TakesTheGroupFirstAndTheSideSecond) {
  beginWithRows();
  data().setCostFunction("%FanA.Noise%");
  EXPECT_TRUE(data().isVariableInCostFunction(1, false));
  EXPECT_FALSE(data().isVariableInCostFunction(0, true));
  EXPECT_FALSE(data().isVariableInCostFunction(0, false));
  EXPECT_FALSE(data().isVariableInCostFunction(1, true));
}

TEST_F(OptimizationDataCostsTest, TakesPart_NoSuchGroup_IsFalse) {
  beginWithRows();
  data().setCostFunction("%FanA.Noise%");
  EXPECT_FALSE(data().isVariableInCostFunction(3, true));
  EXPECT_FALSE(data().isVariableInCostFunction(2, false));
  EXPECT_FALSE(data().isVariableInCostFunction(-1, true));
  OptimizationData study(nullptr, nullptr);
  EXPECT_FALSE(study.isVariableInCostFunction(0, true));
}

TEST_F(OptimizationDataCostsTest, TakesPart_GroupWithoutNameAndVariables_Always) {
  beginWithRows();
  data().addGroupFromGroup(true, 0);
  EXPECT_TRUE(data().isVariableInCostFunction(3, true));
  data().setCostFunction("1.0");
  EXPECT_TRUE(data().isVariableInCostFunction(3, true));
}

TEST_F(OptimizationDataCostsTest, Target_IsNoneAtFirst) {
  beginWithRows();
  EXPECT_EQ(data().getOptimisationTarget(), OptimisationStrategy::None);
  const OptimizationData study(nullptr, nullptr);
  EXPECT_EQ(study.getOptimisationTarget(), OptimisationStrategy::None);
}

TEST_F(OptimizationDataCostsTest, Target_IsStoredInTheStudyEntity) {
  beginWithRows();
  data().setOptimisationTarget(OptimisationStrategy::Minimise);
  EXPECT_EQ(data().getOptimisationTarget(), OptimisationStrategy::Minimise);
  EXPECT_EQ(project().attribute(data().get(), "OptimisationTarget")->getValueAsString(), "Minimise");
  data().setOptimisationTarget(OptimisationStrategy::Maximise);
  EXPECT_EQ(data().getOptimisationTarget(), OptimisationStrategy::Maximise);
  EXPECT_EQ(project().attribute(data().get(), "OptimisationTarget")->getValueAsString(), "Maximise");
}

TEST_F(OptimizationDataCostsTest, Target_OfAnotherType_IsNone) {
  class OtherType final : public StudyTesting::ScriptedTypeAttribute {
  public:
    OtherType() : ScriptedTypeAttribute(0) {}
    EntityModel::TypeRef getTypeValue() const override { return EntityModel::OptimizationGroup_t; }
  };
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath(EntityModel::OptimisationTarget_t), std::make_unique<OtherType>());
  const OptimizationData study(&entity, nullptr);
  EXPECT_EQ(study.getOptimisationTarget(), OptimisationStrategy::None);
}

TEST_F(OptimizationDataCostsTest, SetTarget_WithoutStudyEntity_DoesNothing) {
  OptimizationData study(nullptr, nullptr);
  study.setOptimisationTarget(OptimisationStrategy::Minimise);
  EXPECT_EQ(study.getOptimisationTarget(), OptimisationStrategy::None);
}

TEST_F(OptimizationDataCostsTest, SetTarget_SetsTheMemberWithoutThrowingAndMarksTheProject) {
  beginWithRows();
  RecordingHost &recording = record();
  recording.setAlias(studyEntity(), "Study");
  data().setOptimisationTarget(OptimisationStrategy::Minimise);
  data().setOptimisationTarget(OptimisationStrategy::Maximise);
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::setValueNoThrow(Study.OptimisationTarget, \"Minimise\", force=false, "
                     "affected=null, notify=true)",
                     "EntityManager::setNeedsSave(true)",
                     "EntityEditor::setValueNoThrow(Study.OptimisationTarget, \"Maximise\", force=false, "
                     "affected=null, notify=true)",
                     "EntityManager::setNeedsSave(true)"}));
}

TEST_F(OptimizationDataCostsTest, SetTarget_AnyOtherValue_ChangesNothing) {
  beginWithRows();
  data().setOptimisationTarget(OptimisationStrategy::Maximise);
  const RecordingHost &recording = record();
  data().setOptimisationTarget(OptimisationStrategy::None);
  data().setOptimisationTarget(static_cast<OptimisationStrategy>(3));
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(data().getOptimisationTarget(), OptimisationStrategy::Maximise);
}

TEST_F(OptimizationDataCostsTest, SetTarget_NeitherPricesNorEmits) {
  beginWithRows();
  data().setCostFunction("%FanA.Speed%");
  data().clearCosts();
  const Listener listener(data());
  data().setOptimisationTarget(OptimisationStrategy::Maximise);
  EXPECT_EQ(costs(), kNoCosts);
  EXPECT_EQ(listener.count(), 0);
}

TEST_F(OptimizationDataCostsTest, AvailableFunctions_AreThoseOfTheBuilder) {
  beginWithRows();
  const Strings names = data().getAvailableFunctionsInCostFunctionBuilder();
  EXPECT_EQ(names, OptimizationTool::CostFunctionBuilder(data()).getFunctionNames());
  EXPECT_EQ(std::count(names.begin(), names.end(), "sqrt"), 1);
  EXPECT_EQ(std::count(names.begin(), names.end(), "clamp"), 1);
}

} // namespace
