#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace StudyProperty {

enum class Operation {
  AddAttribute,
  AddGroup,
  AddGroupFromGroup,
  RemoveGroup,
  RemoveFromGroup,
  RemoveFromAnyGroup,
  RemoveAttribute,
  MoveAttribute,
  MoveGroup,
  SetGroupName,
  SetLimits,
  AddVariant,
  CopyVariant,
  RemoveVariant,
  SetVariantName,
  SetVariantValue,
  SetVariantValues,
  UpdateAll,
  UpdateByIndex,
  UpdateByName,
  SetCost,
  RecalculateCost,
  RecalculateCosts,
  ClearCosts,
  SetTarget,
  ForgetCopy,
  CreateCopy,
  CreateMissing,
  LoadAfresh,
  BeginStudy,
  EndStudy,
  InitializeVersion,
  Solve,
  EditModel,
  SwitchVersion,
  SwitchToBaseline,
  AddVersion,
  RenameVersion,
  DeleteVersion,
  LoseVersion,
  RenamePart,
  DeletePart,
  Save,
  Reopen,
};

struct OperationEntry {
  Operation operation;
  const char *name;
  int weight;
};

/// Every operation with how often it is drawn.
const std::vector<OperationEntry> &operations();
const char *nameOf(Operation operation);

/// One operation; what it is applied to is chosen by its numbers among what there is at that time, so that a step makes
/// sense whatever steps go before it.
struct Step {
  Operation operation = Operation::Save;
  std::array<unsigned, 8> draws = {};
};

/// Hands a step's numbers out one after the other.
class Draws {
public:
  explicit Draws(const Step &step) : m_step(step) {}

  /// 0 to count - 1; 0 when the count is 0.
  int below(std::size_t count) {
    const unsigned number = m_step.draws[m_next++ % m_step.draws.size()];
    return count == 0 ? 0 : static_cast<int>(number % count);
  }
  bool oneIn(std::size_t count) { return below(count) == 0; }

private:
  const Step &m_step;
  std::size_t m_next = 0;
};

/// The first steps begin a study with a few groups and rows.
std::vector<Step> randomSteps(unsigned seed, int count);
/// As source text, so that a failing sequence can be run again as it is.
std::string textOf(const Step &step);

} // namespace StudyProperty
