#include "EmbeddedHost/src/supervisor/Descendants.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Kinship {
  pid_t process;
  pid_t parent;
  bool isOurs;
};

struct Kin {
  Kinship *entries = nullptr;
  size_t count = 0;
  size_t room = 0;
};

ssize_t readText(const char *path, char *text, size_t size) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return -1;
  }
  const ssize_t count = read(file, text, size - 1);
  close(file);
  if (count >= 0) {
    text[count] = '\0';
  }
  return count;
}

// 0 when the process is gone.
pid_t parentOf(pid_t process) {
  std::array<char, 64> path{};
  std::array<char, 512> text{};
  snprintf(path.data(), path.size(), "/proc/%d/stat", process);
  if (readText(path.data(), text.data(), text.size()) <= 0) {
    return 0;
  }
  // The name stands in brackets and may hold anything, brackets and blanks too.
  const char *afterName = strrchr(text.data(), ')');
  return afterName == nullptr || strlen(afterName) < 4
             ? 0
             : static_cast<pid_t>(strtol(afterName + 4, nullptr, 10));
}

void add(Kin &kin, pid_t process) {
  if (kin.count == kin.room) {
    const size_t room = kin.room == 0 ? 1024 : kin.room * 2;
    void *grown = realloc(kin.entries, room * sizeof(Kinship));
    if (grown == nullptr) {
      return;
    }
    kin.entries = static_cast<Kinship *>(grown);
    kin.room = room;
  }
  kin.entries[kin.count++] = {process, parentOf(process), false};
}

void listProcesses(Kin &kin) {
  DIR *processes = opendir("/proc");
  if (processes == nullptr) {
    return;
  }
  while (const dirent *entry = readdir(processes)) {
    const auto process = static_cast<pid_t>(strtol(entry->d_name, nullptr, 10));
    if (process > 0) {
      add(kin, process);
    }
  }
  closedir(processes);
}

int compareProcesses(const void *left, const void *right) {
  return static_cast<const Kinship *>(left)->process - static_cast<const Kinship *>(right)->process;
}

bool isOurs(const Kin &kin, pid_t process) {
  const Kinship wanted = {process, 0, false};
  const void *found = bsearch(&wanted, kin.entries, kin.count, sizeof(Kinship), compareProcesses);
  return found != nullptr && static_cast<const Kinship *>(found)->isOurs;
}

void markDescendants(Kin &kin) {
  if (kin.count == 0) {
    return;
  }
  qsort(kin.entries, kin.count, sizeof(Kinship), compareProcesses);
  bool foundMore = true;
  while (foundMore) {
    foundMore = false;
    for (size_t at = 0; at < kin.count; ++at) {
      Kinship &entry = kin.entries[at];
      if (!entry.isOurs && entry.process != getpid() && entry.parent > 0 &&
          (entry.parent == getpid() || isOurs(kin, entry.parent))) {
        entry.isOurs = true;
        foundMore = true;
      }
    }
  }
}

// The kernel's own list of our children is much quicker to read than the table of all processes, and so a process
// that keeps replacing itself by a child has no time to get away. It is an option of the kernel.
bool killListedChildren() {
  std::array<char, 64> path{};
  std::array<char, 16384> text{};
  snprintf(path.data(), path.size(), "/proc/self/task/%d/children", getpid());
  if (readText(path.data(), text.data(), text.size()) <= 0) {
    return false;
  }
  char *next = text.data();
  while (true) {
    char *end = nullptr;
    const auto child = static_cast<pid_t>(strtol(next, &end, 10));
    // A number that the end of the buffer may have cut is left for the next time.
    if (child <= 0 || end == next || *end == '\0') {
      return true;
    }
    kill(child, SIGKILL);
    next = end;
  }
}

void pause(long nanoseconds) {
  const timespec time = {0, nanoseconds};
  nanosleep(&time, nullptr);
}

} // namespace

void signalDescendants(int number) {
  Kin kin;
  listProcesses(kin);
  markDescendants(kin);
  for (size_t at = 0; at < kin.count; ++at) {
    if (kin.entries[at].isOurs) {
      kill(kin.entries[at].process, number);
    }
  }
  free(kin.entries);
}

bool reapAllBut(pid_t spared) {
  while (true) {
    siginfo_t ended = {};
    if (waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) != 0 || ended.si_pid == 0) {
      return false;
    }
    if (ended.si_pid == spared) {
      return true;
    }
    waitpid(ended.si_pid, nullptr, WNOHANG);
  }
}

void sweepDescendants() {
  constexpr long kNanoseconds = 200000;
  for (int round = 0;; ++round) {
    pid_t reaped = 0;
    do {
      reaped = waitpid(-1, nullptr, WNOHANG);
    } while (reaped > 0);
    if (reaped < 0) {
      return; // no child is left, alive or dead
    }
    if (!killListedChildren()) {
      signalDescendants(SIGKILL);
    }
    if (round > 100) { // what does not die at once hangs in the kernel, or belongs to somebody else
      pause(kNanoseconds * 100);
    } else if (round > 0) {
      pause(kNanoseconds);
    }
  }
}
