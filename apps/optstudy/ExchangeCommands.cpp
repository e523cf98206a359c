#include "apps/optstudy/Commands.h"

using Workbench::Console;

void addExchangeCommands(const Command &program, CommandValues &values) {
  const Command exporting =
      program.command("export", "Write the matrix as CSV or JSON", "export filter.optstudy matrix.csv",
                      [&values](const Console &console) {
                        return exportCommand(values.project, values.format, values.file, console);
                      });
  addProject(exporting, values);
  exporting.option("FILE", values.file, "A new file; standard output when left out");
  addFormat(exporting, values);
  const Command importing = program.command(
      "import", "Take rows from a table", "import filter.optstudy rows.csv",
      [&values](const Console &console) { return importCommand(values.project, values.file, console); });
  addProject(importing, values);
  importing.option("FILE", values.file, "CSV, or JSON that export wrote").required();
  const Command backup =
      program.command("backup", "Copy a project with its results, safe while it is solved",
                      "backup filter.optstudy filter-monday.optstudy", [&values](const Console &console) {
                        return backupCommand(values.project, values.file, console);
                      });
  addProject(backup, values);
  backup.option("FILE", values.file, "The new project").required();
  addProject(
      program.command("doctor", "Check everything about a project and say how to mend it",
                      "doctor filter.optstudy",
                      [&values](const Console &console) { return doctorCommand(values.project, console); }),
      values);
}
