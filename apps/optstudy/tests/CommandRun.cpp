#include "apps/optstudy/tests/CommandRun.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::string contentOf(const fs::path &file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

std::vector<char *> pointersTo(std::vector<std::string> &texts) {
  std::vector<char *> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string &text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

} // namespace

TemporaryFolder::TemporaryFolder() {
  std::string pattern = (fs::temp_directory_path() / "optstudy test XXXXXX").string();
  m_path = ::mkdtemp(pattern.data());
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

void TemporaryFolder::write(const std::string &name, const std::string &content) const {
  std::ofstream(m_path / name, std::ios::binary) << content;
}

void TemporaryFolder::writeProgram(const std::string &name, const std::string &content) const {
  write(name, content);
  fs::permissions(m_path / name, fs::perms::owner_all);
}

std::string TemporaryFolder::read(const std::string &name) const {
  return contentOf(m_path / name);
}

bool TemporaryFolder::has(const std::string &name) const {
  return fs::exists(m_path / name);
}

CommandRun::CommandRun(const TemporaryFolder &folder, std::vector<std::string> arguments,
                       const std::map<std::string, std::string> &environment,
                       const std::vector<std::string> &before) {
  m_output = folder.file("command.out");
  m_messages = folder.file("command.err");
  arguments.insert(arguments.begin(), OPTSTUDY_PROGRAM);
  arguments.insert(arguments.begin(), before.begin(), before.end());
  const std::string program = arguments.front();
  std::vector<std::string> variables;
  variables.reserve(environment.size());
  for (const auto &[name, value] : environment) {
    variables.push_back(std::string(name).append("=").append(value));
  }
  for (char **inherited = ::environ; *inherited != nullptr; ++inherited) {
    const std::string text = *inherited;
    if (environment.count(text.substr(0, text.find('='))) == 0) {
      variables.push_back(text);
    }
  }
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, m_output.c_str(), kWrite, 0600);
  ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, m_messages.c_str(), kWrite, 0600);
  ::posix_spawn_file_actions_addchdir_np(&actions, folder.path().c_str());
  m_started = std::chrono::steady_clock::now();
  if (::posix_spawnp(&m_pid, program.c_str(), &actions, nullptr, pointersTo(arguments).data(),
                     pointersTo(variables).data()) != 0) {
    m_pid = 0;
  }
  ::posix_spawn_file_actions_destroy(&actions);
}

CommandRun::~CommandRun() {
  if (m_pid > 0) {
    ::kill(m_pid, SIGKILL);
    ::waitpid(m_pid, nullptr, 0);
  }
}

void CommandRun::sendSignal(int number) const {
  ::kill(m_pid, number);
}

CommandResult CommandRun::wait() {
  CommandResult result;
  int status = 0;
  if (m_pid <= 0 || ::waitpid(m_pid, &status, 0) != m_pid) {
    return result;
  }
  m_pid = 0;
  result.time =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_started);
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  result.output = contentOf(m_output);
  result.messages = contentOf(m_messages);
  return result;
}

CommandResult runCommand(const TemporaryFolder &folder, std::vector<std::string> arguments,
                         const std::map<std::string, std::string> &environment) {
  return CommandRun(folder, std::move(arguments), environment).wait();
}

std::vector<std::string> linesOf(const std::string &text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

bool waitForLines(const fs::path &file, std::size_t lines) {
  for (int attempt = 0; attempt < 1000; ++attempt) {
    if (linesOf(contentOf(file)).size() >= lines) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}
