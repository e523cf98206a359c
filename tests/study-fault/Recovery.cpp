#include "tests/study-fault/Recovery.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ModelVersion.h"
#include "tests/study-fault/Snapshot.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

namespace StudyFaults {

using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;
using OptimizationTool::OptimizationData;

namespace {

constexpr const char *kRow = "After";

// What is found wrong ends the attempt.
class Problem : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

void expect(bool isTrue, const std::string &text) {
  if (!isTrue) {
    throw Problem(text);
  }
}

void require(const EmbeddedHost::CommandResult &result) {
  expect(static_cast<bool>(result), result.problem);
}

ModelVersion *find(Stage &stage, const std::string &label) {
  return stage.project().changeManager().findVersion(label, nullptr);
}

void beginAnew(Stage &stage, std::vector<std::string> &steps) {
  if (stage.project().currentVersion()->getStudyType() != ModelVersionStudyType::None) {
    steps.emplace_back("end and begin again");
    Stage::manager().endStudy(false);
  } else {
    steps.emplace_back("begin again");
  }
  Stage::manager().beginStudy(ModelVersionStudyType::Parametric);
  expect(Stage::held() != nullptr, "no study begins");
}

void loadAnew(std::vector<std::string> &steps) {
  steps.emplace_back("load again");
  Stage::manager().initializeVersion();
}

// The matrix is that of the study: a baseline row first, and no row without a name.
bool isMatrixWhole(OptimizationData &data) {
  for (std::size_t row = 0; row < data.getNumVariants(); ++row) {
    if (data.getVariantName(row).empty()) {
      return false;
    }
  }
  return data.getVariantName(0) == "Base" && !data.isEditingVersions();
}

bool isBegun(Stage &stage) {
  return stage.project().currentVersion()->getStudyType() != ModelVersionStudyType::None;
}

// The version that rows are made from is there, and is marked as part of the study.
bool hasCopy(Stage &stage) {
  const std::string name = Stage::data().getCopyVersionName();
  const ModelVersion *copy = name.empty() ? nullptr : find(stage, name);
  return copy != nullptr && copy->isStudyCase(true, false);
}

// A variable that names nothing that can be varied or compared.
bool isUseless(const EntityModel::Attribute *attribute) {
  return attribute == nullptr || attribute->isEntity();
}

bool removeUselessVariable(OptimizationData &data, bool isInput, std::vector<std::string> &steps) {
  const int count = isInput ? data.getNumInputs() : data.getNumOutputs();
  for (int group = 0; group < count; ++group) {
    const OptimizationTool::OptimizationGroup found = data.getGroup(isInput, group);
    if (isUseless(found.getFrontAttribute())) {
      steps.emplace_back("remove group");
      data.removeGroup(isInput, group);
      return true;
    }
    for (int variable = 1; variable < found.size(); ++variable) {
      if (isUseless(found.getAttribute(variable))) {
        steps.emplace_back("remove variable");
        data.getGroups(isInput).removeVariable(group, variable, false);
        return true;
      }
    }
  }
  return false;
}

void removeUselessVariables(OptimizationData &data, std::vector<std::string> &steps) {
  for (const bool isInput : {true, false}) {
    while (removeUselessVariable(data, isInput, steps)) {
    }
  }
}

// From whatever is left to a study on the baseline with a copy version and groups.
void putRight(Stage &stage, std::vector<std::string> &steps) {
  if (stage.currentLabel() != "Base") {
    steps.emplace_back("switch back");
    require(stage.commands().switchVersion("Base"));
  }
  if (isBegun(stage) && (Stage::held() == nullptr || !isMatrixWhole(Stage::data()))) {
    loadAnew(steps);
  }
  if (!isBegun(stage) || Stage::held() == nullptr || Stage::data().getBaseVersionName() != "Base") {
    beginAnew(stage, steps);
  }
  OptimizationData &data = Stage::data();
  expect(isMatrixWhole(data), "the matrix is not that of the study");
  if (!data.allVersionsExist()) {
    steps.emplace_back("recreate versions");
    data.createMissingVersions();
  }
  if (!hasCopy(stage)) {
    steps.emplace_back("new copy");
    data.createCopyVersion(true);
  }
  removeUselessVariables(data, steps);
  if (data.getNumInputs() == 0) {
    stage.addGroups();
    data.setCostFunction(Stage::kCost);
  }
}

// As the text of a quantity or of a number.
bool isNumber(const std::string &text, double number) {
  return !text.empty() && std::abs(std::stod(text) - number) < 1e-9;
}

// What the row costs by the values that its cells hold, where the cost function is the one of the beginning.
std::optional<double> expectedCost(OptimizationData &data, std::size_t row) {
  double cost = 0.0;
  const std::vector<std::pair<std::string, double>> terms = {
      {"Fan.Speed", 1.0}, {"Fan.Angle", 2.0}, {"Fan.Power", 1.0}};
  for (const auto &[macro, factor] : terms) {
    for (const bool isInput : {true, false}) {
      const int count = isInput ? data.getNumInputs() : data.getNumOutputs();
      for (int group = 0; group < count; ++group) {
        if (data.getGroup(isInput, group).getAttributeMacro() == macro) {
          const EntityModel::Attribute *cell =
              data.getVariantGroup(isInput, row, static_cast<std::size_t>(group));
          if (cell == nullptr || !cell->hasValue()) {
            return std::nullopt;
          }
          cost += factor * cell->getStandardValue();
        }
      }
    }
  }
  return cost;
}

// The row's version and its cells have the values that the row was given.
void checkValues(Stage &stage, std::size_t row, double first) {
  OptimizationData &data = Stage::data();
  stage.show(kRow);
  std::string wrong;
  for (int group = 0; group < data.getNumInputs(); ++group) {
    const double value = first + group;
    for (int variable = 0; variable < data.getGroup(true, group).size(); ++variable) {
      const EntityModel::Attribute *attribute = data.getGroup(true, group).getAttribute(variable);
      if (attribute == nullptr || !isNumber(attribute->getValueAsString(), value)) {
        wrong = "the version of the new row has another value";
      }
    }
    const EntityModel::Attribute *cell = data.getVariantGroup(true, row, static_cast<std::size_t>(group));
    if (cell == nullptr || !isNumber(cell->getValueAsString(), value)) {
      wrong = "the new row has another value";
    }
  }
  stage.show("Base");
  expect(wrong.empty(), wrong);
}

void addRow(Stage &stage) {
  constexpr double kFirst = 31.0;
  OptimizationData &data = Stage::data();
  std::vector<std::string> values(static_cast<std::size_t>(data.getNumInputs()));
  for (std::size_t group = 0; group < values.size(); ++group) {
    values[group] = std::to_string(31 + group);
  }
  const std::size_t rowsBefore = data.getNumVariants();
  const std::size_t row = data.addVariant(values, kRow, std::numeric_limits<std::uint64_t>::max());
  expect(row == rowsBefore && row > 0, "no row is added");
  expect(find(stage, kRow) != nullptr, "the new row has no version");
  expect(stage.currentLabel() == "Base", "another version is current after a row was added");
  checkValues(stage, row, kFirst);
  data.updateAlternate(
      OptimizationData::UpdateTypes(OptimizationData::WriteToModel) | OptimizationData::ReadFromModel, row);
  expect(stage.currentLabel() == "Base", "another version is current after an update");
  expect(!data.isEditingVersions() && !data.isSolvingVersions(), "a flag is set after an update");
  if (data.getCostFunction() == Stage::kCost && data.getLastCostFunctionError().empty()) {
    expect(data.getVariantCost(row) == expectedCost(data, row), "the new row has another cost");
  }
}

// What is stored is a whole study.
void loadAgain(Stage &stage) {
  require(stage.commands().switchVersion(kRow));
  require(stage.commands().switchVersion("Base"));
  expect(Stage::held() != nullptr, "no study is loaded");
  const Snapshot seen = look(stage);
  expect(!seen.isEditing && !seen.isSolving, "a flag is set after a load");
  expect(!seen.rows.empty() && seen.rows.front().name == "Base", "no baseline row after a load");
  expect(Stage::data().containsVariant(kRow), "the new row is not loaded");
  for (const SeenRow &row : seen.rows) {
    expect(row.inputs == seen.inputs && row.outputs == seen.outputs, "a cell is missing after a load");
  }
}

} // namespace

Recovery goOn(Stage &stage) {
  Recovery recovery;
  try {
    putRight(stage, recovery.steps);
    // Setting the text again is how a calculator is made for groups that have changed.
    Stage::data().setCostFunction(Stage::data().getCostFunction());
    addRow(stage);
    loadAgain(stage);
  } catch (const std::exception &error) {
    recovery.problem = error.what();
  }
  return recovery;
}

} // namespace StudyFaults
