#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/CostFunctionBuilder.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ExchangeCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/StudyFile.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/ProjectArgument.h"

#include <filesystem>
#include <ostream>
#include <set>

namespace Workbench {

namespace {

using EmbeddedHost::OpenMode;

// Prints one line for each thing that was looked at, and counts what is wrong.
class Findings {
public:
  explicit Findings(std::ostream &out) : m_out(out) {}

  void good(const std::string &what) { m_out << "ok       " << what << "\n"; }
  void bad(const std::string &what, const std::string &mend) {
    ++m_count;
    m_out << "problem  " << what << "\n         " << mend << "\n";
  }
  void check(bool isGood, const std::string &what, const std::string &wrong, const std::string &mend) {
    isGood ? good(what) : bad(wrong, mend);
  }
  std::size_t count() const { return m_count; }

private:
  std::ostream &m_out;
  std::size_t m_count = 0;
};

void checkWriting(const std::string &file, Findings &findings) {
  std::string problem;
  const bool canWrite = EmbeddedHost::Project::open(file, OpenMode::ReadWrite, problem) != nullptr;
  findings.check(canWrite, "the project can be written", problem,
                 "Wait until the other program has ended, or mend the permissions; looking at it is possible "
                 "meanwhile.");
}

// Whether the study file has the files of every run kept; so when it cannot be told.
bool keepsAllFiles(const std::string &project) {
  const std::string file = ProjectSession::studyFileOf(project);
  const HostUnits units;
  std::vector<FileProblem> ignored;
  const std::optional<StudyFile> study = file.empty() ? std::nullopt : StudyFile::read(file, units, ignored);
  return !study || (!study->solver.stages.empty() && study->solver.keep == KeptFiles::All);
}

void checkRows(ProjectSession &session, Findings &findings) {
  std::size_t gone = 0;
  std::size_t filesGone = 0;
  std::size_t incomplete = 0;
  const MatrixTable table = MatrixTable::of(session);
  for (const MatrixTable::Row &row : table.rows) {
    EntityModel::ModelVersion *version = session.rowVersion(row.number);
    gone += version == nullptr ? 1 : 0;
    if (version == nullptr || !row.isOk()) {
      continue;
    }
    std::error_code ignored;
    const std::string folder = session.project().versionFolder(*version, false);
    filesGone += folder.empty() || !std::filesystem::is_directory(folder + "/run", ignored) ? 1 : 0;
    for (const std::optional<double> &output : row.outputs) {
      incomplete += output ? 0 : 1;
    }
  }
  findings.check(gone == 0, "every row has its version",
                 numbered(gone, "row has", "rows have") + " no version",
                 "Remove such rows: optstudy remove PROJECT ROW.");
  findings.check(incomplete == 0, "every solved row has all its outputs",
                 numbered(incomplete, "output of a solved row is", "outputs of solved rows are") + " missing",
                 "Solve again: optstudy run STUDY-FILE --fresh, or set an input and set it back.");
  if (filesGone > 0 && !keepsAllFiles(session.fileName())) {
    findings.good("the files of " + numbered(filesGone, "solved row are", "solved rows are") +
                  " not there, as the study file has it");
    return;
  }
  findings.check(
      filesGone == 0, "the files of every solved row are there",
      "the files of " + numbered(filesGone, "solved row are", "solved rows are") + " not there",
      "Results stay valid; \"optstudy extract\" and \"optstudy folder\" need the files: solve again to get "
      "them, unless the study file does not keep them.");
}

void checkStudy(const ProjectSession &session, Findings &findings) {
  std::set<std::string> macros;
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < session.groupCount(isInput); ++group) {
      const ModelAttribute *attribute = session.groupAttribute(isInput, group);
      const std::string name = attribute == nullptr ? "" : attribute->fullName();
      const std::string side = isInput ? "input " : "output ";
      if (attribute == nullptr) {
        findings.bad(side + std::to_string(group) + " has no attribute of the model",
                     "Remove it: optstudy " + side + "remove PROJECT GROUP.");
      } else if (!macros.insert(name).second) {
        findings.bad("two groups begin with " + name + ", and a cost sees only one of them",
                     "Remove one: optstudy " + side + "remove PROJECT GROUP.");
      }
    }
  }
  const std::string cost = session.data().getCostFunction();
  const OptimizationTool::CostFunctionBuilder builder(session.data());
  const bool isBlank = cost.find_first_not_of(" \t") == std::string::npos;
  findings.check(isBlank || builder.create(cost) != nullptr,
                 isBlank ? "the study has no cost" : "the cost can be built",
                 "the cost cannot be built: " + builder.getLastBuildError(),
                 "Set another one: optstudy cost PROJECT \"...\".");
}

void checkStudyFile(const std::string &project, Findings &findings) {
  const std::string file = ProjectSession::studyFileOf(project);
  if (file.empty()) {
    findings.bad("there is no study file beside the project",
                 "Looking, pricing and exporting work without it; solving needs it.");
    return;
  }
  const HostUnits units;
  std::vector<FileProblem> problems;
  const bool isGood = StudyFile::read(file, units, problems).has_value();
  findings.check(isGood, "the study file " + file + " can be read",
                 problems.empty() ? "" : problems.front().toText(),
                 "Mend the study file; \"optstudy check\" tells more.");
}

} // namespace

int doctorCommand(const std::string &project, const Console &console) {
  const std::string file = projectNamed(project);
  Findings findings(console.out);
  OpenFailure failure;
  std::unique_ptr<ProjectSession> session = ProjectSession::open(file, OpenMode::ReadOnly, failure);
  if (!session) {
    findings.bad(failure.problem, "Restore it from a copy made by \"optstudy backup\".");
    return ExitCode::kInvalid;
  }
  findings.good(file + " is a sound project with " +
                numbered(session->project().versions().size(), "version", "versions"));
  if (session->hasStudy()) {
    checkStudy(*session, findings);
    checkRows(*session, findings);
  } else {
    findings.bad("the project has no study", "Begin one: optstudy begin PROJECT.");
  }
  session.reset();
  checkWriting(file, findings);
  checkStudyFile(file, findings);
  console.out << (findings.count() == 0 ? "All is well." : numbered(findings.count(), "problem", "problems"))
              << "\n";
  return findings.count() == 0 ? ExitCode::kDone : ExitCode::kInvalid;
}

} // namespace Workbench
