#include "EmbeddedHost/src/solve/SpawnSolver.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

class FileActions {
public:
  FileActions() { ::posix_spawn_file_actions_init(&m_actions); }
  FileActions(const FileActions &) = delete;
  FileActions &operator=(const FileActions &) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
  posix_spawn_file_actions_t *get() { return &m_actions; }

private:
  posix_spawn_file_actions_t m_actions = {};
};

class Attributes {
public:
  Attributes() { ::posix_spawnattr_init(&m_attributes); }
  Attributes(const Attributes &) = delete;
  Attributes &operator=(const Attributes &) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&m_attributes); }
  posix_spawnattr_t *get() { return &m_attributes; }

private:
  posix_spawnattr_t m_attributes = {};
};

// "NAME=value" texts: ours first, then what is inherited and not replaced.
std::vector<std::string> environmentTexts(std::map<std::string, std::string> variables) {
  if (::getenv("OMP_NUM_THREADS") == nullptr) {
    variables.emplace("OMP_NUM_THREADS", "1");
  }
  std::vector<std::string> texts;
  texts.reserve(variables.size());
  for (const auto &[name, value] : variables) {
    texts.push_back(std::string(name).append("=").append(value));
  }
  for (char **inherited = ::environ; inherited != nullptr && *inherited != nullptr; ++inherited) {
    const std::string text = *inherited;
    if (variables.count(text.substr(0, text.find('='))) == 0) {
      texts.push_back(text);
    }
  }
  return texts;
}

// The null-terminated vector of pointers that exec wants; it lives as long as `texts`.
std::vector<char *> pointersTo(std::vector<std::string> &texts) {
  std::vector<char *> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string &text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

bool isExecutableFile(const std::string &path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

} // namespace

int spawnSolver(const SolverCommand &command, int output, int error, int &pid) {
  FileActions actions;
  int problem = ::posix_spawn_file_actions_addopen(actions.get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  if (problem == 0) {
    problem = ::posix_spawn_file_actions_adddup2(actions.get(), output, STDOUT_FILENO);
  }
  if (problem == 0) {
    problem = ::posix_spawn_file_actions_adddup2(actions.get(), error, STDERR_FILENO);
  }
  if (problem == 0) {
    problem = ::posix_spawn_file_actions_addchdir_np(actions.get(), command.workingFolder.c_str());
  }
  if (problem == 0) {
    problem = ::posix_spawn_file_actions_addclosefrom_np(actions.get(), STDERR_FILENO + 1);
  }
  Attributes attributes;
  sigset_t none;
  sigset_t all;
  ::sigemptyset(&none);
  ::sigfillset(&all);
  ::posix_spawnattr_setpgroup(attributes.get(), 0);
  ::posix_spawnattr_setsigmask(attributes.get(), &none);
  ::posix_spawnattr_setsigdefault(attributes.get(), &all);
  ::posix_spawnattr_setflags(attributes.get(),
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  if (problem != 0) {
    return problem;
  }
  std::vector<std::string> argumentTexts = command.arguments;
  std::vector<std::string> environment = environmentTexts(command.environment);
  return ::posix_spawn(&pid, command.program.c_str(), actions.get(), attributes.get(),
                       pointersTo(argumentTexts).data(), pointersTo(environment).data());
}

std::optional<std::string> findProgram(const std::string &name, const std::string &baseFolder,
                                       const std::string &searchPath) {
  if (name.find('/') != std::string::npos) {
    const std::string path = name.front() == '/' ? name : baseFolder + "/" + name;
    return isExecutableFile(path) ? std::optional<std::string>(path) : std::nullopt;
  }
  std::size_t begin = 0;
  while (!name.empty() && begin <= searchPath.size()) {
    std::size_t end = searchPath.find(':', begin);
    end = end == std::string::npos ? searchPath.size() : end;
    const std::string path = searchPath.substr(begin, end - begin).append("/").append(name);
    if (end > begin && isExecutableFile(path)) {
      return path;
    }
    begin = end + 1;
  }
  return std::nullopt;
}

} // namespace EmbeddedHost
