#include "EmbeddedHost/tests/SolverRunFixture.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace EmbeddedHost {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

constexpr const char *kMark = "OPTSTUDY_TEST_MARK";
constexpr const char *kSolverName = "misbehaving_sol"; // as much of it as the system keeps

std::string contentOf(const std::string &file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

bool isNumber(const std::string &text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

} // namespace

SolverRunFixture::SolverRunFixture() {
  std::string pattern = (fs::temp_directory_path() / "optstudy solver XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    ADD_FAILURE() << "no temporary folder: " << pattern;
    return;
  }
  folder = pattern;
  mark = std::to_string(::getpid()) + "." + folder.filename().string();
  ::setenv(kMark, mark.c_str(), 1);
}

SolverRunFixture::~SolverRunFixture() {
  killMarked();
  ::unsetenv(kMark);
  std::error_code ignored;
  if (!folder.empty()) {
    fs::remove_all(folder, ignored); // what mkdtemp() made, and nothing is ever added to that path
  }
}

SolverCommand SolverRunFixture::solver(const std::vector<std::string> &arguments) const {
  SolverCommand command;
  command.program = OPTSTUDY_MISBEHAVING_SOLVER;
  command.arguments = {"solver"};
  command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
  command.workingFolder = folder.string();
  command.timeLimit = milliseconds(20000);
  command.graceTime = milliseconds(100);
  return command;
}

SolverOutcome SolverRunFixture::finish(SolverProcess &process) {
  while (!process.poll()) {
    SolverProcess::waitForAny({&process}, milliseconds(10000));
  }
  return process.outcome();
}

SolverOutcome SolverRunFixture::run(const SolverCommand &command) {
  SolverProcess process(command, supervisors);
  process.start();
  return finish(process);
}

std::string SolverRunFixture::outputOf(SolverCommand command) {
  command.outputFile = (folder / "output").string();
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.problem, "");
  std::string output = contentOf(command.outputFile);
  fs::remove(command.outputFile);
  return output;
}

// This process has the mark in its own memory only: what it was started with is what the system shows of it.
std::vector<SolverRunFixture::Found> SolverRunFixture::marked() const {
  std::vector<Found> found;
  const std::string wanted = std::string(kMark) + "=" + mark;
  std::error_code error;
  for (const fs::directory_entry &entry : fs::directory_iterator("/proc", error)) {
    const std::string number = entry.path().filename().string();
    if (!isNumber(number) || std::stoi(number) == ::getpid()) {
      continue;
    }
    const std::string variables = contentOf(entry.path().string() + "/environ");
    const std::string status = contentOf(entry.path().string() + "/stat");
    const std::size_t opening = status.find('(');
    const std::size_t closing = status.rfind(')');
    if (variables.find(wanted) == std::string::npos || closing == std::string::npos ||
        closing + 2 >= status.size()) {
      continue;
    }
    const char state = status[closing + 2];
    if (state != 'Z' && state != 'X') {
      found.push_back(
          {static_cast<pid_t>(std::stoi(number)), status.substr(opening + 1, closing - opening - 1), state});
    }
  }
  return found;
}

std::string SolverRunFixture::survivorsAfter(milliseconds longest) const {
  const auto until = Clock::now() + longest;
  std::vector<Found> found = marked();
  while (!found.empty() && Clock::now() < until) {
    std::this_thread::sleep_for(milliseconds(5));
    found = marked();
  }
  std::string text;
  for (const Found &survivor : found) {
    text += std::to_string(survivor.process) + " " + survivor.name + " " + survivor.state + "\n";
  }
  return text;
}

pid_t SolverRunFixture::waitFor(const std::string &name, char state) const {
  const auto until = Clock::now() + milliseconds(5000);
  const std::string wanted = name == "solver" ? kSolverName : name;
  while (Clock::now() < until) {
    for (const Found &process : marked()) {
      if (process.name == wanted && (state == '\0' || process.state == state)) {
        return process.process;
      }
    }
    std::this_thread::sleep_for(milliseconds(5));
  }
  return 0;
}

void SolverRunFixture::killMarked() const {
  for (const Found &process : marked()) {
    ::kill(process.process, SIGKILL);
  }
}

pid_t SolverRunFixture::startProgram(const std::function<int()> &program) {
  const pid_t child = ::fork();
  if (child == 0) {
    // Neither buffered output nor the test's results are written twice.
    ::_exit(program());
  }
  return child;
}

int SolverRunFixture::endOf(pid_t program) {
  int status = 0;
  while (::waitpid(program, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1 - WTERMSIG(status);
}

std::size_t numberFrom(const char *variable, std::size_t otherwise) {
  const char *const text = std::getenv(variable);
  return text == nullptr ? otherwise : static_cast<std::size_t>(std::strtoul(text, nullptr, 10));
}

} // namespace EmbeddedHost
