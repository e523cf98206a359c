#include "OptimizationTool/CostFunctionBuilder.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/Expression.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <type_traits>

namespace OptimizationTool {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using ExpressionBuilder::ElementConstant;
using StudyTesting::StudyFixture;
using Names = std::vector<std::string>;

static_assert(std::has_virtual_destructor_v<CostFunctionBuilder>);
static_assert(!std::is_copy_constructible_v<CostFunctionBuilder>);
static_assert(
    std::is_same_v<
        decltype(std::declval<const CostFunctionBuilder &>().create("")),
        std::unique_ptr<ExpressionBuilder::Expression<double, ExpressionBuilder::SimpleVariableCollection>>>);

std::unique_ptr<ElementConstant<double>> number(double value) {
  return std::make_unique<ElementConstant<double>>(value);
}

class CostFunctionBuilderTest : public ::testing::Test {
protected:
  // A group of one variable.
  OptimizationGroup addGroup(bool isInput, Entity *owner, const std::string &path) {
    OptimizationGroup group = study.addGroup(studyEntity, isInput, path);
    study.addVariable(group, owner, path);
    return group;
  }
  double valueOf(const std::string &text) {
    const auto expression = builder.create(text);
    EXPECT_NE(expression, nullptr) << text << ": " << builder.getLastBuildError();
    return expression == nullptr ? -1.0 : expression->evaluate();
  }

  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  Entity *studyEntity = study.addStudy();
  OptimizationData data{studyEntity, nullptr};
  CostFunctionBuilder builder{data};
};

TEST_F(CostFunctionBuilderTest, GetLastBuildError_BeforeAnyBuild_IsEmpty) {
  EXPECT_EQ(builder.getLastBuildError(), "");
  EXPECT_EQ(builder.getLastBuildErrorPosition(), std::nullopt);
}

TEST_F(CostFunctionBuilderTest, Create_Text_IsAnExpressionOfTypeDouble) {
  EXPECT_EQ(valueOf("1.5 + 2.0"), 3.5);
  EXPECT_EQ(valueOf("7/2"), 3.0);
  EXPECT_EQ(valueOf("2 > 1"), 1.0);
  EXPECT_EQ(builder.getLastBuildError(), "");
  EXPECT_EQ(builder.getLastBuildErrorPosition(), std::nullopt);
}

TEST_F(CostFunctionBuilderTest, Create_StudyWithoutGroups_HasNoVariables) {
  EXPECT_TRUE(builder.create("1")->variables().empty());
  EXPECT_EQ(builder.create("%Fan.Length%"), nullptr);
  EXPECT_EQ(builder.getLastBuildError(), "Undefined variable : Fan.Length");
}

TEST_F(CostFunctionBuilderTest, Create_GroupsOfBothSides_AreVariablesUnderTheirMacros) {
  addGroup(true, fan, "Count");
  addGroup(true, study.root(), "Depth");
  addGroup(false, fan, "Shape.Height");
  const std::string depth = study.root()->getName(true) + ".Depth";
  Names expected = {"Fan.Count", "Fan.Shape.Height", depth};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(builder.create("1")->variables().names(), expected);
}

TEST_F(CostFunctionBuilderTest, Create_Variables_BeginWithTheNumbersOfTheCurrentVersionInStandardUnits) {
  addGroup(true, fan, "Count");
  addGroup(true, fan, "Length");
  addGroup(false, fan, "Ratio");
  EXPECT_EQ(valueOf("%Fan.Count%"), 3.0);
  EXPECT_EQ(valueOf("%Fan.Length%"), 0.1);
  EXPECT_EQ(valueOf("%Fan.Ratio%"), 0.5);
  StudyFixture::set(fan, "Count", "8");
  EXPECT_EQ(valueOf("%Fan.Count%"), 8.0);
}

TEST_F(CostFunctionBuilderTest, Create_VariableOfAWholeNumber_IsADouble) {
  addGroup(true, fan, "Count");
  EXPECT_EQ(valueOf("7 / %Fan.Count%"), 7.0 / 3.0);
  EXPECT_EQ(builder.create("1")->variables().find("Fan.Count")->type(), ExpressionBuilder::ValueType::Double);
}

TEST_F(CostFunctionBuilderTest, Create_GroupOfSeveralVariables_IsTheFirstOne) {
  const OptimizationGroup group = addGroup(true, fan, "Count");
  study.addVariable(group, fan, "Ratio");
  EXPECT_EQ(builder.create("1")->variables().names(), Names{"Fan.Count"});
}

TEST_F(CostFunctionBuilderTest, Create_AttributeWithoutNumber_BeginsWithZero) {
  addGroup(false, fan, "Power");
  addGroup(true, fan, "Note");
  EXPECT_EQ(valueOf("%Fan.Power%"), 0.0);
  EXPECT_EQ(valueOf("%Fan.Note%"), 0.0);
}

TEST_F(CostFunctionBuilderTest, Create_NumericValueOfAnAttributeThatIsNotNumeric_IsNotTaken) {
  class Wrong : public StudyTesting::ScriptedAttribute {
    double getNumericValue() const override { return 5.0; }
  };
  StudyTesting::ScriptedEntity owner("Owner");
  owner.add(AttributePath("Value"), std::make_unique<Wrong>());
  const auto variable = StudyTesting::makeScriptedVariable(&owner, "Value");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath("OptimizationInputs"),
             std::make_unique<StudyTesting::ScriptedList>(std::vector<Entity *>{group.get()}));
  const OptimizationData scripted(&entity, nullptr);
  EXPECT_EQ(CostFunctionBuilder(scripted).create("%Owner.Value%")->evaluate(), 0.0);
}

TEST_F(CostFunctionBuilderTest, Create_AttributeNotFound_IsAVariableOfZeroAllTheSame) {
  addGroup(true, fan, "Lenght");
  addGroup(true, nullptr, "Shape.Height");
  EXPECT_EQ(valueOf("%Fan.Lenght%"), 0.0);
  EXPECT_EQ(valueOf("%Shape.Height%"), 0.0);
}

TEST_F(CostFunctionBuilderTest, Create_GroupWithoutVariables_IsTheVariableWithTheEmptyName) {
  study.addGroup(studyEntity, true, "Empty");
  EXPECT_EQ(builder.create("1")->variables().names(), Names{""});
  EXPECT_EQ(valueOf("%% + 1.0"), 1.0);
}

TEST_F(CostFunctionBuilderTest, Create_TwoGroupsWithOneMacro_TheFirstInOrderMakesTheVariable) {
  Entity *other = study.addPart("Fan");
  StudyFixture::set(other, "Count", "9");
  addGroup(false, other, "Ratio");
  StudyFixture::set(other, "Ratio", "0.75");
  addGroup(true, fan, "Count");
  addGroup(true, other, "Count");
  addGroup(true, fan, "Ratio");
  EXPECT_EQ(builder.create("1")->variables().size(), 2U);
  EXPECT_EQ(valueOf("%Fan.Count%"), 3.0);
  EXPECT_EQ(valueOf("%Fan.Ratio%"), 0.5);
}

TEST_F(CostFunctionBuilderTest, Create_NullEntriesOfTheGroupList_AreSkipped) {
  const auto variable = StudyTesting::makeScriptedVariable(fan, "Count");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath("OptimizationInputs"),
             std::make_unique<StudyTesting::ScriptedList>(std::vector<Entity *>{nullptr, group.get()}));
  const OptimizationData scripted(&entity, nullptr);
  EXPECT_EQ(CostFunctionBuilder(scripted).create("1")->variables().names(), Names{"Fan.Count"});
}

TEST_F(CostFunctionBuilderTest, Create_StudyWithoutEntity_HasNoVariables) {
  const OptimizationData empty(nullptr, nullptr);
  EXPECT_TRUE(CostFunctionBuilder(empty).create("1")->variables().empty());
}

TEST_F(CostFunctionBuilderTest, Create_GroupsChangedSinceTheLastBuild_AreTheVariablesOfTheNextOne) {
  const OptimizationGroup count = addGroup(true, fan, "Count");
  const auto before = builder.create("1");
  addGroup(true, fan, "Ratio");
  EXPECT_EQ(builder.create("1")->variables().names(), (Names{"Fan.Count", "Fan.Ratio"}));
  study.remove(count.get());
  EXPECT_EQ(builder.create("1")->variables().names(), Names{"Fan.Ratio"});
  study.project().renameEntity(study.recording().original(fan), "Blower");
  EXPECT_EQ(builder.create("1")->variables().names(), Names{"Blower.Ratio"});
  EXPECT_EQ(before->variables().names(), Names{"Fan.Count"});
}

TEST_F(CostFunctionBuilderTest, Create_ExpressionsHaveVariablesOfTheirOwn) {
  addGroup(true, fan, "Count");
  const auto first = builder.create("%Fan.Count%");
  const auto second = builder.create("%Fan.Count%");
  first->variables().replace("Fan.Count", number(40.0));
  EXPECT_EQ(first->evaluate(), 40.0);
  EXPECT_EQ(second->evaluate(), 3.0);
  EXPECT_EQ(valueOf("%Fan.Count%"), 3.0);
}

TEST_F(CostFunctionBuilderTest, Create_Expression_OutlivesTheBuilder) {
  addGroup(true, fan, "Count");
  auto shortLived = std::make_unique<CostFunctionBuilder>(data);
  const auto expression = shortLived->create("2.0 * %Fan.Count%");
  shortLived.reset();
  EXPECT_EQ(expression->evaluate(), 6.0);
}

struct BadText {
  const char *text;
  const char *error;
  std::size_t position;
};

TEST_F(CostFunctionBuilderTest, Create_TextThatDoesNotBuild_IsNullWithTheErrorAndItsPlace) {
  const BadText texts[] = {
      {"", "Empty expression", 0},
      {"2 *", "Syntax error - Right hand side invalid", 3},
      {"* 2", "Syntax error - Unexpected left hand side", 0},
      {"1+2)", "Syntax error : unbalanced brackets", 3},
      {"1 + %x%", "Undefined variable : x", 4},
      {"1 + sqrt(4)", "Function does not support the current argument types", 4},
  };
  for (const BadText &bad : texts) {
    EXPECT_EQ(builder.create(bad.text), nullptr) << bad.text;
    EXPECT_EQ(builder.getLastBuildError(), bad.error) << bad.text;
    EXPECT_EQ(builder.getLastBuildErrorPosition(), bad.position) << bad.text;
  }
}

TEST_F(CostFunctionBuilderTest, Create_TextOfWhichNothingCanBeRead_IsABuildFailure) {
  for (const char *text : {"   ", "\t", "\t1", "=", "\"open", "\xC3\xA9"}) {
    EXPECT_EQ(builder.create(text), nullptr) << text;
    EXPECT_FALSE(builder.getLastBuildError().empty()) << text;
    EXPECT_TRUE(builder.getLastBuildErrorPosition().has_value()) << text;
  }
}

TEST_F(CostFunctionBuilderTest, Create_ConstantPartThatCannotBeComputed_IsABuildFailure) {
  EXPECT_EQ(builder.create("1 / 0"), nullptr);
  EXPECT_EQ(builder.getLastBuildError(), "Integer division by zero");
}

TEST_F(CostFunctionBuilderTest, Create_SuccessAfterAFailure_ForgetsTheError) {
  EXPECT_EQ(builder.create("2 *"), nullptr);
  EXPECT_NE(builder.create("2"), nullptr);
  EXPECT_EQ(builder.getLastBuildError(), "");
  EXPECT_EQ(builder.getLastBuildErrorPosition(), std::nullopt);
}

TEST_F(CostFunctionBuilderTest, Create_FailureAfterAFailure_HasTheNewError) {
  EXPECT_EQ(builder.create("2 *"), nullptr);
  EXPECT_EQ(builder.create("%x%"), nullptr);
  EXPECT_EQ(builder.getLastBuildError(), "Undefined variable : x");
  EXPECT_EQ(builder.getLastBuildErrorPosition(), 0U);
}

TEST_F(CostFunctionBuilderTest, ClearLastError_ForgetsTheErrorAndItsPlace) {
  EXPECT_EQ(builder.create("2 *"), nullptr);
  builder.clearLastError();
  EXPECT_EQ(builder.getLastBuildError(), "");
  EXPECT_EQ(builder.getLastBuildErrorPosition(), std::nullopt);
}

TEST_F(CostFunctionBuilderTest, Create_HostThrows_IsABuildFailureWithItsText) {
  addGroup(true, fan, "Count");
  EXPECT_EQ(builder.create("2 *"), nullptr);
  study.faults().fail("Attribute::getNumericValue", HostTesting::FaultKind::Throws);
  EXPECT_EQ(builder.create("1"), nullptr);
  EXPECT_EQ(builder.getLastBuildError(), "injected fault");
  EXPECT_EQ(builder.getLastBuildErrorPosition(), std::nullopt);
}

TEST_F(CostFunctionBuilderTest, Create_SomethingElseThanAStandardException_IsAnUnknownError) {
  class Throwing : public StudyTesting::ScriptedAttribute {
    bool isNumeric() const override { throw 42; }
  };
  StudyTesting::ScriptedEntity owner("Owner");
  owner.add(AttributePath("Value"), std::make_unique<Throwing>());
  const auto variable = StudyTesting::makeScriptedVariable(&owner, "Value");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath("OptimizationOutputs"),
             std::make_unique<StudyTesting::ScriptedList>(std::vector<Entity *>{group.get()}));
  const OptimizationData scripted(&entity, nullptr);
  const CostFunctionBuilder scriptedBuilder(scripted);
  EXPECT_EQ(scriptedBuilder.create("1"), nullptr);
  EXPECT_EQ(scriptedBuilder.getLastBuildError(), "Unknown Error");
  EXPECT_EQ(scriptedBuilder.getLastBuildErrorPosition(), std::nullopt);
}

TEST_F(CostFunctionBuilderTest, Create_ChangesNothingInTheModel) {
  addGroup(true, fan, "Count");
  study.takeCalls();
  EXPECT_NE(builder.create("%Fan.Count%"), nullptr);
  EXPECT_EQ(study.takeCalls(), Names{});
}

TEST_F(CostFunctionBuilderTest, GetFunctionNames_AreThoseThatAnExpressionMayCall) {
  const Names names = builder.getFunctionNames();
  EXPECT_EQ(names, ExpressionBuilder::BuilderSingleType<double>().functionNames());
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  for (const char *name : {"sqrt", "mod", "clamp", "max"}) {
    EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
  }
  EXPECT_EQ(std::count(names.begin(), names.end(), "pi"), 0);
}

} // namespace
} // namespace OptimizationTool
