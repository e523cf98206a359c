#include "tests/study-property/Steps.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace StudyProperty {

const std::vector<OperationEntry> &operations() {
  using O = Operation;
  static const std::vector<OperationEntry> all = {{O::AddAttribute, "addAttribute", 50},
                                                  {O::AddGroup, "addGroup", 14},
                                                  {O::AddGroupFromGroup, "addGroupFromGroup", 12},
                                                  {O::RemoveGroup, "removeGroup", 14},
                                                  {O::RemoveFromGroup, "removeFromGroup", 14},
                                                  {O::RemoveFromAnyGroup, "removeFromGroup of any side", 10},
                                                  {O::RemoveAttribute, "removeAttributeFromGroup", 12},
                                                  {O::MoveAttribute, "moveAttribute", 26},
                                                  {O::MoveGroup, "moveGroup", 20},
                                                  {O::SetGroupName, "setGroupName", 18},
                                                  {O::SetLimits, "limits of a variable", 20},
                                                  {O::AddVariant, "addVariant", 50},
                                                  {O::CopyVariant, "addVariant from a row", 20},
                                                  {O::RemoveVariant, "removeVariant", 22},
                                                  {O::SetVariantName, "setVariantName", 20},
                                                  {O::SetVariantValue, "setVariantValue", 40},
                                                  {O::SetVariantValues, "setVariantValues", 24},
                                                  {O::UpdateAll, "updateAlternates", 24},
                                                  {O::UpdateByIndex, "updateAlternates by index", 14},
                                                  {O::UpdateByName, "updateAlternates by name", 14},
                                                  {O::SetCost, "setCostFunction", 40},
                                                  {O::RecalculateCost, "recalculateCost", 14},
                                                  {O::RecalculateCosts, "recalculateCosts", 14},
                                                  {O::ClearCosts, "clearCosts", 10},
                                                  {O::SetTarget, "setOptimisationTarget", 12},
                                                  {O::ForgetCopy, "setCopyVersionName", 5},
                                                  {O::CreateCopy, "createCopyVersion", 8},
                                                  {O::CreateMissing, "createMissingVersions", 14},
                                                  {O::LoadAfresh, "study loaded afresh", 60},
                                                  {O::BeginStudy, "beginStudy", 16},
                                                  {O::EndStudy, "endStudy", 8},
                                                  {O::InitializeVersion, "initializeVersion", 24},
                                                  {O::Solve, "solver run", 36},
                                                  {O::EditModel, "edit of the model", 50},
                                                  {O::SwitchVersion, "switch of version", 30},
                                                  {O::SwitchToBaseline, "switch to a baseline", 70},
                                                  {O::AddVersion, "new version", 10},
                                                  {O::RenameVersion, "version renamed", 8},
                                                  {O::DeleteVersion, "version deleted", 8},
                                                  {O::LoseVersion, "version lost", 12},
                                                  {O::RenamePart, "part renamed", 10},
                                                  {O::DeletePart, "part deleted", 4},
                                                  {O::Save, "save", 16},
                                                  {O::Reopen, "reopen", 16}};
  return all;
}

const char *nameOf(Operation operation) {
  const auto &all = operations();
  return std::find_if(all.begin(), all.end(),
                      [operation](const OperationEntry &entry) { return entry.operation == operation; })
      ->name;
}

std::vector<Step> randomSteps(unsigned seed, int count) {
  constexpr std::array<Operation, 9> kFirst = {
      Operation::BeginStudy,   Operation::AddAttribute, Operation::AddAttribute,
      Operation::AddAttribute, Operation::AddAttribute, Operation::SetCost,
      Operation::AddVariant,   Operation::AddVariant,   Operation::Solve};
  std::mt19937 random(seed);
  const int weights =
      std::accumulate(operations().begin(), operations().end(), 0,
                      [](int sum, const OperationEntry &entry) { return sum + entry.weight; });
  std::vector<Step> steps(static_cast<std::size_t>(count));
  for (std::size_t number = 0; number < steps.size(); ++number) {
    Step &step = steps[number];
    int place = static_cast<int>(random() % static_cast<unsigned>(weights));
    for (const OperationEntry &entry : operations()) {
      place -= entry.weight;
      if (place < 0) {
        step.operation = number < kFirst.size() ? kFirst[number] : entry.operation;
        break;
      }
    }
    for (unsigned &draw : step.draws) {
      draw = static_cast<unsigned>(random() % 10000U);
    }
  }
  return steps;
}

std::string textOf(const Step &step) {
  std::string text = std::string(nameOf(step.operation)) + " {";
  for (const unsigned draw : step.draws) {
    text += (text.back() == '{' ? "" : ", ") + std::to_string(draw);
  }
  return text + "}";
}

} // namespace StudyProperty
