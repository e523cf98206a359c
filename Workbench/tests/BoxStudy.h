#pragma once

#include "Workbench/RunInputs.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/StudyFile.h"
#include "Workbench/StudySession.h"
#include "Workbench/UnitSystem.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace Workbench {

// A study in a temporary folder whose solver is a script: x and y go in, x + y and x * y come out.
class BoxStudy {
public:
  BoxStudy();
  BoxStudy(const BoxStudy &) = delete;
  BoxStudy &operator=(const BoxStudy &) = delete;
  ~BoxStudy();

  std::string file(const std::string &name) const { return (m_folder / name).string(); }
  void write(const std::string &name, const std::string &content) const;
  std::string read(const std::string &name) const;

  // `commands` run before the results are written, with $x and $y as the inputs.
  void writeSolver(const std::string &commands) const;
  void writeProgram(const std::string &name, const std::string &commands) const;
  // Replaces a part of the study file, which must be there.
  void edit(const std::string &from, const std::string &to);

  // Reads the study file; a failure of the test when anything is wrong with it.
  std::unique_ptr<StudyFile> study() const;
  std::string projectFile() const { return file("box.optstudy"); }

private:
  std::filesystem::path m_folder;
  std::string m_text;
};

// Asks to stop after a number of finished rows, and calls back for each.
class TestObserver final : public SolveObserver {
public:
  void begun(std::size_t toSolve, std::size_t alreadySolved) override;
  void finished(const std::string &rowName, const RowState &state, double seconds) override;
  void ended() override { ++m_ends; }
  int interruptions() const override;

  std::size_t m_toSolve = 0;
  std::size_t m_alreadySolved = 0;
  std::vector<std::string> m_finished;
  std::size_t m_stopAfter = 1000000;
  int m_endNowAfter = 1000000; // questions whether to stop
  mutable int m_questions = 0;
  int m_ends = 0;
  std::function<void()> m_onFinished;
  std::function<void()> m_onAsked; // whether to stop
};

// An open session with all that a solve needs.
struct OpenBox {
  std::unique_ptr<StudyFile> study;
  std::unique_ptr<StudySession> session;
  std::unique_ptr<RunInputs> inputs;
  std::unique_ptr<SolverPrograms> programs;
  std::unique_ptr<SolveRunner> runner;
  std::string problem;
};

OpenBox open(const BoxStudy &box);
// Assesses, solves one at a time, updates, prices and saves.
SolveReport solve(OpenBox &open, TestObserver &observer);
SolveReport solve(OpenBox &open);

} // namespace Workbench
