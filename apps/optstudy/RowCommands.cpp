#include "apps/optstudy/Commands.h"

using Workbench::Console;
using Workbench::TypedValues;

namespace {

// What "NAME=VALUE" says; a word without "=" names an input and no value, which is reported where it is used.
TypedValues typedValues(const std::vector<std::string> &words) {
  TypedValues values;
  for (const std::string &word : words) {
    const std::size_t equals = word.find('=');
    values.emplace_back(word.substr(0, equals), equals == std::string::npos ? "" : word.substr(equals + 1));
  }
  return values;
}

void addAssignments(const Command &command, CommandValues &values) {
  command.option("VALUES", values.words, "What inputs are to be: \"R=4.7 kohm\" C1=33nF")
      .required()
      .checkedBy([](const std::string &word) {
        return word.find('=') == std::string::npos || word.front() == '='
                   ? "write INPUT=VALUE, not \"" + word + "\""
                   : "";
      });
}

} // namespace

void addRowCommands(const Command &program, CommandValues &values) {
  const Command add =
      program.command("add", "Add a row", "add filter.optstudy --name big \"R=47 kohm\" \"Filter.C1=100 nF\"",
                      [&values](const Console &console) {
                        return addRowCommand(values.project, typedValues(values.words), values.name, console);
                      });
  addProject(add, values);
  add.option("--name", values.name, "The row's name");
  addAssignments(add, values);
  const Command set =
      program.command("set", "Change inputs of a row", "set filter.optstudy 3 \"R=47 kohm\"",
                      [&values](const Console &console) {
                        return setRowCommand(values.project, values.row, typedValues(values.words), console);
                      });
  addRow(set, values);
  addAssignments(set, values);
  const Command rename =
      program.command("rename", "Give a row another name", "rename filter.optstudy 3 favourite",
                      [&values](const Console &console) {
                        return renameRowCommand(values.project, values.row, values.name, console);
                      });
  addRow(rename, values);
  rename.option("NAME", values.name, "The new name").required();
  const Command remove =
      program.command("remove", "Remove rows with all their results", "remove filter.optstudy 3 4",
                      [&values](const Console &console) {
                        return removeRowsCommand(values.project, values.words, values.isKeeping, console);
                      });
  addProject(remove, values);
  remove.option("ROW", values.words, "Names or numbers").required();
  remove.flag("--keep-version", values.isKeeping, "Keep their versions in the project");
}
