#include "apps/optstudy/CommandLine.h"

#include "Workbench/CheckCommand.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ExchangeCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/LookCommands.h"
#include "Workbench/RunStudy.h"
#include "apps/optstudy/Interruptions.h"
#include "apps/optstudy/LogFile.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <unistd.h>

namespace {

using namespace Workbench;
using EntityModel::ModelVersionStudyType;
using MathematicalUtilities::OptimisationStrategy;

constexpr const char *kExitCodes = R"(
Exit codes: 0 all is well; 1 internal error; 2 wrong usage; 3 the study file, the project or the solver cannot be used;
4 some rows failed; 5 no row is solved; 6 the project is held by another process or may only be read;
130 and 143 interrupted, to be gone on with by the same command.
)";

constexpr const char *kProjectHelp = "The project (x.optstudy), or the study file that it belongs to";

// The answer of a person at the terminal; nobody who is not there agrees to anything.
bool confirmed(const std::string &question) {
  if (::isatty(STDIN_FILENO) != 1) {
    return false;
  }
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "yes";
}

// What "NAME=VALUE" says; a word without "=" names an input and no value, which is reported where it is used.
TypedValues typedValues(const std::vector<std::string> &words) {
  TypedValues values;
  for (const std::string &word : words) {
    const std::size_t equals = word.find('=');
    values.emplace_back(word.substr(0, equals), equals == std::string::npos ? "" : word.substr(equals + 1));
  }
  return values;
}

std::string assignmentProblem(const std::string &word) {
  return word.find('=') == std::string::npos || word.front() == '='
             ? "write INPUT=VALUE, not \"" + word + "\""
             : "";
}

// All commands with their options. Each option lives here until the command is carried out.
class CommandLine {
public:
  CommandLine()
      : m_app("Studies variants of a simulation model: solves, prices and ranks them.", "optstudy") {
    m_app.set_version_flag("--version", "optstudy " OPTSTUDY_VERSION);
    m_app.require_subcommand(1);
    m_app.fallthrough();
    m_app.add_flag("-q,--quiet", m_isQuiet, "Say nothing but results and errors");
    m_app.add_flag("-v,--verbose", m_isVerbose, "Say more");
    m_app.add_option("--log-file", m_logFile, "Append messages to this file too");
    m_app.add_flag("-y,--yes", m_saysYes, "Answer every question with yes");
    m_app.footer(std::string("\nExample:\n  optstudy run examples/filter/filter.study.yaml\n\n"
                             "\"optstudy COMMAND --help\" tells more about a command.\n") +
                 kExitCodes);
    addSolving();
    addLooking();
    addStudy();
    addGroups();
    addRows();
    addExchange();
  }

  int run(int argc, char **argv) {
    try {
      m_app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
      return m_app.exit(error) == 0 ? ExitCode::kDone : ExitCode::kUsage;
    }
    LogFile log(std::cerr);
    if (!m_logFile.empty() && !log.open(m_logFile)) {
      std::cerr << m_logFile << ": the log file cannot be written\n";
      return ExitCode::kUsage;
    }
    countInterruptions();
    const Console console{std::cout,
                          std::cerr,
                          ::isatty(STDERR_FILENO) == 1 && m_logFile.empty(),
                          m_isQuiet,
                          m_isVerbose,
                          interruptions,
                          [this](const std::string &question) {
                            return m_saysYes || confirmed(question);
                          }};
    return m_action(console);
  }

private:
  using Action = std::function<int(const Console &)>;

  CLI::App &command(const std::string &name, const std::string &what, const std::string &example,
                    Action action) {
    return command(m_app, name, what, example, std::move(action));
  }

  CLI::App &command(CLI::App &parent, const std::string &name, const std::string &what,
                    const std::string &example, Action action) {
    CLI::App &added = *parent.add_subcommand(name, what);
    added.fallthrough();
    added.footer("\nExample:\n  optstudy " + example + "\n");
    added.callback([this, action = std::move(action)] { m_action = action; });
    return added;
  }

  CLI::App &family(const std::string &name, const std::string &what) {
    CLI::App &added = *m_app.add_subcommand(name, what);
    added.fallthrough();
    added.require_subcommand(1);
    return added;
  }

  void project(CLI::App &command) { command.add_option("PROJECT", m_project, kProjectHelp)->required(); }

  void format(CLI::App &command) {
    const std::map<std::string, OutputFormat> formats{
        {"table", OutputFormat::Table}, {"csv", OutputFormat::Csv}, {"json", OutputFormat::Json}};
    command.add_option("--format", m_format, "table, csv or json")
        ->transform(CLI::CheckedTransformer(formats, CLI::ignore_case).description(""));
  }

  void assignments(CLI::App &command) {
    command.add_option("VALUES", m_words, "What inputs are to be: \"R=4.7 kohm\" C1=33nF")
        ->required()
        ->check(CLI::Validator(assignmentProblem, ""));
  }

  static std::string searchPath() {
    const char *const path = std::getenv("PATH");
    return path == nullptr ? "" : path;
  }

  void jobs(CLI::App &command) {
    command.add_option("-j,--jobs", m_jobs, "Rows that are solved at a time")
        ->capture_default_str()
        ->check(CLI::Range(std::size_t{1}, std::size_t{1024}));
  }

  void addSolving() {
    CLI::App &check = command("check", "Check a study file, and run the baseline once",
                              "check examples/filter/filter.study.yaml", [this](const Console &console) {
                                m_check.searchPath = searchPath();
                                return checkCommand(m_check, console);
                              });
    check.add_option("STUDY", m_check.studyFile, "The study file")->required();
    check.add_flag("!--no-run", m_check.runs, "Start nothing");
    addRun();
    addSolve();
  }

  void addRun() {
    CLI::App &run = command("run", "Solve a study's rows, price them, and print the matrix",
                            "run examples/filter/filter.study.yaml -j 4", [this](const Console &console) {
                              m_run.searchPath = searchPath();
                              m_run.parallel = m_jobs;
                              m_run.allowedFailures =
                                  AllowedFailures::parse(m_allowed).value_or(AllowedFailures());
                              return runStudy(m_run, console);
                            });
    run.add_option("STUDY", m_run.studyFile, "The study file")->required();
    jobs(run);
    run.add_flag("--keep-going", m_run.keepsGoing, "Go on when the baseline fails");
    run.add_flag("--dry-run", m_run.isTrial, "Only say what would be run, and why");
    run.add_flag("--fresh", m_run.isFresh, "Solve every row again; asks first");
    run.add_flag("--prune", m_run.prunes, "Remove rows that the study file does not have; asks first");
    run.add_option("--allow-failures", m_allowed, "So many rows, or per cent of them, may fail: 3 or 10%")
        ->check(CLI::Validator(
            [](const std::string &text) {
              return AllowedFailures::parse(text) ? ""
                                                  : "write a number of rows or per cent, such as 3 or 10%";
            },
            ""));
    run.footer(
        std::string("\nExample:\n  optstudy run examples/filter/filter.study.yaml -j 4\n\n"
                    "The project is kept beside the study file: x.study.yaml gives x.optstudy. Running the "
                    "same command again solves only\nwhat is not solved yet. Ctrl-C once finishes the rows "
                    "that run, twice ends them; both can be resumed.\n") +
        kExitCodes);
  }

  void addSolve() {
    CLI::App &solve =
        command("solve", "Solve rows of a project as it is", "solve filter.optstudy --failed=time-limit",
                [this](const Console &console) { return solveRows(false, console); });
    project(solve);
    solve.add_option("ROW", m_words, "Names or numbers; all that need it when left out");
    jobs(solve);
    solve.add_option("--failed", m_solve.reason, "Those that failed, for this reason only when one is given")
        ->expected(0, 1);
    m_failedOption = solve.get_option("--failed");
    solve.add_flag("--stale", m_solve.onlyStale, "Those that are stale");
    CLI::App &extract = command("extract", "Read results again from the files that are kept, without running",
                                "extract filter.optstudy",
                                [this](const Console &console) { return solveRows(true, console); });
    project(extract);
    extract.add_option("ROW", m_words, "Names or numbers; all when left out");
  }

  int solveRows(bool onlyExtracts, const Console &console) {
    m_solve.project = m_project;
    m_solve.rows = m_words;
    m_solve.onlyFailed = m_failedOption->count() > 0;
    m_solve.onlyExtracts = onlyExtracts;
    m_solve.parallel = m_jobs;
    m_solve.searchPath = searchPath();
    return solveCommand(m_solve, console);
  }

  void addLooking() {
    const std::map<std::string, Differences> differences{
        {"none", Differences::None}, {"absolute", Differences::Absolute}, {"percent", Differences::Percent}};
    CLI::App &show =
        command("show", "Print the matrix", "show filter.optstudy --sort cost --status ok --top 5",
                [this](const Console &console) {
                  m_show.project = m_project;
                  m_show.format = m_format;
                  return showCommand(m_show, console);
                });
    project(show);
    format(show);
    show.add_option("--sort", m_show.selection.sort, "row, name, status, cost, or an input or output");
    show.add_flag("--descending", m_show.selection.isDescending, "The largest first");
    show.add_option("--status", m_show.selection.statuses,
                    "Rows of this status only; may be given several times");
    show.add_option("--columns", m_show.selection.columns,
                    "These inputs and outputs only, with commas between")
        ->delimiter(',');
    show.add_option("--top", m_show.selection.most, "So many rows at most, after sorting");
    show.add_option("--differences", m_show.differences, "To the baseline: percent, absolute or none")
        ->transform(CLI::CheckedTransformer(differences, CLI::ignore_case).description(""));
    CLI::App &best =
        command("best", "Print the best row beside the baseline", "best filter.optstudy",
                [this](const Console &console) { return bestCommand(m_project, m_format, console); });
    project(best);
    format(best);
    CLI::App &status =
        command("status", "Print how many rows are what", "status filter.optstudy --format json",
                [this](const Console &console) { return statusCommand(m_project, m_format, console); });
    project(status);
    format(status);
    project(command("versions", "Print the tree of versions", "versions filter.optstudy",
                    [this](const Console &console) { return versionsCommand(m_project, console); }));
    rowOf(command("log", "Print what is recorded of a row's last run", "log filter.optstudy 3",
                  [this](const Console &console) { return logCommand(m_project, m_row, console); }));
    rowOf(command("folder", "Print where the files of a row's last run are", "folder filter.optstudy 3",
                  [this](const Console &console) { return folderCommand(m_project, m_row, console); }));
  }

  void rowOf(CLI::App &command) {
    project(command);
    command.add_option("ROW", m_row, "The row's name or number")->required();
  }

  void addStudy() {
    const std::map<std::string, ModelVersionStudyType> types{
        {"parametric", ModelVersionStudyType::Parametric},
        {"optimality", ModelVersionStudyType::Optimality},
        {"calibration", ModelVersionStudyType::Calibration}};
    CLI::App &begin =
        command("begin", "Begin a study in a project that has none", "begin filter.optstudy",
                [this](const Console &console) { return beginCommand(m_project, m_type, console); });
    project(begin);
    begin.add_option("--type", m_type, "parametric, optimality or calibration")
        ->transform(CLI::CheckedTransformer(types, CLI::ignore_case).description(""));
    CLI::App &end =
        command("end", "End the study; its rows become ordinary versions", "end filter.optstudy",
                [this](const Console &console) { return endCommand(m_project, m_isDeleting, console); });
    project(end);
    end.add_flag("--delete-versions", m_isDeleting, "Delete the rows with all their results");
    CLI::App &cost =
        command("cost", "Set the cost and price every row anew, or print it",
                "cost filter.optstudy \"10.0 * %Filter.Peaking%\"",
                [this](const Console &console) { return costCommand(m_project, m_text, console); });
    project(cost);
    cost.add_option("TEXT", m_text,
                    "The cost; \"\" for none. Nothing is run, and a text that is no cost changes nothing");
    const std::map<std::string, OptimisationStrategy> targets{{"minimise", OptimisationStrategy::Minimise},
                                                              {"maximise", OptimisationStrategy::Maximise},
                                                              {"none", OptimisationStrategy::None}};
    CLI::App &target =
        command("target", "Set what the best row is, or print it", "target filter.optstudy minimise",
                [this](const Console &console) { return targetCommand(m_project, m_target, console); });
    project(target);
    target.add_option("TARGET", m_target, "minimise, maximise or none")
        ->transform(CLI::CheckedTransformer(targets, CLI::ignore_case).description(""));
  }

  void addGroups() {
    for (const bool isInput : {true, false}) {
      const std::string side = isInput ? "input" : "output";
      CLI::App &parent = family(side, isInput ? "Add, remove or limit an input" : "Add or remove an output");
      CLI::App &add = command(parent, "add", "Add attributes as one " + side,
                              side + " add filter.optstudy " +
                                  (isInput ? "Filter.R1 Filter.R2 --name R" : "Filter.Peaking"),
                              [this, isInput](const Console &console) {
                                return addGroupCommand(m_project, isInput, m_words, m_name, console);
                              });
      project(add);
      add.add_option("ATTRIBUTE", m_words, "Attributes that share one value, as Entity.Attribute")
          ->required();
      add.add_option("--name", m_name, "The group's name");
      CLI::App &remove =
          command(parent, "remove", "Remove an " + side, side + " remove filter.optstudy Filter.C2",
                  [this, isInput](const Console &console) {
                    return removeGroupCommand(m_project, isInput, m_group, console);
                  });
      groupOf(remove);
      if (isInput) {
        addLimits(parent);
      }
    }
    CLI::App &parent = family("group", "List, rename or move inputs and outputs");
    project(command(parent, "list", "Print inputs and outputs", "group list filter.optstudy",
                    [this](const Console &console) { return groupsCommand(m_project, console); }));
    CLI::App &rename = command(
        parent, "rename", "Give an input or output another name", "group rename filter.optstudy R resistors",
        [this](const Console &console) { return renameGroupCommand(m_project, m_group, m_name, console); });
    groupOf(rename);
    rename.add_option("NAME", m_name, "The new name; \"\" for none")->required();
    CLI::App &move = command(
        parent, "move", "Move an input or output to another place", "group move filter.optstudy Filter.C2 0",
        [this](const Console &console) { return moveGroupCommand(m_project, m_group, m_place, console); });
    groupOf(move);
    move.add_option("PLACE", m_place, "Counted from 0")->required();
  }

  void groupOf(CLI::App &command) {
    project(command);
    command.add_option("GROUP", m_group, "Its name, or its first attribute")->required();
  }

  void addLimits(CLI::App &parent) {
    CLI::App &set = command(
        parent, "set", "Set limits of an input",
        "input set filter.optstudy R --minimum \"1 kohm\" --step \"100 ohm\"",
        [this](const Console &console) { return limitGroupCommand(m_project, m_group, m_limits, console); });
    groupOf(set);
    set.add_option("--minimum", m_limits.minimum, "The lowest value; \"\" for none");
    set.add_option("--maximum", m_limits.maximum, "The highest value; \"\" for none");
    set.add_option("--step", m_limits.step, "The distance of two values; \"\" for none");
    set.add_option("--low-bound", m_limits.lowBound, "The bound for optimisers; \"\" for none");
    set.add_option("--high-bound", m_limits.highBound, "The bound for optimisers; \"\" for none");
  }

  void addRows() {
    CLI::App &add =
        command("add", "Add a row", "add filter.optstudy --name big \"R=47 kohm\" \"Filter.C1=100 nF\"",
                [this](const Console &console) {
                  return addRowCommand(m_project, typedValues(m_words), m_name, console);
                });
    project(add);
    add.add_option("--name", m_name, "The row's name");
    assignments(add);
    CLI::App &set = command("set", "Change inputs of a row", "set filter.optstudy 3 \"R=47 kohm\"",
                            [this](const Console &console) {
                              return setRowCommand(m_project, m_row, typedValues(m_words), console);
                            });
    rowOf(set);
    assignments(set);
    CLI::App &rename = command(
        "rename", "Give a row another name", "rename filter.optstudy 3 favourite",
        [this](const Console &console) { return renameRowCommand(m_project, m_row, m_name, console); });
    rowOf(rename);
    rename.add_option("NAME", m_name, "The new name")->required();
    CLI::App &remove = command("remove", "Remove rows with all their results", "remove filter.optstudy 3 4",
                               [this](const Console &console) {
                                 return removeRowsCommand(m_project, m_words, m_isKeeping, console);
                               });
    project(remove);
    remove.add_option("ROW", m_words, "Names or numbers")->required();
    remove.add_flag("--keep-version", m_isKeeping, "Keep their versions in the project");
  }

  void addExchange() {
    CLI::App &exporting = command(
        "export", "Write the matrix as CSV or JSON", "export filter.optstudy matrix.csv",
        [this](const Console &console) { return exportCommand(m_project, m_format, m_file, console); });
    project(exporting);
    exporting.add_option("FILE", m_file, "A new file; standard output when left out");
    format(exporting);
    CLI::App &importing =
        command("import", "Take rows from a table", "import filter.optstudy rows.csv",
                [this](const Console &console) { return importCommand(m_project, m_file, console); });
    project(importing);
    importing.add_option("FILE", m_file, "CSV, or JSON that export wrote")->required();
    CLI::App &backup =
        command("backup", "Copy a project with its results, safe while it is solved",
                "backup filter.optstudy filter-monday.optstudy",
                [this](const Console &console) { return backupCommand(m_project, m_file, console); });
    project(backup);
    backup.add_option("FILE", m_file, "The new project")->required();
    project(command("doctor", "Check everything about a project and say how to mend it",
                    "doctor filter.optstudy",
                    [this](const Console &console) { return doctorCommand(m_project, console); }));
  }

  CLI::App m_app;
  Action m_action;
  bool m_isQuiet = false;
  bool m_isVerbose = false;
  std::string m_logFile;
  bool m_saysYes = false;
  std::size_t m_jobs = 2;
  CheckOptions m_check;
  RunOptions m_run;
  std::string m_allowed = "0";
  SolveRowsOptions m_solve;
  CLI::Option *m_failedOption = nullptr;
  ShowOptions m_show;
  OutputFormat m_format = OutputFormat::Table;
  std::string m_project;
  std::string m_row;
  std::string m_group;
  std::string m_name;
  std::string m_file;
  std::size_t m_place = 0;
  std::vector<std::string> m_words;
  std::optional<std::string> m_text;
  std::optional<OptimisationStrategy> m_target;
  ModelVersionStudyType m_type = ModelVersionStudyType::Parametric;
  TypedLimits m_limits;
  bool m_isDeleting = false;
  bool m_isKeeping = false;
};

} // namespace

int runCommandLine(int argc, char **argv) {
  return CommandLine().run(argc, argv);
}
