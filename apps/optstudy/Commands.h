#pragma once

#include "Workbench/CheckCommand.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ExchangeCommands.h"
#include "Workbench/InitCommand.h"
#include "Workbench/LanguageCommands.h"
#include "Workbench/LookCommands.h"
#include "Workbench/RunStudy.h"
#include "apps/optstudy/Command.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// What the words of a command line say, for the one command that it names.
struct CommandValues {
  Workbench::CheckOptions check;
  Workbench::RunOptions run;
  Workbench::SolveRowsOptions solve;
  Workbench::ShowOptions show;
  Workbench::EvalOptions eval;
  std::string allowedFailures = "0";
  std::size_t jobs = 2;
  Workbench::OutputFormat format = Workbench::OutputFormat::Table;
  std::string project;
  std::string row;
  std::string group;
  std::string name;
  std::string file;
  std::string folder;
  std::size_t place = 0;
  std::vector<std::string> words;
  std::optional<std::string> text;
  std::optional<MathematicalUtilities::OptimisationStrategy> target;
  EntityModel::ModelVersionStudyType type = EntityModel::ModelVersionStudyType::Parametric;
  Workbench::TypedLimits limits;
  bool isDeleting = false;
  bool isKeeping = false;
};

// The commands of the program, one file for each family. `values` is kept by reference.
void addSolvingCommands(const Command &program, CommandValues &values); // and init, which comes before
void addLookingCommands(const Command &program, CommandValues &values);
void addStudyCommands(const Command &program, CommandValues &values);
void addGroupCommands(const Command &program, CommandValues &values);
void addRowCommands(const Command &program, CommandValues &values);
void addExchangeCommands(const Command &program, CommandValues &values);
void addLanguageCommands(const Command &program, CommandValues &values);

// What several families have in common.
void addProject(const Command &command, CommandValues &values);
void addRow(const Command &command, CommandValues &values); // with the project before it
void addFormat(const Command &command, CommandValues &values);

extern const char *const kExitCodesHelp;
