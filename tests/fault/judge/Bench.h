#pragma once

#include "tests/fault/judge/CallLog.h"
#include "tests/fault/judge/Command.h"
#include "tests/fault/judge/States.h"
#include "tests/fault/judge/WorkFolder.h"

#include <functional>
#include <string>
#include <vector>

namespace FaultTests {

/// What a suite is asked for.
struct SuiteOptions {
  std::string program; ///< the session program
  std::vector<std::string>
      files;                   ///< which it needs beside it: its libraries, and an old project's statements
  std::size_t sample = 0;      ///< how many trials of all; 0 for all
  unsigned long long seed = 0; ///< chooses them
};

/// One struck session, and what is left of it.
struct Trial {
  std::string folder;
  Ending ending;
  std::string message;          ///< what the session said
  std::size_t acknowledged = 0; ///< steps
  bool isOpened = false;
  std::string state; ///< when opened, else why not
  std::vector<std::string> litter;
  std::string problemAfterwards; ///< why work could not go on
};

/// Where sessions are run and struck: the program, an undisturbed run, and what it left after each step.
class Bench {
public:
  /// Gives up the rights of root.
  explicit Bench(const SuiteOptions &options);

  const WorkFolder &work() const { return m_work; }
  const States &states() const { return m_states; }
  const std::vector<CallPoint> &points() const { return m_points; }
  std::size_t steps() const { return m_states.after.size() - 1; }
  /// Why there can be no trials; "" when there can.
  const std::string &problem() const { return m_problem; }

  /// A folder with what a session begins with.
  std::string makeSessionFolder(const std::string &name) const;
  std::vector<std::string> sessionCommand(const std::string &what, const std::string &folder) const;

  /// Runs a session in a folder of its own and strikes it. From any thread.
  /// \param name    of the folder, and of the files beside it
  /// \param inject  what strace is to do, as it wants to be told
  Trial run(const std::string &name, const std::string &call, const std::string &inject,
            const std::string &flaw) const;
  void clear(const Trial &trial) const;

private:
  void installProgram(const SuiteOptions &options);
  void runUndisturbed();
  void judge(Trial &trial, const std::string &name) const;

  WorkFolder m_work;
  std::string m_program;
  std::string m_oldProject; ///< as statements
  States m_states;
  std::vector<CallPoint> m_points;
  std::string m_problem;
};

/// Calls work(0) to work(count - 1), two at a time.
void inPairs(std::size_t count, const std::function<void(std::size_t)> &work);

/// A choice of so many numbers below \p count, all of them when 0, in order.
std::vector<std::size_t> choose(std::size_t count, std::size_t sample, unsigned long long seed);

} // namespace FaultTests
