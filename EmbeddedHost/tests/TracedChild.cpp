#include "EmbeddedHost/tests/TracedChild.h"

#include "EmbeddedHost/tests/ModelFixture.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <grp.h>
#include <iostream>
#include <signal.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

namespace fs = std::filesystem;

constexpr unsigned kNobody = 65534;

bool becomeOrdinary() {
  return getuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0);
}

pid_t startStopped(const std::function<int()> &work) {
  // What is still to be printed is not for the child to print.
  std::cout.flush();
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    const bool isReady = becomeOrdinary() && prctl(PR_SET_DUMPABLE, 1) == 0;
    // Refused where no rule about tracing is in force.
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY);
    raise(SIGSTOP);
    _exit(isReady ? work() : 127);
  }
  int status = 0;
  waitpid(child, &status, WUNTRACED);
  return child;
}

pid_t startTracer(pid_t child, const std::string &log, const std::vector<std::string> &options) {
  std::vector<std::string> words = {"strace", "-qq", "-y", "-o", log, "-p", std::to_string(child)};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char *> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string &word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  pid_t tracer = 0;
  if (posix_spawnp(&tracer, "strace", nullptr, nullptr, arguments.data(), environ) != 0) {
    throw std::runtime_error("strace cannot be started");
  }
  return tracer;
}

bool isTraced(pid_t child) {
  std::ifstream status("/proc/" + std::to_string(child) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("TracerPid:", 0) == 0) {
      return line.substr(10).find_first_of("123456789") != std::string::npos;
    }
  }
  return false;
}

bool waitUntilTraced(pid_t child) {
  for (int attempt = 0; attempt < 2000; ++attempt) {
    if (isTraced(child)) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

} // namespace

std::size_t Trace::find(const std::string &call, const std::string &argument, std::size_t from) const {
  for (std::size_t index = from; index < calls.size(); ++index) {
    const std::string &line = calls[index];
    if (line.rfind(call + "(", 0) == 0 && line.find(argument) != std::string::npos) {
      return index;
    }
  }
  return npos;
}

std::size_t Trace::count(const std::string &call, const std::string &argument) const {
  std::size_t number = 0;
  for (std::size_t at = find(call, argument); at != npos; at = find(call, argument, at + 1)) {
    ++number;
  }
  return number;
}

std::string Trace::text() const {
  std::string all;
  for (const std::string &call : calls) {
    all += call + "\n";
  }
  return all;
}

Trace traced(const std::vector<std::string> &options, const std::function<int()> &work) {
  const TestFolder folder;
  const std::string log = folder.path("calls");
  const pid_t child = startStopped(work);
  const pid_t tracer = startTracer(child, log, options);
  const bool isWatched = waitUntilTraced(child);
  kill(child, isWatched ? SIGCONT : SIGKILL);
  Trace trace;
  int status = 0;
  waitpid(child, &status, 0);
  waitpid(tracer, nullptr, 0);
  trace.result = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::ifstream calls(log);
  for (std::string line; std::getline(calls, line);) {
    trace.calls.push_back(line);
  }
  return trace;
}

void handOver(const std::string &temporaryFolder) {
  const fs::path path = fs::canonical(temporaryFolder);
  if (path.parent_path() != fs::canonical(fs::temp_directory_path())) {
    throw std::invalid_argument(temporaryFolder + " is no temporary folder");
  }
  if (getuid() != 0) {
    return;
  }
  const auto give = [](const fs::path &entry) {
    if (lchown(entry.c_str(), kNobody, kNobody) != 0) {
      throw std::runtime_error(entry.string() + " cannot be handed over");
    }
  };
  give(path);
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(path)) {
    give(entry.path());
  }
}

} // namespace EmbeddedHost
