#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace EmbeddedHost {

class CappedStream;
class SolverSupervisors;
class Supervisor;

namespace Supervision {
struct ReportMessage;
}

/// One run of a solver: what is started, where, and within which limits.
struct SolverCommand {
  std::string program; ///< the file to execute, see findProgram
  std::vector<std::string>
      arguments;             ///< the whole argument vector, the program's own name first; no shell sees it
  std::string workingFolder; ///< must exist
  std::string outputFile;    ///< receives standard output; created, must not exist; empty: discarded
  std::string errorFile;     ///< receives standard error; created, must not exist; empty: discarded
  /// Added to the inherited environment, replacing variables of the same name. OMP_NUM_THREADS is 1 unless it
  /// is named here or inherited, because solvers that run side by side would fight for the processors. LC_ALL is
  /// C.UTF-8 unless it is named here: what a solver writes does not depend on the language of whoever runs it.
  std::map<std::string, std::string> environment;
  /// 0: none. Time in which this program is suspended, and its solvers with it, does not count.
  std::chrono::milliseconds timeLimit{0};
  std::chrono::milliseconds graceTime{2000}; ///< between SIGTERM and SIGKILL
  std::size_t outputLimit =
      std::size_t{16} * 1024 * 1024; ///< bytes kept of each stream; the rest is discarded
  /// Bytes of the largest file that the solver may write, 0: no limit. The solver is sent SIGXFSZ when it goes on.
  std::size_t fileSizeLimit = 0;
};

enum class SolverEnd {
  Running,
  Exited,     ///< by itself; see exitCode
  Signalled,  ///< by a signal that was not ours; see signal
  TimedOut,   ///< ended by us at the time limit
  Stopped,    ///< ended by us on request
  NotStarted, ///< see problem
  Lost        ///< its supervisor ended before it and took it along; see problem
};

/// How a solver's run ended.
struct SolverOutcome {
  SolverEnd end = SolverEnd::Running;
  int exitCode = 0;
  int signal = 0;
  bool outputTruncated = false;          ///< a stream was longer than the limit
  std::chrono::milliseconds wallTime{0}; ///< without the time in which it was suspended with this program
  std::string problem; ///< why it did not start, or why its output could not be kept; empty when all is well
};

/// Finds the file that a command names: a name with a slash is taken relative to `baseFolder`, any other is
/// looked up in `searchPath`, a list like PATH, whose empty entries are skipped.
/// \return an absolute path of
/// an executable regular file; empty when there is none
std::optional<std::string> findProgram(const std::string &name, const std::string &baseFolder,
                                       const std::string &searchPath);

/// A running solver. It is started by a supervisor (see SolverSupervisors), without a shell, in a process group of its
/// own, without a terminal, with every signal at its default, with standard input empty and with no other file
/// inherited. Nothing here waits for longer than a start takes, apart from waitForAny() and the destructor, so that
/// several run side by side from one thread: call poll() whenever waitForAny() returns. When the solver itself has ended,
/// or this program has, whatever the solver has started is killed; a run has not ended before that is done.
class SolverProcess {
public:
  /// With a supervisor of its own, which is started for this one run.
  explicit SolverProcess(SolverCommand command);
  /// \param supervisors  kept by reference; a supervisor is taken from there and given back
  SolverProcess(SolverCommand command, SolverSupervisors &supervisors);
  SolverProcess(const SolverProcess &) = delete;
  SolverProcess &operator=(const SolverProcess &) = delete;
  /// Kills the run at once, with everything that it has started, when it still runs.
  ~SolverProcess();

  /// Starts the solver. Call it once.
  /// \return false when it could not be started; outcome() then is NotStarted with the problem
  bool start();

  /// Keeps what the solver has written and notices the end. Never blocks. The limits hold whether it is called or not.
  /// \return true when the run has ended, however it ended
  bool poll();

  /// Asks the process group to end: SIGTERM now, SIGKILL after the grace time. poll() tells when it has.
  void stop();

  /// Sends SIGKILL to the process group. poll() tells when it has ended.
  void kill();

  const SolverOutcome &outcome() const { return m_outcome; }

  /// Waits until one of the processes has something for poll() to do, or until `longest` has passed. Null
  /// entries and processes that have ended are ignored; with none left it returns at once.
  static void waitForAny(const std::vector<SolverProcess *> &processes, std::chrono::milliseconds longest);

private:
  using Clock = std::chrono::steady_clock;

  bool isRunning() const { return m_supervisor != nullptr; }
  bool failToStart(std::string problem);
  bool runRequest(int request, std::string &problem);
  void keepOutput(std::size_t most);
  void closeStreams();
  void conclude(const Supervision::ReportMessage &report);
  void concludeLost();

  SolverCommand m_command;
  SolverOutcome m_outcome;
  std::unique_ptr<SolverSupervisors> m_ownSupervisors;
  SolverSupervisors &m_supervisors;
  std::unique_ptr<CappedStream> m_output;
  std::unique_ptr<CappedStream> m_error;
  std::unique_ptr<Supervisor> m_supervisor; // as long as it runs
  Clock::time_point m_started;
};

} // namespace EmbeddedHost
