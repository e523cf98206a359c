#pragma once

#include "HostModel/StudyEnumerations.h"
#include "Workbench/Console.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Workbench {

/// An input and what it is to be, as somebody typed it: {"Filter.R1", "4.7 kohm"}.
using TypedValues = std::vector<std::pair<std::string, std::string>>;

/// Limits of an input as somebody typed them; "" removes one, nothing leaves it.
struct TypedLimits {
  std::optional<std::string> minimum;
  std::optional<std::string> maximum;
  std::optional<std::string> step;
  std::optional<std::string> lowBound;
  std::optional<std::string> highBound;
};

/// \name Commands that change the study of a project
/// None of them runs a solver. What they change is saved before they end; when they refuse, nothing has changed. Each
/// answers one of ExitCode. `project` names a project, or the study file that it belongs to. A group is named by its
/// name or by its first attribute, a row by its name or its number.
/// @{

/// Begins a study of the root version of a project that has none.
int beginCommand(const std::string &project, EntityModel::ModelVersionStudyType type, const Console &console);
/// Ends the study. Its rows become ordinary versions.
/// \param deleteVersions  its rows are deleted with all their results
int endCommand(const std::string &project, bool deleteVersions, const Console &console);

/// Adds attributes as one group. The rows keep the values that they have.
int addGroupCommand(const std::string &project, bool isInput, const std::vector<std::string> &attributes,
                    const std::string &name, const Console &console);
/// Removes a group. The rows get the baseline's value of an input that is removed.
int removeGroupCommand(const std::string &project, bool isInput, const std::string &group,
                       const Console &console);
/// Gives a group another name; "" removes it.
int renameGroupCommand(const std::string &project, const std::string &group, const std::string &name,
                       const Console &console);
/// Moves a group to another place among the inputs or outputs, counted from 0.
int moveGroupCommand(const std::string &project, const std::string &group, std::size_t place,
                     const Console &console);
/// Sets limits of an input group.
int limitGroupCommand(const std::string &project, const std::string &group, const TypedLimits &limits,
                      const Console &console);
/// Prints the groups with their attributes and limits.
int groupsCommand(const std::string &project, const Console &console);

/// Sets the cost, prices every row and prints the matrix; without a text prints the cost. A cost that cannot be built
/// is not stored.
int costCommand(const std::string &project, const std::optional<std::string> &text, const Console &console);
/// Sets the target; without one prints it.
int targetCommand(const std::string &project,
                  const std::optional<MathematicalUtilities::OptimisationStrategy> &target,
                  const Console &console);

/// Adds a row; inputs that are not named are the baseline's.
/// \param name  "" for a name that is made up
int addRowCommand(const std::string &project, const TypedValues &values, const std::string &name,
                  const Console &console);
/// Changes inputs of a row, of the baseline too. A row that is solved becomes stale.
int setRowCommand(const std::string &project, const std::string &row, const TypedValues &values,
                  const Console &console);
int renameRowCommand(const std::string &project, const std::string &row, const std::string &name,
                     const Console &console);
/// Removes rows with all their results.
/// \param keepVersions  the versions stay in the project, as ordinary ones
int removeRowsCommand(const std::string &project, const std::vector<std::string> &rows, bool keepVersions,
                      const Console &console);
/// @}

} // namespace Workbench
