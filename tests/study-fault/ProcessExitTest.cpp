// What a process says when it ends while a study is held: nothing, and 0. Each end is one of a child process that
// starts anew, so that what is static is made and destroyed in an order of its own.

#include "tests/study-fault/ExitScene.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace {

using namespace StudyFaults;

constexpr unsigned kSecondsPerChild = 60;

// A file without a name, which a child writes to.
class Output {
public:
  Output() : m_file(std::tmpfile()) {
    if (m_file == nullptr) {
      throw std::runtime_error("no temporary file");
    }
  }
  Output(const Output &) = delete;
  Output &operator=(const Output &) = delete;
  ~Output() { std::fclose(m_file); }

  int descriptor() const { return fileno(m_file); }
  std::string text() const {
    std::string result;
    std::rewind(m_file);
    std::array<char, 4096> buffer = {};
    for (std::size_t count = 1; count > 0;) {
      count = std::fread(buffer.data(), 1, buffer.size(), m_file);
      result.append(buffer.data(), count);
    }
    return result;
  }

private:
  std::FILE *m_file;
};

int runChild(const std::string &list, std::size_t index, const Output &output, const Output &errors) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output.descriptor(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.descriptor(), STDERR_FILENO);
  std::string program = "/proc/self/exe";
  std::string listName = list;
  std::string number = std::to_string(index);
  const std::array<char *, 4> arguments = {program.data(), listName.data(), number.data(), nullptr};
  pid_t child = 0;
  const int problem = posix_spawn(&child, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (problem != 0) {
    throw std::runtime_error("no child process");
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

// What is not as it must be; "" when all is well.
std::string findFault(const std::string &list, std::size_t index, const ExitScene &scene) {
  const Output output;
  const Output errors;
  const int status = runChild(list, index, output, errors);
  if (WIFSIGNALED(status)) {
    return "dies of signal " + std::to_string(WTERMSIG(status)) + ": " + errors.text();
  }
  if (WEXITSTATUS(status) != 0) {
    return "ends with code " + std::to_string(WEXITSTATUS(status)) + ": " + errors.text();
  }
  if (!errors.text().empty()) {
    return "complains: " + errors.text();
  }
  return output.text() == scene.said ? "" : "says \"" + output.text() + "\"";
}

int runAll() {
  int faults = 0;
  for (std::size_t index = 0; index < exitScenes().size(); ++index) {
    const ExitScene &scene = exitScenes()[index];
    const std::string fault = findFault("scene", index, scene);
    std::printf("%s: %s\n", scene.name.c_str(), fault.empty() ? "ends well" : fault.c_str());
    faults += fault.empty() ? 0 : 1;
  }
  for (std::size_t index = 0; index < exitControls().size(); ++index) {
    const ExitScene &control = exitControls()[index];
    const bool isFound = !findFault("control", index, control).empty();
    std::printf("control, %s: %s\n", control.name.c_str(), isFound ? "found" : "NOT FOUND");
    faults += isFound ? 0 : 1;
  }
  std::printf("process exit: %d scenes, %d controls, %d faults\n", static_cast<int>(exitScenes().size()),
              static_cast<int>(exitControls().size()), faults);
  return faults == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char **argv) {
  try {
    if (argc == 1) {
      return runAll();
    }
    if (argc != 3) {
      std::fputs("usage: ProcessExitTest\n", stderr);
      return 2;
    }
    alarm(kSecondsPerChild);
    const bool isScene = std::string(argv[1]) == "scene";
    return (isScene ? exitScenes() : exitControls()).at(static_cast<std::size_t>(std::atoi(argv[2]))).run();
  } catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
  }
}
