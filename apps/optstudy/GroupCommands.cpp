#include "apps/optstudy/Commands.h"

using Workbench::Console;

namespace {

void addGroup(const Command &command, CommandValues &values) {
  addProject(command, values);
  command.option("GROUP", values.group, "Its name, or its first attribute").required();
}

void addAdding(const Command &family, bool isInput, CommandValues &values) {
  const std::string side = isInput ? "input" : "output";
  const Command add = family.command(
      "add", "Add attributes as one " + side,
      side + " add filter.optstudy " + (isInput ? "Filter.R1 Filter.R2 --name R" : "Filter.Peaking"),
      [&values, isInput](const Console &console) {
        return addGroupCommand(values.project, isInput, values.words, values.name, console);
      });
  addProject(add, values);
  add.option("ATTRIBUTE", values.words, "Attributes that share one value, as Entity.Attribute").required();
  add.option("--name", values.name, "The group's name");
}

void addRemoving(const Command &family, bool isInput, CommandValues &values) {
  const std::string side = isInput ? "input" : "output";
  addGroup(family.command("remove", "Remove an " + side, side + " remove filter.optstudy Filter.C2",
                          [&values, isInput](const Console &console) {
                            return removeGroupCommand(values.project, isInput, values.group, console);
                          }),
           values);
}

void addLimiting(const Command &family, CommandValues &values) {
  const Command set = family.command(
      "set", "Set limits of an input", "input set filter.optstudy R --minimum \"1 kohm\" --step \"100 ohm\"",
      [&values](const Console &console) {
        return limitGroupCommand(values.project, values.group, values.limits, console);
      });
  addGroup(set, values);
  set.option("--minimum", values.limits.minimum, "The lowest value; \"\" for none");
  set.option("--maximum", values.limits.maximum, "The highest value; \"\" for none");
  set.option("--step", values.limits.step, "The distance of two values; \"\" for none");
  set.option("--low-bound", values.limits.lowBound, "The bound for optimisers; \"\" for none");
  set.option("--high-bound", values.limits.highBound, "The bound for optimisers; \"\" for none");
}

void addGroupFamily(const Command &program, CommandValues &values) {
  const Command family = program.family("group", "List, rename or move inputs and outputs");
  addProject(
      family.command("list", "Print inputs and outputs", "group list filter.optstudy",
                     [&values](const Console &console) { return groupsCommand(values.project, console); }),
      values);
  const Command rename =
      family.command("rename", "Give an input or output another name",
                     "group rename filter.optstudy R resistors", [&values](const Console &console) {
                       return renameGroupCommand(values.project, values.group, values.name, console);
                     });
  addGroup(rename, values);
  rename.option("NAME", values.name, "The new name; \"\" for none").required();
  const Command move =
      family.command("move", "Move an input or output to another place",
                     "group move filter.optstudy Filter.C2 0", [&values](const Console &console) {
                       return moveGroupCommand(values.project, values.group, values.place, console);
                     });
  addGroup(move, values);
  move.option("PLACE", values.place, "Counted from 0").required();
}

} // namespace

void addGroupCommands(const Command &program, CommandValues &values) {
  const Command input = program.family("input", "Add, remove or limit an input");
  addAdding(input, true, values);
  addRemoving(input, true, values);
  addLimiting(input, values);
  const Command output = program.family("output", "Add or remove an output");
  addAdding(output, false, values);
  addRemoving(output, false, values);
  addGroupFamily(program, values);
}
