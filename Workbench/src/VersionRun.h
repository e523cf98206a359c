#pragma once

#include "EmbeddedHost/RunRecord.h"
#include "EmbeddedHost/SolverProcess.h"
#include "Workbench/RunInputs.h"
#include "Workbench/StudySession.h"

#include <memory>
#include <string>
#include <vector>

namespace Workbench {

class UnitSystem;

// One solver run of one version: from its empty folder to its results.
class VersionRun {
public:
  VersionRun(const StudySession &session, const UnitSystem &units, std::size_t row,
             EntityModel::ModelVersion &version);

  // Makes the folder and writes the files; poll() answers true at once when that fails.
  void prepare(const std::vector<RunFile> &files, const std::vector<std::string> &keys);
  bool isPrepared() const { return m_record.status == EmbeddedHost::RunStatus::Running; }
  // Starts the solver of a prepared run. One that cannot be started is finished at once.
  void start(const std::string &program);
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
  std::string makeFolder(const std::vector<RunFile> &files);
  void finish();
  std::string problemOfOutcome() const;
  std::string extract();
  std::string logTail() const;
  std::string keepFolder();
  void fail(const std::string &reason);

  const StudySession &m_session;
  const UnitSystem &m_units;
  std::size_t m_row;
  EntityModel::ModelVersion &m_version;
  std::string m_folder;
  std::unique_ptr<EmbeddedHost::SolverProcess> m_process;
  EmbeddedHost::RunRecord m_record;
  std::vector<EmbeddedHost::ResultValue> m_results;
};

} // namespace Workbench
