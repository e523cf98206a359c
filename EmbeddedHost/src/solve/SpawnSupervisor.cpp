#include "EmbeddedHost/src/solve/SpawnSupervisor.h"

#include "EmbeddedHost/src/solve/SupervisorProtocol.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <spawn.h>
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

// The terminal, or a pipe that somebody waits for the end of, is not held open by a supervisor.
int describeFiles(FileActions &actions, int socket) {
  return std::max({
      ::posix_spawn_file_actions_adddup2(actions.get(), socket, Supervision::kSocket),
      ::posix_spawn_file_actions_addopen(actions.get(), STDOUT_FILENO, "/dev/null", O_WRONLY, 0),
      ::posix_spawn_file_actions_addopen(actions.get(), STDERR_FILENO, "/dev/null", O_WRONLY, 0),
      ::posix_spawn_file_actions_addclosefrom_np(actions.get(), STDERR_FILENO + 1),
  });
}

void describeSignals(Attributes &attributes) {
  sigset_t all;
  ::sigfillset(&all);
  ::posix_spawnattr_setsigmask(attributes.get(), &all);
  ::posix_spawnattr_setsigdefault(attributes.get(), &all);
  ::posix_spawnattr_setflags(attributes.get(),
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

} // namespace

int spawnSupervisor(const std::string &program, int socket, int &process) {
  FileActions actions;
  Attributes attributes;
  describeSignals(attributes);
  const int problem = describeFiles(actions, socket);
  if (problem != 0) {
    return problem;
  }
  std::string file = program;
  std::string version = Supervision::kVersion;
  std::array<char *, 3> arguments = {file.data(), version.data(), nullptr};
  return ::posix_spawn(&process, program.c_str(), actions.get(), attributes.get(), arguments.data(),
                       ::environ);
}

} // namespace EmbeddedHost
