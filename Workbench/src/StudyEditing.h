#pragma once

#include "OptimizationTool/OptimizationGroupVariable.h"
#include "Workbench/Console.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ProjectSession.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

// What changes a study answers: "" or one sentence saying why nothing was changed.
using StudyEdit = std::function<std::string(ProjectSession &)>;

// Opens a project, changes its study and saves it. \return one of ExitCode
int editStudy(const std::string &project, const Console &console, const StudyEdit &edit);

// A group of a session.
struct GroupPlace {
  bool isInput = true;
  std::size_t index = 0;
};

// The group of that name or first attribute.
std::optional<GroupPlace> findGroup(const ProjectSession &session, const std::string &name);
// Why there is no such group.
std::string unknownGroup(const ProjectSession &session, const std::string &name);
// What people call a group: its name, or its first attribute's.
std::string groupTitle(const ProjectSession &session, const GroupPlace &place);

// Why no new row can have the name; "" when one can.
std::string rowNameProblem(const ProjectSession &session, const std::string &name);

// "minimum 1 mm, maximum 5 mm"; "" when it has no limits.
// \param unit  that they are shown in; "" for the one that they were given in
std::string limitsOf(const OptimizationTool::OptimizationGroupVariable &variable,
                     const std::string &unit = "");

// Reads the study anew from the model, which is due after every change of groups: the matrix in memory keeps its cells
// where they were.
void reloadStudy(ProjectSession &session);

// Gives every row the baseline's value of an input. Due before an input is removed: a value that stayed behind in a
// version would go on making the row another one, where nobody sees it.
void takeBaselineValue(ProjectSession &session, std::size_t group);

// The texts of all inputs of a row as the model reads them, with some replaced by what somebody typed.
// \return empty with one sentence in `problem` when one is no value of its input
std::optional<std::vector<std::string>> inputTexts(const ProjectSession &session, std::size_t row,
                                                   const TypedValues &values, std::string &problem);

// Why a row with these inputs breaks the study's rule; "" when it meets it. Attributes that are no inputs are taken as
// the baseline has them.
std::string ruleProblem(const ProjectSession &session, const std::vector<std::string> &texts);

// The rows of a session by their inputs, as they are when it is made.
class InputIndex {
public:
  explicit InputIndex(const ProjectSession &session);
  // The first row with exactly these inputs, as inputTexts() gives them.
  std::optional<std::size_t> find(const std::vector<std::string> &texts) const;

private:
  std::map<std::vector<std::string>, std::size_t> m_rows;
};

} // namespace Workbench
