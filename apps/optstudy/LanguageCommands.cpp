#include "apps/optstudy/Commands.h"

using Workbench::Console;

namespace {

void addEval(const Command &program, CommandValues &values) {
  const Command eval = program.command(
      "eval", "Print type and value of a text of the cost language", "eval \"%x% * 2\" --var x=2.7",
      [&values](const Console &console) { return evalCommand(values.eval, console); });
  eval.takesExpression(eval.option("TEXT", values.eval.texts, "The text, in quotes").required());
  eval.option("--var", values.eval.variables,
              "NAME=VALUE: a variable, %NAME% in the text; may be given several times")
      .oneAtATime();
}

} // namespace

void addLanguageCommands(const Command &program, CommandValues &values) {
  const Command functions = program.command(
      "functions", "Print the operators and functions of the cost language", "functions",
      [&values](const Console &console) { return Workbench::functionsCommand(values.format, console); });
  addFormat(functions, values);
  addEval(program, values);
}
