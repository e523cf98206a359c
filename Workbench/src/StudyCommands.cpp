#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/CostFunctionBuilder.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/StudyExpression.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/ProjectArgument.h"
#include "Workbench/src/StudyEditing.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <ostream>
#include <set>
#include <vector>

namespace Workbench {

namespace {

using EmbeddedHost::OpenMode;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;
using MathematicalUtilities::OptimisationStrategy;
using OptimizationTool::OptimizationManager;

bool isBlank(const std::string &text) {
  return text.find_first_not_of(" \t") == std::string::npos;
}

// " at character 5: 2 + ^* 3", where the caret stands before what is meant. A character may be several bytes.
std::string placeIn(const std::string &text, std::size_t offset) {
  const auto begins = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  };
  const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
  const auto before = std::count_if(text.begin(), end, begins);
  return " at character " + std::to_string(before + 1) + ": " + text.substr(0, offset) + "^" +
         text.substr(offset);
}

// The variables that a cost may have.
std::vector<std::string> costVariables(const ProjectSession &session) {
  std::vector<std::string> names;
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < session.groupCount(isInput); ++group) {
      names.push_back(session.data().getGroup(isInput, static_cast<int>(group)).getAttributeMacro());
    }
  }
  return names;
}

// What is legal in the cost and seldom meant, each with the change that removes it.
void warn(const ProjectSession &session, const std::string &text, const Console &console) {
  std::vector<ExpressionNote> warnings;
  ExpressionNote ignored; // the text has been built as a cost
  StudyExpression::create(text, costVariables(session), warnings, ignored);
  for (const ExpressionNote &warning : warnings) {
    console.note("warning: the cost: " + warning.message + ";" + placeIn(text, warning.offset));
  }
}

// Why the text is no cost of this study; "" when it is one.
std::string problemOfCost(const ProjectSession &session, const std::string &text) {
  if (isBlank(text)) {
    return "";
  }
  const OptimizationTool::CostFunctionBuilder builder(session.data());
  if (builder.create(text) != nullptr) {
    return "";
  }
  const std::optional<std::size_t> offset = builder.getLastBuildErrorPosition();
  const ExpressionNote problem{builder.getLastBuildError(), offset.value_or(0)};
  return "The cost cannot be built, and the old one stays: " + problem.message +
         expressionHint(text, problem, costVariables(session)) + (offset ? placeIn(text, *offset) : "");
}

std::string setCost(ProjectSession &session, const std::string &text, const Console &console) {
  std::string problem = problemOfCost(session, text);
  if (!problem.empty()) {
    return problem;
  }
  warn(session, text, console);
  std::string unpriced;
  try {
    session.data().setCostFunction(text);
  } catch (const std::exception &) {
    unpriced = session.updateAndPrice();
  }
  session.clearUnreliableCosts();
  if (!unpriced.empty()) {
    console.error(unpriced);
  }
  const MatrixTable table = MatrixTable::of(session);
  const std::string best = bestLine(table);
  console.out << table.toText() << "\n"
              << best << (best.empty() ? "" : "\n") << RowCounts::of(table).toText() << "\n";
  return "";
}

// Visits all versions that come after one.
void forEachFollower(const ModelVersion &version, const std::function<void(ModelVersion &)> &visit) {
  std::vector<const ModelVersion *> open{&version};
  while (!open.empty()) {
    const ModelVersion *current = open.back();
    open.pop_back();
    for (auto next = current->beginNext(); next != current->endNext(); ++next) {
      visit(**next);
      open.push_back(*next);
    }
  }
}

// The versions that come after the baseline and belong to nobody's rows now: those of a study that was ended, or of a
// row that was removed without its version. The library deletes them with the rows.
std::vector<std::string> otherFollowers(const ProjectSession &session) {
  std::set<const ModelVersion *> rows;
  for (std::size_t row = 1; row < session.rowCount(); ++row) {
    rows.insert(session.rowVersion(row));
  }
  std::vector<std::string> others;
  forEachFollower(*session.baseline(), [&](const ModelVersion &version) {
    if (rows.count(&version) == 0 && version.getVersionType() != ModelVersion::VersionType::Copy) {
      others.push_back(version.getLabel());
    }
  });
  return others;
}

// Deletes the versions of the rows, and those that rows are alternates of when nothing comes after them any more.
void endKeepingOthers(ProjectSession &session) {
  std::vector<ModelVersion *> copies;
  forEachFollower(*session.baseline(), [&copies](ModelVersion &version) {
    if (version.getVersionType() == ModelVersion::VersionType::Copy) {
      copies.push_back(&version);
    }
  });
  for (std::size_t row = session.rowCount() - 1; row > 0; --row) {
    session.data().removeVariant(row, true);
  }
  OptimizationManager::instance().endStudy(false);
  for (ModelVersion *copy : copies) {
    if (copy->beginNext() == copy->endNext()) {
      const EmbeddedHost::CommandResult deleted = session.commands().deleteVersion(copy);
      static_cast<void>(deleted); // what stays is an empty version without meaning
    }
  }
}

const char *targetWord(OptimisationStrategy target) {
  return target == OptimisationStrategy::Minimise   ? "minimise"
         : target == OptimisationStrategy::Maximise ? "maximise"
                                                    : "none";
}

} // namespace

int beginCommand(const std::string &project, ModelVersionStudyType type, const Console &console) {
  return withProject(project, OpenMode::ReadWrite, console, [&](ProjectSession &session) {
    if (session.hasStudy()) {
      console.error("The project " + session.fileName() + " has a study already: \"optstudy end\" ends it.");
      return ExitCode::kInvalid;
    }
    OptimizationManager::instance().beginStudy(type);
    if (!session.hasStudy()) {
      console.error("The study could not be begun.");
      return ExitCode::kInvalid;
    }
    const std::string problem = session.save();
    if (!problem.empty()) {
      console.error(problem);
      return ExitCode::kInternalError;
    }
    console.note("Began a study; next: \"optstudy input add " + shellWord(project) + " ATTRIBUTE\"");
    return ExitCode::kDone;
  });
}

int endCommand(const std::string &project, bool deleteVersions, const Console &console) {
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    const std::size_t rows = session.rowCount() - 1;
    const std::vector<std::string> others =
        deleteVersions ? otherFollowers(session) : std::vector<std::string>();
    if (others.empty()) {
      OptimizationManager::instance().endStudy(deleteVersions);
    } else {
      endKeepingOthers(session);
    }
    if (session.hasStudy()) {
      return "The study could not be ended";
    }
    console.note("Ended the study; " + numbered(rows, "row was ", "rows were ") +
                 (deleteVersions ? "deleted" : "kept as versions of the project"));
    for (const std::string &name : others) {
      console.note("note: the version \"" + inOneLine(name) + "\" is no row of it and stays");
    }
    return "";
  });
}

int costCommand(const std::string &project, const std::optional<std::string> &text, const Console &console) {
  if (text) {
    return editStudy(project, console,
                     [&](ProjectSession &session) { return setCost(session, *text, console); });
  }
  return withStudy(project, OpenMode::ReadOnly, console, [&](ProjectSession &session) {
    console.out << session.data().getCostFunction() << "\n";
    return ExitCode::kDone;
  });
}

int targetCommand(const std::string &project, const std::optional<OptimisationStrategy> &target,
                  const Console &console) {
  if (!target) {
    return withStudy(project, OpenMode::ReadOnly, console, [&](ProjectSession &session) {
      console.out << targetWord(session.data().getOptimisationTarget()) << "\n";
      return ExitCode::kDone;
    });
  }
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    session.setTarget(*target);
    const std::string best = bestLine(MatrixTable::of(session));
    console.out << best << (best.empty() ? "" : "\n");
    return session.data().getOptimisationTarget() == *target ? "" : "The target could not be set";
  });
}

} // namespace Workbench
