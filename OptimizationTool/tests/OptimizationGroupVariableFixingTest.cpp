#include "OptimizationTool/OptimizationGroupVariable.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyFixture.h"

#include <gtest/gtest.h>

#include <ostream>
#include <stdexcept>

namespace OptimizationTool {
namespace {

using EntityModel::Entity;
using StudyTesting::StudyFixture;
using Calls = std::vector<std::string>;

struct Settings {
  std::string minimum;
  std::string maximum;
  std::string step;
  std::string low;
  std::string high;

  friend bool operator==(const Settings &a, const Settings &b) {
    return a.minimum == b.minimum && a.maximum == b.maximum && a.step == b.step && a.low == b.low &&
           a.high == b.high;
  }
  friend std::ostream &operator<<(std::ostream &stream, const Settings &settings) {
    return stream << "minimum \"" << settings.minimum << "\" maximum \"" << settings.maximum << "\" step \""
                  << settings.step << "\" low \"" << settings.low << "\" high \"" << settings.high << '"';
  }
};

class OptimizationGroupVariableFixingTest : public ::testing::Test {
protected:
  OptimizationGroupVariable variableOf(const std::string &path, const Settings &settings) {
    OptimizationGroupVariable variable = study.addVariable(group, fan, path);
    variable.setMinimumValue(settings.minimum);
    variable.setMaximumValue(settings.maximum);
    variable.setStepValue(settings.step);
    variable.setLowBoundValue(settings.low);
    variable.setHighBoundValue(settings.high);
    study.name(variable, "Variable");
    study.takeCalls();
    return variable;
  }
  static Settings settingsOf(const OptimizationGroupVariable &variable) {
    return {variable.getMinimumValue(), variable.getMaximumValue(), variable.getStepValue(),
            variable.getLowBoundValue(), variable.getHighBoundValue()};
  }
  Settings fixed(const std::string &path, const Settings &settings) {
    OptimizationGroupVariable variable = variableOf(path, settings);
    variable.fixVariable();
    return settingsOf(variable);
  }

  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  OptimizationGroup group = study.addGroup(study.addStudy(), true, "Group");
};

TEST_F(OptimizationGroupVariableFixingTest, MinimumAboveMaximum_RaisesTheMaximumAndThenShrinksTheStep) {
  EXPECT_EQ(fixed("Count", {"10", "5", "2", "", ""}), (Settings{"10", "10", "0", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, LimitsWithoutBoundsAndStep_AreLeftAlone) {
  EXPECT_EQ(fixed("Count", {"10", "5", "", "", ""}), (Settings{"10", "5", "", "", ""}));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableFixingTest, OneBoundOrAStep_OpensTheRepairOfLimits) {
  EXPECT_EQ(fixed("Ratio", {"10", "5", "1", "", ""}), (Settings{"10", "10", "1", "", ""}));
  EXPECT_EQ(fixed("Ratio", {"10", "5", "", "1", ""}), (Settings{"10", "10", "", "1", ""}));
  EXPECT_EQ(fixed("Ratio", {"10", "5", "", "", "1"}), (Settings{"10", "10", "", "", "1"}));
}

TEST_F(OptimizationGroupVariableFixingTest, IntegerWithoutStep_GetsTheStepOne) {
  EXPECT_EQ(fixed("Count", {"0", "3", "", "1", ""}), (Settings{"0", "3", "1", "1", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, IntegerWithoutStepAndWithEqualLimits_GetsTheStepOneAndThenNone) {
  OptimizationGroupVariable variable = variableOf("Count", {"4", "4", "", "1", ""});
  variable.fixVariable();
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(Variable.StepValue, "1", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.StepValue, "0", force=false, affected=null, notify=true))",
      }));
}

TEST_F(OptimizationGroupVariableFixingTest, IntegerStepThatLeavesTheRange_ShrinksToTheRange) {
  EXPECT_EQ(fixed("Count", {"0", "3", "5", "", ""}), (Settings{"0", "3", "3", "", ""}));
  EXPECT_EQ(fixed("Count", {"-4", "3", "8", "", ""}), (Settings{"-4", "3", "7", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, IntegerStepThatEndsOnTheMaximum_Stays) {
  EXPECT_EQ(fixed("Count", {"0", "3", "3", "", ""}), (Settings{"0", "3", "3", "", ""}));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableFixingTest, NonIntegerWithoutStep_GetsNone) {
  EXPECT_EQ(fixed("Ratio", {"0", "3", "", "1", ""}), (Settings{"0", "3", "", "1", ""}));
  EXPECT_EQ(fixed("Active", {"0", "1", "", "0", ""}), (Settings{"0", "1", "", "0", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, NonIntegerStepThatLeavesTheRange_Stays) {
  EXPECT_EQ(fixed("Ratio", {"0", "3", "5", "", ""}), (Settings{"0", "3", "5", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, Choice_HasAStepLikeAnInteger) {
  EXPECT_EQ(fixed("Material", {"1", "3", "", "1", ""}), (Settings{"1", "3", "1", "1", ""}));
  EXPECT_EQ(fixed("Material", {"2", "3", "2", "", ""}), (Settings{"2", "3", "1", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, Limits_AreComparedAsValuesAndCopiedAsText) {
  EXPECT_EQ(fixed("Length", {"1 m", "500 mm", "1", "", ""}), (Settings{"1 m", "1 m", "1", "", ""}));
  EXPECT_EQ(fixed("Length", {"9 mm", "10 mm", "1", "", ""}), (Settings{"9 mm", "10 mm", "1", "", ""}));
  EXPECT_EQ(fixed("Ratio", {"1.50", "1.25", "1", "", ""}), (Settings{"1.50", "1.50", "1", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, EqualLimits_AreLeftAsTheyAreWritten) {
  EXPECT_EQ(fixed("Ratio", {"1.50", "1.5", "1", "", ""}), (Settings{"1.50", "1.5", "1", "", ""}));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableFixingTest, LimitsOutsideOfTheAttributesOwn_AreRepairedAllTheSame) {
  EXPECT_EQ(fixed("Level", {"20", "15", "1", "", ""}), (Settings{"20", "20", "0", "", ""}));
  EXPECT_EQ(fixed("Level", {"-5", "-7", "1", "", ""}), (Settings{"-5", "-5", "0", "", ""}));
  EXPECT_EQ(fixed("Angle", {"", "", "", "100", "95"}), (Settings{"", "", "", "100", "100"}));
}

TEST_F(OptimizationGroupVariableFixingTest, TheAttributeItself_KeepsValueAndLimits) {
  fixed("Level", {"20", "15", "1", "12", "11"});
  EXPECT_EQ(StudyFixture::get(fan, "Level"), "5");
  EXPECT_THROW(StudyFixture::attribute(fan, "Level")->setValueFromString("11"), std::exception);
  EXPECT_THROW(StudyFixture::attribute(fan, "Level")->setValueFromString("-1"), std::exception);
}

TEST_F(OptimizationGroupVariableFixingTest, MaximumThatIsNotAccepted_SwitchesOffLimitsAndStepButNotBounds) {
  EXPECT_EQ(fixed("Count", {"10", "five", "", "7", "3"}), (Settings{"10", "five", "", "7", "7"}));
  EXPECT_EQ(fixed("Count", {"10", "", "20", "", ""}), (Settings{"10", "", "20", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, MinimumThatIsNotAccepted_SwitchesOffLimitsAndStepButNotBounds) {
  EXPECT_EQ(fixed("Count", {"ten", "5", "", "7", "3"}), (Settings{"ten", "5", "", "7", "7"}));
  EXPECT_EQ(fixed("Count", {"", "5", "20", "", ""}), (Settings{"", "5", "20", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, StepThatIsNotAccepted_SwitchesOffTheStepOnly) {
  EXPECT_EQ(fixed("Count", {"10", "5", "two", "7", "3"}), (Settings{"10", "10", "two", "7", "7"}));
}

TEST_F(OptimizationGroupVariableFixingTest, LowBoundAboveHighBound_RaisesTheHighBound) {
  EXPECT_EQ(fixed("Count", {"", "", "", "7", "3"}), (Settings{"", "", "", "7", "7"}));
  EXPECT_EQ(fixed("Length", {"", "", "", "1 m", "3 mm"}), (Settings{"", "", "", "1 m", "1 m"}));
}

TEST_F(OptimizationGroupVariableFixingTest, Bounds_AreRepairedAndSwitchedNeitherOnNorOff) {
  OptimizationGroupVariable off = variableOf("Count", {"", "", "", "7", "3"});
  off.fixVariable();
  EXPECT_EQ(off.getHighBoundValue(), "7");
  EXPECT_FALSE(off.isLowBoundEnabled());
  EXPECT_FALSE(off.isHighBoundEnabled());
  OptimizationGroupVariable on = variableOf("Count", {"", "", "", "7", "3"});
  on.setLowBoundEnabled(true);
  on.setHighBoundEnabled(true);
  on.fixVariable();
  EXPECT_EQ(on.getHighBoundValue(), "7");
  EXPECT_TRUE(on.isLowBoundEnabled());
  EXPECT_TRUE(on.isHighBoundEnabled());
}

TEST_F(OptimizationGroupVariableFixingTest, EqualOrOrderedBounds_AreLeftAsTheyAreWritten) {
  EXPECT_EQ(fixed("Ratio", {"", "", "", "1.50", "1.5"}), (Settings{"", "", "", "1.50", "1.5"}));
  EXPECT_EQ(fixed("Ratio", {"", "", "", "1", "2"}), (Settings{"", "", "", "1", "2"}));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableFixingTest, OneBoundAloneOrNotAccepted_IsLeftAlone) {
  EXPECT_EQ(fixed("Ratio", {"", "", "", "7", ""}), (Settings{"", "", "", "7", ""}));
  EXPECT_EQ(fixed("Ratio", {"", "", "", "", "-7"}), (Settings{"", "", "", "", "-7"}));
  EXPECT_EQ(fixed("Ratio", {"", "", "", "seven", "3"}), (Settings{"", "", "", "seven", "3"}));
  EXPECT_EQ(fixed("Ratio", {"", "", "", "7", "three"}), (Settings{"", "", "", "7", "three"}));
}

TEST_F(OptimizationGroupVariableFixingTest, Text_HasNothingToCompare) {
  EXPECT_EQ(fixed("Note", {"b", "a", "", "b", "a"}), (Settings{"b", "a", "", "b", "a"}));
}

TEST_F(OptimizationGroupVariableFixingTest, AttributeNotFound_NothingIsRepaired) {
  EXPECT_EQ(fixed("Lenght", {"10", "5", "2", "7", "3"}), (Settings{"10", "5", "2", "7", "3"}));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableFixingTest, NullHandle_DoesNothing) {
  OptimizationGroupVariable().fixVariable();
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableFixingTest, AllRepairs_AreWrittenInOrder) {
  OptimizationGroupVariable variable = variableOf("Count", {"10", "5", "2", "7", "3"});
  variable.fixVariable();
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(Variable.MaximumValue, "10", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.StepValue, "0", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.HighBoundValue, "7", force=false, affected=null, notify=true))",
      }));
}

TEST_F(OptimizationGroupVariableFixingTest, StepNearTheLimitsOfInt_WrapsAround) {
  // 2147483647 + 1 is -2147483648, which is not above the maximum.
  EXPECT_EQ(fixed("Count", {"2147483647", "2147483647", "1", "", ""}),
            (Settings{"2147483647", "2147483647", "1", "", ""}));
  // -2147483648 - 1 is 2147483647, which is above 0; 0 + 2147483648 is -2147483648.
  EXPECT_EQ(fixed("Count", {"-2147483648", "0", "-1", "", ""}),
            (Settings{"-2147483648", "0", "-2147483648", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, MaximumThatTheHostDoesNotStore_IsReadBackAsItIs) {
  OptimizationGroupVariable variable = variableOf("Count", {"10", "5", "2", "", ""});
  study.faults().fail("EntityEditor::setValueNoThrow", HostTesting::FaultKind::Refused, 1);
  variable.fixVariable();
  study.faults().heal();
  EXPECT_EQ(settingsOf(variable), (Settings{"10", "5", "-5", "", ""}));
}

TEST_F(OptimizationGroupVariableFixingTest, HostRefusesEveryWrite_TheOtherRepairsAreStillTried) {
  OptimizationGroupVariable variable = variableOf("Count", {"10", "5", "2", "7", "3"});
  study.faults().fail("EntityEditor::setValueNoThrow", HostTesting::FaultKind::Refused);
  variable.fixVariable();
  EXPECT_EQ(study.faults().strikes(), 3);
  study.faults().heal();
  EXPECT_EQ(settingsOf(variable), (Settings{"10", "5", "2", "7", "3"}));
}

// An attribute whose copies throw what is no standard exception, or are not made at all.
class DifficultAttribute : public StudyTesting::ScriptedAttribute {
public:
  explicit DifficultAttribute(bool isCloned) : m_isCloned(isCloned) {}

  bool isInteger() const override { return true; }
  void setValueFromString(const std::string &) override { throw 42; }
  std::unique_ptr<EntityModel::Attribute> clone() const override {
    return m_isCloned ? std::make_unique<DifficultAttribute>(true) : nullptr;
  }

private:
  bool m_isCloned;
};

TEST_F(OptimizationGroupVariableFixingTest, WhateverAnAttributeThrows_CountsAsNoValue) {
  for (const bool isCloned : {true, false}) {
    StudyTesting::ScriptedEntity owner;
    owner.add(EntityModel::AttributePath("Value"), std::make_unique<DifficultAttribute>(isCloned));
    const auto entity = StudyTesting::makeScriptedVariable(&owner, "Value");
    entity->add(EntityModel::AttributePath("LowBoundValue"),
                std::make_unique<StudyTesting::ScriptedAttribute>("1"));
    OptimizationGroupVariable variable(entity.get());
    EXPECT_NO_THROW(variable.fixVariable());
    EXPECT_EQ(study.takeCalls(), Calls{});
  }
}

// A whole number that writes down what is done to its copies.
class WatchedAttribute : public StudyTesting::ScriptedAttribute {
public:
  explicit WatchedAttribute(Log *log) : StudyTesting::ScriptedAttribute("", log), m_log(log) {}

  bool isInteger() const override { return true; }
  void setOptionalMinimum(const std::optional<double> &minimum) override {
    m_log->push_back(minimum ? "minimum" : "no minimum");
  }
  void setOptionalMaximum(const std::optional<double> &maximum) override {
    m_log->push_back(maximum ? "maximum" : "no maximum");
  }
  void setValueFromString(const std::string &value) override {
    text = value;
    m_log->push_back("set " + value);
  }
  std::unique_ptr<EntityModel::Attribute> clone() const override {
    m_log->push_back("copy");
    return std::make_unique<WatchedAttribute>(m_log);
  }

private:
  Log *m_log;
};

TEST_F(OptimizationGroupVariableFixingTest, EveryCopy_LosesItsLimitsBeforeItGetsATextAndIsDestroyedInTheEnd) {
  StudyTesting::ScriptedAttribute::Log log;
  StudyTesting::ScriptedEntity owner;
  owner.add(EntityModel::AttributePath("Value"), std::make_unique<WatchedAttribute>(&log));
  const auto entity = StudyTesting::makeScriptedVariable(&owner, "Value");
  const std::pair<const char *, const char *> settings[] = {{"MinimumValue", "1"},
                                                            {"MaximumValue", "2"},
                                                            {"StepValue", "3"},
                                                            {"LowBoundValue", "4"},
                                                            {"HighBoundValue", "5"}};
  for (const auto &[path, text] : settings) {
    entity->add(EntityModel::AttributePath(path), std::make_unique<StudyTesting::ScriptedAttribute>(text));
  }
  OptimizationGroupVariable(entity.get()).fixVariable();

  StudyTesting::ScriptedAttribute::Log steps;
  int copies = 0;
  for (const std::string &entry : log) {
    copies += entry == "copy" ? 1 : 0;
    if (entry.compare(0, 7, "destroy") == 0) {
      --copies;
    } else {
      steps.push_back(entry);
    }
  }
  EXPECT_EQ(copies, 0);
  const char *const texts[] = {"set 1", "set 2", "set 3", "set 4", "set 5"};
  ASSERT_EQ(steps.size(), 20U);
  for (std::size_t copy = 0; copy + 3 < steps.size(); copy += 4) {
    EXPECT_EQ(steps[copy], "copy");
    EXPECT_EQ(steps[copy + 1], "no minimum");
    EXPECT_EQ(steps[copy + 2], "no maximum");
    EXPECT_EQ(steps[copy + 3], texts[copy / 4]);
  }
}

} // namespace
} // namespace OptimizationTool
