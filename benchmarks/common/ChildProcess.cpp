#include "benchmarks/common/ChildProcess.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace Benchmarking {

namespace {

void expectNoError(int error, const char *call) {
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), call);
  }
}

std::string readToEnd(int file) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t count = read(file, buffer.data(), buffer.size());
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return text;
    }
  }
}

} // namespace

std::string outputOf(const std::vector<std::string> &command) {
  // The system's interface wants writable text.
  std::vector<std::string> words = command;
  std::vector<char *> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string &word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);

  std::array<int, 2> ends{};
  expectNoError(pipe(ends.data()) == 0 ? 0 : errno, "pipe");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  posix_spawn_file_actions_addclose(&actions, ends[1]);
  pid_t child = 0;
  const int error = posix_spawn(&child, words.front().c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string text = error == 0 ? readToEnd(ends[0]) : std::string();
  close(ends[0]);
  expectNoError(error, words.front().c_str());

  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    expectNoError(errno == EINTR ? 0 : errno, "waitpid");
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw std::runtime_error(words.front() + " " + words.back() + " failed");
  }
  return text;
}

} // namespace Benchmarking
