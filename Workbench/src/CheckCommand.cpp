#include "Workbench/CheckCommand.h"

#include "EmbeddedHost/SolverNumber.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ExitCode.h"
#include "Workbench/ModelDeclaration.h"
#include "Workbench/ProgressPrinter.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/StudySession.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/SolverSetup.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <ostream>
#include <sstream>

namespace Workbench {

namespace {

namespace fs = std::filesystem;

// A new folder below the temporary one, which is gone with the object.
class TrialFolder {
public:
  TrialFolder() {
    std::string pattern = (fs::temp_directory_path() / "optstudy-check-XXXXXX").string();
    m_path = ::mkdtemp(pattern.data()) == nullptr ? "" : pattern;
  }
  TrialFolder(const TrialFolder &) = delete;
  TrialFolder &operator=(const TrialFolder &) = delete;
  ~TrialFolder() {
    std::error_code ignored;
    if (!m_path.empty()) {
      fs::remove_all(m_path, ignored);
    }
  }
  const std::string &path() const { return m_path; }

private:
  std::string m_path;
};

std::vector<std::string> linesOf(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

// The lines that differ. Both texts come from one template, so that lines stand side by side.
void printDifferences(const std::string &name, const std::string &baseline, const std::string &row,
                      std::ostream &out) {
  const std::vector<std::string> left = linesOf(baseline);
  const std::vector<std::string> right = linesOf(row);
  for (std::size_t line = 0; line < std::max(left.size(), right.size()); ++line) {
    const std::string before = line < left.size() ? left[line] : "";
    const std::string after = line < right.size() ? right[line] : "";
    if (before != after) {
      out << "  " << name << ":" << line + 1 << ": -" << inOneLine(before) << "\n  " << name << ":"
          << line + 1 << ": +" << inOneLine(after) << "\n";
    }
  }
}

void printCost(const StudyFile &study, std::ostream &out) {
  if (study.cost.empty()) {
    return;
  }
  out << "The cost is computed with\n";
  for (const auto *groups : {&study.inputs, &study.outputs}) {
    for (const StudyGroup &group : *groups) {
      const std::string &unit = study.findAttribute(group.macro())->unit;
      if (study.cost.find("%" + group.macro() + "%") != std::string::npos) {
        out << "  %" << group.macro() << "%" << (unit.empty() ? "" : " in " + unit) << "\n";
      }
    }
  }
}

// What a row would be given, as files and commands; empty when it cannot be made.
struct Rendered {
  std::vector<RunFile> files;
  std::vector<std::vector<std::string>> commands;
};

std::optional<Rendered> render(StudySession &session, const SolverSetup &setup, std::size_t row,
                               std::vector<FileProblem> &problems, std::vector<FileProblem> *warnings) {
  const EmbeddedHost::CommandResult switched = session.commands().switchVersion(session.rowVersion(row));
  const ModelValues values(session.model());
  auto files = switched ? setup.inputs.render(values, problems, warnings) : std::nullopt;
  auto commands = files ? setup.inputs.renderCommands(values, problems, warnings) : std::nullopt;
  return commands ? std::optional<Rendered>({std::move(*files), std::move(*commands)}) : std::nullopt;
}

// What only formulas or the cost use is in no file.
void printInputDifferences(const StudySession &session, std::ostream &out) {
  for (std::size_t group = 0; group < session.groupCount(true); ++group) {
    const ModelAttribute &attribute = *session.groupAttribute(true, group);
    const auto textOf = [&](std::size_t row) {
      const std::string text = shownText(attribute, session.data().getVariantGroup(true, row, group));
      return inOneLine(text) + (attribute.unit.empty() ? "" : " " + attribute.unit);
    };
    if (const std::string before = textOf(0), after = textOf(1); before != after) {
      out << "  " << attribute.fullName() << ": " << before << " -> " << after << "\n";
    }
  }
}

// \return false when a row cannot be rendered
bool checkRendering(StudySession &session, const SolverSetup &setup, const Console &console) {
  const VersionTour tour(session);
  std::vector<FileProblem> problems;
  std::vector<FileProblem> warnings;
  const std::optional<Rendered> baseline = render(session, setup, 0, problems, &warnings);
  const std::optional<Rendered> first =
      session.rowCount() > 1 ? render(session, setup, 1, problems, nullptr) : baseline;
  printProblems(problems, console);
  printWarnings(warnings, console);
  if (!baseline || !first) {
    return false;
  }
  if (session.rowCount() > 1) {
    std::ostringstream differences;
    for (std::size_t file = 0; file < baseline->files.size(); ++file) {
      printDifferences(baseline->files[file].name, baseline->files[file].content, first->files[file].content,
                       differences);
    }
    for (std::size_t stage = 0; stage < baseline->commands.size(); ++stage) {
      printDifferences("command", joinedWords(baseline->commands[stage]), joinedWords(first->commands[stage]),
                       differences);
    }
    if (differences.str().empty()) {
      printInputDifferences(session, differences);
    }
    console.out << "Row 1, " << inOneLine(session.rowName(1))
                << (differences.str().empty() ? ", has the inputs of the baseline\n"
                                              : ", differs from the baseline in\n")
                << differences.str();
  }
  return true;
}

std::string placeOf(const StudyFile &study, const StudyExtractor &extractor, const std::string &folder) {
  const StudySolver &solver = study.solver;
  const std::size_t stage = extractor.stage.value_or(solver.stages.size() - 1);
  if (extractor.source == ResultSource::ExitCode) {
    return "the exit code";
  }
  if (extractor.source == ResultSource::WallTime || !extractor.extractor) {
    return "the time it took";
  }
  const std::string file = extractor.source == ResultSource::File ? extractor.file
                           : extractor.source == ResultSource::StandardError
                               ? solver.stages[stage].errorLog()
                               : solver.stages[stage].outputLog();
  const EmbeddedHost::ExtractedResult found = extractor.extractor->extractFromFile(folder + "/" + file, file);
  return found.line == 0 ? file : file + ":" + std::to_string(found.line);
}

void printResults(StudySession &session, const SolverSetup &setup, const Console &console) {
  const std::string folder = session.project().versionFolder(*session.baseline(), false) + "/run";
  console.out << "The baseline gives\n";
  const auto print = [&](const std::string &name, const std::string &place) {
    const ModelAttribute *attribute = session.model().find(name);
    console.out << "  " << name << " = " << shownText(*attribute, attribute->value)
                << (attribute->unit.empty() ? "" : " " + attribute->unit) << "  (" << place << ")\n";
  };
  for (const StudyExtractor &extractor : setup.study.solver.extractors) {
    print(extractor.attribute, placeOf(setup.study, extractor, folder));
  }
  for (const StudyFormula &formula : setup.study.formulas) {
    print(formula.attribute, "formula");
  }
}

// Of the extractor or formula that a reason names: "extraction: Box.y: no line matches"; line 0 when it names none.
FilePlace placeOfResult(const StudyFile &study, const std::string &reason) {
  const auto isNamed = [&reason](const std::string &attribute) {
    return reason.find(": " + attribute + ": ") != std::string::npos;
  };
  for (const StudyExtractor &extractor : study.solver.extractors) {
    if (isNamed(extractor.attribute)) {
      return extractor.place;
    }
  }
  for (const StudyFormula &formula : study.formulas) {
    if (isNamed(formula.attribute)) {
      return formula.place;
    }
  }
  return {};
}

int runBaseline(StudySession &session, const SolverSetup &setup, const Console &console) {
  const HostUnits units;
  SolveRunner runner(session, setup.study, setup.inputs, units, setup.programs);
  runner.assess();
  if (session.rowState(0).status == RowStatus::Infeasible) {
    console.error("The baseline is " + statusText(session.rowState(0)));
    return ExitCode::kInvalid;
  }
  ProgressPrinter progress(console);
  SolveOptions options;
  options.rows = {0};
  const SolveReport report = runner.solve(options, progress);
  if (report.isInterrupted) {
    return ExitCode::kInterrupted;
  }
  const RowState &state = session.rowState(0);
  if (state.status != RowStatus::Ok) {
    const FilePlace place = placeOfResult(setup.study, state.reason);
    const std::string failed = statusText(state) + (report.problem.empty() ? "" : "; " + report.problem);
    console.error(
        place.line == 0
            ? "The baseline " + failed
            : FileProblem{setup.study.path, place.line, place.column, "the baseline " + failed}.toText());
    const std::string log = session.project().runRecord(*session.baseline()).logTail;
    console.messages << log;
    return ExitCode::kNoRowSolved;
  }
  printResults(session, setup, console);
  return ExitCode::kDone;
}

} // namespace

int checkCommand(const CheckOptions &options, const Console &console) {
  const std::unique_ptr<SolverSetup> setup = SolverSetup::load(
      options.studyFile, options.searchPath,
      options.runs ? SolverSetup::Versions::Asked : SolverSetup::Versions::NotAsked, console);
  if (!setup) {
    return ExitCode::kInvalid;
  }
  // Whoever runs such a study is warned; whoever checks it wants it right.
  printProblems(setup->doubts, console);
  const std::size_t rows = setup->study.rows.size() + 1;
  setup->study.rows.resize(std::min<std::size_t>(1, setup->study.rows.size()));
  const TrialFolder folder;
  if (folder.path().empty()) {
    console.error("No folder can be made in " + fs::temp_directory_path().string() + ".");
    return ExitCode::kInternalError;
  }
  OpenFailure failure;
  const std::unique_ptr<StudySession> session =
      StudySession::open(setup->study, folder.path() + "/check.optstudy", Keeping::Changes, failure);
  if (!session) {
    console.error(failure.problem);
    return ExitCode::kInvalid;
  }
  console.out << setup->study.path << ": " << numbered(rows, "row", "rows") << ", "
              << numbered(setup->study.inputs.size(), "input", "inputs") << ", "
              << numbered(setup->study.outputs.size(), "output", "outputs") << "\n";
  printCost(setup->study, console.out);
  if (!checkRendering(*session, *setup, console)) {
    return ExitCode::kInvalid;
  }
  int code = options.runs ? runBaseline(*session, *setup, console) : ExitCode::kDone;
  if (code == ExitCode::kDone && !setup->doubts.empty()) {
    code = ExitCode::kInvalid;
  }
  if (code == ExitCode::kDone) {
    console.note("Next: optstudy run " + shellWord(options.studyFile));
  }
  return code;
}

} // namespace Workbench
