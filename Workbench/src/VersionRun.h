#pragma once

#include "EmbeddedHost/RunRecord.h"
#include "EmbeddedHost/SolverProcess.h"
#include "Workbench/ProjectSession.h"
#include "Workbench/RunKeys.h"
#include "Workbench/SolverPrograms.h"
#include "Workbench/src/RunResults.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Workbench {

class UnitSystem;

// What one run of a version is given.
struct RunPlan {
  RunContents contents;
  RunKeys keys;
  std::map<std::string, double> values; // of the attributes that formulas use
};

// One solver run of one version: from its empty folder through all its stages to its results. A run that failed for a
// reason that is to be tried again begins anew, in an empty folder.
class VersionRun {
public:
  VersionRun(const ProjectSession &session, const StudyFile &study, const UnitSystem &units,
             const StudyExpressions &expressions, std::size_t row, EntityModel::ModelVersion &version);

  // Makes the folder and writes the files; poll() answers true at once when that fails.
  void prepare(RunPlan plan);
  // Computes the results of a study without a solver; the run has ended then.
  void compute(RunPlan plan);
  // Reads the results again from what is kept of the run that `record` tells of; the run has ended then, unless files
  // are gone. False when they are.
  bool extractAgain(RunPlan plan, const EmbeddedHost::RunRecord &record);
  bool isPrepared() const { return m_record.status == EmbeddedHost::RunStatus::Running; }
  // Starts the first stage of a prepared run. One that cannot be started is finished at once.
  void start(const SolverPrograms &programs, EmbeddedHost::SolverSupervisors &supervisors);
  // True when the run has ended; record() and results() are complete then.
  bool poll();
  // Ends the solver and forgets its files; the run has failed as cancelled then.
  void cancel();

  EmbeddedHost::SolverProcess *process() const { return m_process.get(); }
  std::size_t row() const { return m_row; }
  EntityModel::ModelVersion &version() const { return m_version; }
  const EmbeddedHost::RunRecord &record() const { return m_record; }
  // One per result of the study; all without a value unless the run is ok.
  const std::vector<EmbeddedHost::ResultValue> &results() const { return m_results; }

private:
  const StudySolver &solver() const { return m_study.solver; }
  void begin(RunPlan plan);
  std::string folder(const char *name) const;
  std::string startStage();
  std::string problemOfStage() const;
  std::string read(const EndedRun &run);
  bool tryAgain(const std::string &problem);
  void finish(const std::string &problem);
  void finishAttempt(std::string problem);
  void fail(const std::string &reason);
  AttributeValues inputs() const;

  const ProjectSession &m_session;
  const StudyFile &m_study;
  const UnitSystem &m_units;
  const StudyExpressions &m_expressions;
  std::size_t m_row;
  EntityModel::ModelVersion &m_version;
  const SolverPrograms *m_programs = nullptr;
  EmbeddedHost::SolverSupervisors *m_supervisors = nullptr;
  RunPlan m_plan;
  std::string m_folder;
  std::vector<StageEnd> m_ended; // the stages of this attempt
  std::array<int, kFailureReasons> m_retries{};
  int m_attempts = 1;
  std::unique_ptr<EmbeddedHost::SolverProcess> m_process;
  EmbeddedHost::RunRecord m_record;
  std::vector<EmbeddedHost::ResultValue> m_results;
};

} // namespace Workbench
