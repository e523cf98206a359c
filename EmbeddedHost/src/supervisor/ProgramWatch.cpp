#include "EmbeddedHost/src/supervisor/ProgramWatch.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

ProgramWatch::ProgramWatch(int socket) {
  ucred maker = {};
  socklen_t size = sizeof(maker);
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &maker, &size) != 0 || maker.pid <= 0) {
    return;
  }
#ifdef SYS_pidfd_open
  m_end = static_cast<int>(syscall(SYS_pidfd_open, maker.pid, 0));
#endif
  // Kept open, so that it never tells of another process that was given the same number.
  std::array<char, 64> path{};
  snprintf(path.data(), path.size(), "/proc/%d/stat", maker.pid);
  m_status = open(path.data(), O_RDONLY | O_CLOEXEC);
}

ProgramWatch::~ProgramWatch() {
  for (const int descriptor : {m_end, m_status}) {
    if (descriptor >= 0) {
      close(descriptor);
    }
  }
}

bool ProgramWatch::isSuspended() const {
  std::array<char, 512> text{};
  if (m_status < 0 || pread(m_status, text.data(), text.size() - 1, 0) <= 0) {
    return false;
  }
  // "number (name) state ...", where the name may hold anything
  const char *afterName = strrchr(text.data(), ')');
  return afterName != nullptr && strncmp(afterName, ") T", 3) == 0;
}
