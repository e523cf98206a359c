// The order in which a new input of an optimality study gets its limits, which a host's user sees as steps to undo.

#include "OptimizationTool/tests/ManagedStudy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using EntityModel::ModelVersionStudyType;
using StudyTesting::ManagedStudy;
using Texts = std::vector<std::string>;

// The members of the new variable that are written, each with its value, as in `Path, "Ratio"`.
Texts writesWhenAdded(const char *path) {
  ManagedStudy study;
  study.begin(ModelVersionStudyType::Optimality);
  ManagedStudy::manager().addInputAttribute(ManagedStudy::attribute(study.fan(), path));
  const std::string variable = "Study.OptimizationInputs[0].OptimizationAttributes[0].";
  Texts written;
  for (const std::string &text : study.takeCalls()) {
    const std::size_t found = text.find(variable);
    if (text.rfind("EntityEditor::setValueNoThrow(", 0) == 0 && found != std::string::npos) {
      const std::size_t member = found + variable.size();
      written.push_back(text.substr(member, text.find(", force") - member));
    }
  }
  return written;
}

TEST(OptimizationManagerLimitsTest, Boolean_MinimumThenMaximum) {
  EXPECT_EQ(writesWhenAdded("Active"),
            (Texts{R"(Path, "Active")", R"(MinimumValue, "0")", R"(MaximumValue, "1")"}));
}

TEST(OptimizationManagerLimitsTest, Choice_MinimumThenMaximumThenStep) {
  EXPECT_EQ(writesWhenAdded("Material"), (Texts{R"(Path, "Material")", R"(MinimumValue, "1")",
                                                R"(MaximumValue, "3")", R"(StepValue, "1")"}));
}

TEST(OptimizationManagerLimitsTest, Number_MinimumThenMaximum) {
  EXPECT_EQ(writesWhenAdded("Ratio"),
            (Texts{R"(Path, "Ratio")", R"(MinimumValue, "0.5")", R"(MaximumValue, "0.5")"}));
}

} // namespace
} // namespace OptimizationTool
