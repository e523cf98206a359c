#include "EmbeddedHost/src/supervisor/StartSolver.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

bool limitFileSize(std::int64_t bytes) {
  if (bytes <= 0) {
    return true;
  }
  rlimit limit = {};
  if (getrlimit(RLIMIT_FSIZE, &limit) != 0) {
    return false;
  }
  const auto wanted = static_cast<rlim_t>(bytes);
  if (wanted < limit.rlim_max) {
    limit.rlim_max = wanted;
  }
  limit.rlim_cur = limit.rlim_max;
  return setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

// A supervisor leaves every signal at its default, so that only the mask has to be cleared.
bool prepare(const RunRequest &request, pid_t supervisor) {
  sigset_t none;
  sigemptyset(&none);
  const int empty = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const bool isPrepared =
      setpgid(0, 0) == 0 && sigprocmask(SIG_SETMASK, &none, nullptr) == 0 &&
      prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && empty >= 0 && dup2(request.output(), STDOUT_FILENO) >= 0 &&
      dup2(request.error(), STDERR_FILENO) >= 0 && dup2(empty, STDIN_FILENO) >= 0 &&
      limitFileSize(request.header().fileSizeLimit) && chdir(request.workingFolder()) == 0;
  if (isPrepared && getppid() != supervisor) { // it had died before its death could be noticed
    _exit(1);
  }
  return isPrepared;
}

[[noreturn]] void becomeSolver(const RunRequest &request, pid_t supervisor, int failures) {
  if (prepare(request, supervisor)) {
    execve(request.program(), request.arguments(), request.environment());
  }
  const int problem = errno;
  const ssize_t written = write(failures, &problem, sizeof(problem));
  _exit(written < 0 ? 2 : 1);
}

} // namespace

pid_t startSolver(const RunRequest &request) {
  // Closed by a successful exec; what comes through it otherwise is why there was none.
  std::array<int, 2> failures{-1, -1};
  if (pipe2(failures.data(), O_CLOEXEC) != 0) {
    return 0;
  }
  const pid_t supervisor = getpid();
  const pid_t solver = fork();
  if (solver == 0) {
    becomeSolver(request, supervisor, failures[1]);
  }
  int problem = solver < 0 ? errno : 0;
  close(failures[1]);
  if (solver > 0) {
    setpgid(solver, solver); // by both, because neither knows who comes first
    ssize_t count = 0;
    do {
      count = read(failures[0], &problem, sizeof(problem));
    } while (count < 0 && errno == EINTR);
    if (count > 0) {
      waitpid(solver, nullptr, 0);
    }
  }
  close(failures[0]);
  errno = problem;
  return problem == 0 ? solver : 0;
}
