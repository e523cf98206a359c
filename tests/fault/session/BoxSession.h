#pragma once

#include "Workbench/RunInputs.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/StudyFile.h"
#include "Workbench/StudySession.h"
#include "Workbench/UnitSystem.h"

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace FaultTests {

/// What a step of a session could not do, as the product says it.
class StepFailed : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// \throws StepFailed  unless the problem is ""
void expectDone(const std::string &problem);

/// The open project of the box study, with all that solving takes.
class BoxSession {
public:
  /// Opens or creates the project in the folder and brings it in line with so many rows.
  /// \throws StepFailed
  BoxSession(const std::string &folder, int rows);

  Workbench::StudySession &study() { return *m_session; }
  EmbeddedHost::Project &project() { return m_session->project(); }

  /// Solves rows that are not solved, one after the other, each of which is reported.
  /// \param most     stops after so many rows
  /// \param solved   called with the row's name once the product says that it was recorded
  /// \throws StepFailed  a row failed or could not be recorded
  void solve(int most, const std::function<void(const std::string &row)> &solved);
  /// Sets a value of the baseline as a user does, and saves.
  void edit(const std::string &attribute, const std::string &text);
  void save();

private:
  Workbench::HostUnits m_units;
  std::string m_folder;
  std::unique_ptr<Workbench::StudyFile> m_study;
  std::unique_ptr<Workbench::StudySession> m_session;
};

} // namespace FaultTests
