#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/ProjectArgument.h"
#include "Workbench/src/StudyEditing.h"

#include <algorithm>
#include <cstdint>

namespace Workbench {

namespace {

std::string addRow(ProjectSession &session, const TypedValues &values, const std::string &name,
                   const Console &console) {
  if (!name.empty()) {
    std::string problem = rowNameProblem(session, name);
    if (!problem.empty()) {
      return problem;
    }
  }
  std::string problem;
  const std::optional<std::vector<std::string>> texts = inputTexts(session, 0, values, problem);
  if (!texts) {
    return problem;
  }
  problem = ruleProblem(session, *texts);
  if (!problem.empty()) {
    return problem;
  }
  const InputIndex known(session);
  if (const std::optional<std::size_t> equal = known.find(*texts)) {
    console.note("note: the row \"" + session.rowName(*equal) + "\" has the same inputs");
  }
  const std::size_t row =
      session.data().addVariant(*texts, name.empty() ? session.freeRowName() : name, UINT64_MAX);
  if (row == 0) {
    return "The row could not be added";
  }
  session.rowWasAdded();
  console.note("Added row " + std::to_string(row) + ", " + inOneLine(session.rowName(row)) +
               "; \"optstudy solve\" or \"optstudy run\" solves it");
  return "";
}

// The baseline is edited as any version is; its alternates have inputs of their own.
std::string setRow(ProjectSession &session, std::size_t row, const TypedValues &values,
                   const Console &console) {
  std::string problem;
  const std::optional<std::vector<std::string>> before = inputTexts(session, row, {}, problem);
  const std::optional<std::vector<std::string>> texts = inputTexts(session, row, values, problem);
  if (!before || !texts) {
    return problem;
  }
  if (*before == *texts) {
    console.note("The row \"" + session.rowName(row) + "\" has these inputs already");
    return "";
  }
  problem = ruleProblem(session, *texts);
  if (!problem.empty()) {
    return problem;
  }
  session.tolerateUnpriced([&] { session.data().setVariantValues(session.rowName(row), *texts); });
  if (inputTexts(session, row, {}, problem) != texts) {
    return "The inputs of the row \"" + session.rowName(row) + "\" could not be changed";
  }
  session.assessFromRecords();
  session.clearUnreliableCosts();
  console.note("Row " + std::to_string(row) + ", " + inOneLine(session.rowName(row)) + ", is now " +
               statusText(session.rowState(row)));
  return "";
}

std::string removeRows(ProjectSession &session, const std::vector<std::string> &rows, bool keepVersions,
                       const Console &console) {
  std::vector<std::size_t> found;
  for (const std::string &name : rows) {
    const std::optional<std::size_t> row = rowNamed(session, name, console);
    if (!row) {
      return "Nothing was removed";
    }
    if (*row == 0) {
      return "Row 0 is the baseline, which cannot be removed; \"optstudy end\" ends the study";
    }
    found.push_back(*row);
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  // From the last on, so that the numbers of the others stay what they are.
  for (auto row = found.rbegin(); row != found.rend(); ++row) {
    const std::string name = session.rowName(*row);
    session.data().removeVariant(*row, !keepVersions);
    session.refreshRows();
    console.note("Removed row " + std::to_string(*row) + ", " + inOneLine(name) +
                 (keepVersions ? "; its version stays in the project" : ""));
  }
  return "";
}

} // namespace

int addRowCommand(const std::string &project, const TypedValues &values, const std::string &name,
                  const Console &console) {
  return editStudy(project, console,
                   [&](ProjectSession &session) { return addRow(session, values, name, console); });
}

int setRowCommand(const std::string &project, const std::string &row, const TypedValues &values,
                  const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::optional<std::size_t> found = rowNamed(session, row, console);
    return found ? setRow(session, *found, values, console) : "Nothing was changed";
  });
}

int renameRowCommand(const std::string &project, const std::string &row, const std::string &name,
                     const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::optional<std::size_t> found = rowNamed(session, row, console);
    if (!found) {
      return "Nothing was renamed";
    }
    if (*found == 0) {
      return "Row 0 is the baseline, whose name ties its rows to it";
    }
    std::string problem = rowNameProblem(session, name);
    if (problem.empty()) {
      session.data().setVariantName(*found, name);
      problem = session.rowName(*found) == name ? "" : "The row could not be renamed";
    }
    return problem;
  });
}

int removeRowsCommand(const std::string &project, const std::vector<std::string> &rows, bool keepVersions,
                      const Console &console) {
  return editStudy(project, console,
                   [&](ProjectSession &session) { return removeRows(session, rows, keepVersions, console); });
}

} // namespace Workbench
