#include "tests/command/judge/Processes.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace CommandTests {

namespace fs = std::filesystem;
using FaultTests::readFile;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kPause{2};
constexpr milliseconds kLongestSurvival{10000};

struct Process {
  int number = 0;
  std::string name;
};

// Nothing is read from a process that is dead but not yet collected.
std::vector<Process> marked(const std::string &mark) {
  std::vector<Process> found;
  const std::string wanted = std::string(kMarkVariable) + "=" + mark + std::string(1, '\0');
  std::error_code error;
  for (const fs::directory_entry &entry : fs::directory_iterator("/proc", error)) {
    const std::string number = entry.path().filename().string();
    if (number.find_first_not_of("0123456789") == std::string::npos &&
        readFile(entry.path().string() + "/environ").find(wanted) != std::string::npos) {
      found.push_back({std::atoi(number.c_str()), readFile(entry.path().string() + "/comm")});
    }
  }
  return found;
}

} // namespace

bool waitUntil(const std::function<bool()> &isSo, milliseconds longest) {
  const auto until = std::chrono::steady_clock::now() + longest;
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > until) {
      return false;
    }
    std::this_thread::sleep_for(kPause);
  }
  return true;
}

bool waitAtMostAMinute(int process, FaultTests::Ending &ending) {
  if (process <= 0) {
    return true; // its ending says that it was not started
  }
  siginfo_t info = {};
  const bool hasEnded = waitUntil([&] {
    info.si_pid = 0;
    return ::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid != 0;
  });
  if (!hasEnded) {
    ::kill(process, SIGKILL);
  }
  ending = FaultTests::waitFor(process);
  return hasEnded;
}

void waitUntilDelivered(int process, int signal) {
  const unsigned long long bit = 1ULL << static_cast<unsigned>(signal - 1);
  static_cast<void>(waitUntil([&] {
    std::istringstream status(readFile("/proc/" + std::to_string(process) + "/status"));
    for (std::string line; std::getline(status, line);) {
      const bool isPending = line.rfind("SigPnd:", 0) == 0 || line.rfind("ShdPnd:", 0) == 0;
      if (isPending && (std::strtoull(line.c_str() + 7, nullptr, 16) & bit) != 0) {
        return false;
      }
    }
    return true;
  }));
}

std::string survivorsOf(const std::string &mark) {
  std::vector<Process> found;
  static_cast<void>(waitUntil(
      [&] {
        found = marked(mark);
        return found.empty();
      },
      kLongestSurvival));
  std::string text;
  for (const Process &process : found) {
    text += "process " + std::to_string(process.number) + " is left: " + process.name + " ";
  }
  return text;
}

void killMarked(const std::string &mark) {
  for (const Process &process : marked(mark)) {
    ::kill(process.number, SIGKILL);
  }
}

} // namespace CommandTests
