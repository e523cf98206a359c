#include "tests/fault/judge/Command.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace FaultTests {

namespace {

void openAs(posix_spawn_file_actions_t &actions, int descriptor, const std::string &file) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
  ::posix_spawn_file_actions_addopen(&actions, descriptor, file.c_str(), kFlags, S_IRUSR | S_IWUSR);
}

} // namespace

int startCommand(const std::vector<std::string> &words, const std::string &outputFile,
                 const std::string &errorFile) {
  std::vector<std::string> texts = words;
  std::vector<char *> arguments;
  arguments.reserve(texts.size() + 1);
  for (std::string &text : texts) {
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  openAs(actions, STDOUT_FILENO, outputFile);
  openAs(actions, STDERR_FILENO, errorFile);
  pid_t process = -1;
  const int error =
      ::posix_spawnp(&process, texts.front().c_str(), &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? process : -1;
}

Ending waitFor(int process) {
  Ending ending;
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) {
      return ending;
    }
  }
  ending.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  return ending;
}

Ending runCommand(const std::vector<std::string> &words, const std::string &outputFile,
                  const std::string &errorFile) {
  const int process = startCommand(words, outputFile, errorFile);
  return process < 0 ? Ending() : waitFor(process);
}

std::string readFile(const std::string &path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

void writeFile(const std::string &path, const std::string &content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::vector<std::string> linesOf(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

} // namespace FaultTests
