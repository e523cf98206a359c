#include "apps/optstudy/Commands.h"

using EntityModel::ModelVersionStudyType;
using MathematicalUtilities::OptimisationStrategy;
using Workbench::Console;

namespace {

void addBeginAndEnd(const Command &program, CommandValues &values) {
  const Command begin = program.command(
      "begin", "Begin a study in a project that has none", "begin filter.optstudy",
      [&values](const Console &console) { return beginCommand(values.project, values.type, console); });
  addProject(begin, values);
  begin.choice<ModelVersionStudyType, ModelVersionStudyType>(
      "--type", values.type,
      {{"parametric", ModelVersionStudyType::Parametric},
       {"optimality", ModelVersionStudyType::Optimality},
       {"calibration", ModelVersionStudyType::Calibration}},
      "parametric, optimality or calibration");
  const Command end = program.command(
      "end", "End the study; its rows become ordinary versions", "end filter.optstudy",
      [&values](const Console &console) { return endCommand(values.project, values.isDeleting, console); });
  addProject(end, values);
  end.flag("--delete-versions", values.isDeleting, "Delete the rows with all their results");
}

} // namespace

void addStudyCommands(const Command &program, CommandValues &values) {
  addBeginAndEnd(program, values);
  const Command cost =
      program.command("cost", "Set the cost and price every row anew, or print it",
                      "cost filter.optstudy \"10.0 * %Filter.Peaking%\"", [&values](const Console &console) {
                        return costCommand(values.project, values.text, console);
                      });
  addProject(cost, values);
  cost.takesExpression(
      cost.option("TEXT", values.text,
                  "The cost; \"\" for none. Nothing is run, and a text that is no cost changes nothing"));
  const Command target = program.command(
      "target", "Set what the best row is, or print it", "target filter.optstudy minimise",
      [&values](const Console &console) { return targetCommand(values.project, values.target, console); });
  addProject(target, values);
  target.choice<std::optional<OptimisationStrategy>, OptimisationStrategy>(
      "TARGET", values.target,
      {{"minimise", OptimisationStrategy::Minimise},
       {"maximise", OptimisationStrategy::Maximise},
       {"none", OptimisationStrategy::None}},
      "minimise, maximise or none");
}
