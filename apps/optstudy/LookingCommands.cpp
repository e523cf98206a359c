#include "apps/optstudy/Commands.h"

using Workbench::Console;
using Workbench::Differences;

namespace {

void addShow(const Command &program, CommandValues &values) {
  const Command show =
      program.command("show", "Print the matrix", "show filter.optstudy --sort cost --status ok --top 5",
                      [&values](const Console &console) {
                        values.show.project = values.project;
                        values.show.format = values.format;
                        return showCommand(values.show, console);
                      });
  addProject(show, values);
  addFormat(show, values);
  Workbench::MatrixSelection &selection = values.show.selection;
  show.option("--sort", selection.sort, "row, name, status, cost, or an input or output");
  show.flag("--descending", selection.isDescending, "The largest first");
  show.option("--status", selection.statuses, "Rows of this status only; may be given several times")
      .oneAtATime();
  show.option("--columns", selection.columns, "These inputs and outputs only, with commas between")
      .separatedBy(',')
      .oneAtATime();
  show.option("--top", selection.most, "So many rows at most, after sorting");
  show.choice<Differences, Differences>(
      "--differences", values.show.differences,
      {{"none", Differences::None}, {"absolute", Differences::Absolute}, {"percent", Differences::Percent}},
      "To the baseline: percent, absolute or none");
}

} // namespace

void addLookingCommands(const Command &program, CommandValues &values) {
  addShow(program, values);
  const Command best = program.command(
      "best", "Print the best row beside the baseline", "best filter.optstudy",
      [&values](const Console &console) { return bestCommand(values.project, values.format, console); });
  addProject(best, values);
  addFormat(best, values);
  const Command status = program.command(
      "status", "Print how many rows are what", "status filter.optstudy --format json",
      [&values](const Console &console) { return statusCommand(values.project, values.format, console); });
  addProject(status, values);
  addFormat(status, values);
  addProject(
      program.command("versions", "Print the tree of versions", "versions filter.optstudy",
                      [&values](const Console &console) { return versionsCommand(values.project, console); }),
      values);
  addRow(program.command(
             "log", "Print what is recorded of a row's last run", "log filter.optstudy 3",
             [&values](const Console &console) { return logCommand(values.project, values.row, console); }),
         values);
  addRow(program.command("folder", "Print where the files of a row's last run are",
                         "folder filter.optstudy 3",
                         [&values](const Console &console) {
                           return folderCommand(values.project, values.row, console);
                         }),
         values);
}
