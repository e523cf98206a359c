#include "EmbeddedHost/tests/Misbehaviour.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

[[noreturn]] void hang() {
  while (true) {
    pause();
  }
}

void ignoreEverything() {
  for (int number = 1; number < NSIG; ++number) {
    signal(number, SIG_IGN); // two of them refuse
  }
}

void closeEverything() {
  constexpr int kMany = 256;
  for (int file = 0; file < kMany; ++file) {
    close(file);
  }
}

// A service that has nothing left of whoever started it. Returns in the solver only.
void startService() {
  if (fork() == 0) {
    setsid();
    if (fork() != 0) {
      _exit(0);
    }
    ignoreEverything();
    closeEverything();
    static_cast<void>(chdir("/") == 0);
    hang();
  }
}

// Each generation lives just long enough to start the next, in a session of its own.
void startGenerations() {
  if (fork() != 0) {
    return;
  }
  while (true) {
    setsid();
    if (fork() != 0) {
      _exit(0);
    }
  }
}

[[noreturn]] void flood(const char *file) {
  std::array<char, 65536> block{};
  block.fill('x');
  const int target =
      file == nullptr ? STDOUT_FILENO : open(file, O_WRONLY | O_CREAT | O_TRUNC, S_IRUSR | S_IWUSR);
  while (target >= 0) {
    const ssize_t written = write(target, block.data(), block.size());
    if (written < 0 || (file == nullptr && write(STDERR_FILENO, block.data(), block.size()) < 0)) {
      _exit(7);
    }
  }
  _exit(8);
}

// Works for so long, not counting the time in which it is suspended.
void work(int milliseconds) {
  constexpr useconds_t kStep = 10000;
  for (int done = 0; done < milliseconds; done += 10) {
    usleep(kStep);
  }
}

void crash(int number) {
  const rlimit noCore = {0, 0};
  setrlimit(RLIMIT_CORE, &noCore);
  signal(number, SIG_DFL); // a sanitizer has handlers of its own
  raise(number);
}

} // namespace

int misbehave(const std::string &what, const char *argument) {
  const int number = argument == nullptr ? 0 : std::atoi(argument);
  if (what == "exit") {
    return number;
  }
  if (what == "signal") {
    crash(number);
  } else if (what == "hang") {
    hang();
  } else if (what == "deaf") {
    ignoreEverything();
    hang();
  } else if (what == "leave") {
    if (fork() == 0) {
      hang();
    }
  } else if (what == "serve") {
    startService();
    work(number);
  } else if (what == "serve deaf") {
    startService();
    ignoreEverything();
    prctl(PR_SET_NAME, "deaf_solver"); // so that it can be seen that it does not listen from now on
    hang();
  } else if (what == "generations") {
    startGenerations();
    work(number);
  } else if (what == "flood") {
    flood(argument);
  } else if (what == "silent") {
    closeEverything();
    hang();
  } else if (what == "stop") {
    raise(SIGSTOP);
  } else if (what == "work") {
    work(number);
  } else {
    return -1;
  }
  return 0;
}
