#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace EmbeddedHost {

class Supervisor;

/// The small processes that start solvers and see to it that nothing a solver has started outlives its run, or this
/// program, however this program ends. One carries out one run at a time and is used again for the next, so that there
/// are as many as runs side by side. They are the program optstudy-supervisor, see findProgram().
///
/// A supervisor is as this process is when it is started: its user, its limits, its umask, its processors. It has no
/// file of this process open, is in a session of its own and belongs to no terminal. While this process is suspended
/// (SIGTSTP, SIGSTOP) its solvers are suspended, too.
///
/// For one thread at a time, as the solver processes that use it.
class SolverSupervisors {
public:
  /// \param program  the supervisor's file; "": found by findProgram() when it is needed
  explicit SolverSupervisors(std::string program = "");
  SolverSupervisors(const SolverSupervisors &) = delete;
  SolverSupervisors &operator=(const SolverSupervisors &) = delete;
  /// Ends the supervisors that are idle; the others end with their runs.
  ~SolverSupervisors();

  /// Starts supervisors until so many are idle; start() of a solver process does so by itself.
  /// \param problem receives one sentence when this fails
  bool prepare(std::size_t count, std::string &problem);

  /// Where the supervisor's program is: the file that the environment variable OPTSTUDY_SUPERVISOR names, if it is set;
  /// else the first of these that there is: optstudy-supervisor beside the running program, ../bin/optstudy-supervisor
  /// and ../libexec/optstudy/optstudy-supervisor from there, and libexec/optstudy/optstudy-supervisor in the folder that
  /// the product is made to be installed in.
  /// \param problem receives one sentence with all the places when there is none
  /// \return "" when there is none
  static std::string findProgram(std::string &problem);

  /// For SolverProcess. Null with a problem when none is idle and none can be started.
  std::unique_ptr<Supervisor> take(std::string &problem);
  /// For SolverProcess: a supervisor whose run has ended.
  void giveBack(std::unique_ptr<Supervisor> supervisor);

private:
  std::unique_ptr<Supervisor> startOne(std::string &problem);

  std::string m_program;
  std::vector<std::unique_ptr<Supervisor>> m_idle;
};

} // namespace EmbeddedHost
