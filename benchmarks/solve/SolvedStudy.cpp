#include "benchmarks/solve/SolvedStudy.h"

#include "Workbench/RunInputs.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/StudyFile.h"
#include "Workbench/StudySession.h"
#include "Workbench/UnitSystem.h"
#include "benchmarks/common/Measurement.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>

namespace SolveBenchmark {

using namespace Workbench;

namespace {

class SilentObserver final : public SolveObserver {
public:
  void begun(std::size_t /*toSolve*/, std::size_t /*alreadySolved*/) override {}
  void finished(const std::string & /*rowName*/, const RowState & /*state*/, double /*seconds*/) override {}
  void ended() override {}
  int interruptions() const override { return 0; }
};

std::string studyText(const std::string &solver, std::size_t rows) {
  const std::string last = std::to_string(rows);
  return "version: 1\n"
         "model:\n"
         "  Box:\n"
         "    x: 1\n"
         "    y: {result: true}\n"
         "solver:\n"
         "  templates: [{from: in.txt.template, to: in.txt}]\n"
         "  command: [\"" +
         solver +
         "\"]\n"
         "  timeout: 60 s\n"
         "  results:\n"
         "    Box.y: {pattern: '^y = (.*)$'}\n"
         "study:\n"
         "  target: minimise\n"
         "  cost: \"%Box.y% * 1.0\"\n"
         "  inputs: [Box.x]\n"
         "  outputs: [Box.y]\n"
         "  variants: {grid: {Box.x: {minimum: 2, maximum: " +
         last + ", step: 1}}}\n";
}

// Those that were solved before stay where they are: ext4 without a journal looks for a while at every file that was
// just removed before it makes a new one, which would make every row slower the more files the last study had.
std::string unusedFolder(const std::string &folder) {
  for (std::size_t number = 1;; ++number) {
    std::string unused = folder + "/study" + std::to_string(number);
    if (!std::filesystem::exists(unused)) {
      return unused;
    }
  }
}

void expectNone(const std::vector<FileProblem> &problems) {
  if (!problems.empty()) {
    throw std::runtime_error(problems.front().toText());
  }
}

} // namespace

SolvedStudy::SolvedStudy(const std::string &folder, const std::string &solver, std::size_t rows)
    : m_file(unusedFolder(folder) + "/box.study.yaml"), m_solver(solver), m_rows(rows) {
  const std::filesystem::path own = std::filesystem::path(m_file).parent_path();
  std::filesystem::create_directory(own);
  std::ofstream(own / "in.txt.template") << "{{Box.x}}\n";
  std::ofstream(m_file) << studyText(solver, rows);
}

std::string SolvedStudy::projectFile() const {
  return StudySession::projectFileOf(m_file);
}

double SolvedStudy::solve(std::size_t parallel) const {
  const HostUnits units;
  std::vector<FileProblem> problems;
  const std::optional<StudyFile> study = StudyFile::read(m_file, units, problems);
  expectNone(problems);
  std::vector<FileProblem> doubts;
  const std::optional<RunInputs> inputs = RunInputs::load(*study, units, doubts, problems);
  expectNone(problems);
  OpenFailure failure;
  const std::unique_ptr<StudySession> session =
      StudySession::open(*study, projectFile(), Keeping::Changes, failure);
  if (!session) {
    throw std::runtime_error(failure.problem);
  }
  const SolverPrograms programs(*study, {m_solver});
  SolveRunner runner(*session, *study, *inputs, units, programs);
  runner.assess();
  SilentObserver observer;
  const double began = Benchmarking::wallSeconds();
  const SolveReport report = runner.solve({parallel}, observer);
  const double seconds = Benchmarking::wallSeconds() - began;
  if (report.solved != m_rows) {
    throw std::runtime_error("Solved " + std::to_string(report.solved) + " of " + std::to_string(m_rows) +
                             " rows. " + report.problem + session->rowState(0).reason);
  }
  return seconds;
}

} // namespace SolveBenchmark
