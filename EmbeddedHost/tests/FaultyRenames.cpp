#include "EmbeddedHost/tests/FaultyRenames.h"

#include <cerrno>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

struct Faults {
  bool isActive = false;
  std::set<int> failing;
  int error = 0;
  unsigned refusedFlags = 0;
  int endAt = 0;
  int pauseAt = 0;
  int pipe = -1;
  int folderError = 0;
  int count = 0;
};

Faults &faults() {
  static Faults faults;
  return faults;
}

// The error that a renaming is to fail with; 0 lets it happen.
int renameFault(unsigned flags) {
  Faults &now = faults();
  if (!now.isActive) {
    return 0;
  }
  ++now.count;
  if (now.count == now.endAt) {
    _exit(FaultyRenames::kEnded);
  }
  if (now.count == now.pauseAt && write(now.pipe, "p", 1) == 1) {
    for (;;) {
      pause();
    }
  }
  if ((flags & now.refusedFlags) != 0) {
    return EINVAL;
  }
  return now.failing.count(now.count) != 0 ? now.error : 0;
}

} // namespace

FaultyRenames::FaultyRenames() {
  faults() = Faults();
  faults().isActive = true;
}

FaultyRenames::~FaultyRenames() {
  faults() = Faults();
}

void FaultyRenames::fail(const std::set<int> &ordinals, int error) {
  faults().failing = ordinals;
  faults().error = error;
}

void FaultyRenames::refuseExchanges() {
  faults().refusedFlags = RENAME_EXCHANGE;
}

void FaultyRenames::refuseFlags() {
  faults().refusedFlags = RENAME_EXCHANGE | RENAME_NOREPLACE;
}

void FaultyRenames::endAt(int ordinal) {
  faults().endAt = ordinal;
}

void FaultyRenames::pauseAt(int ordinal, int pipe) {
  faults().pauseAt = ordinal;
  faults().pipe = pipe;
}

void FaultyRenames::failMakingFolders(int error) {
  faults().folderError = error;
}

int FaultyRenames::count() const {
  return faults().count;
}

} // namespace EmbeddedHost

// In the place of the C library's own for the whole test program.
extern "C" int renameat2(int fromFolder, const char *from, int toFolder, const char *to,
                         unsigned int flags) noexcept {
  if (const int error = EmbeddedHost::renameFault(flags); error != 0) {
    errno = error;
    return -1;
  }
  return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

extern "C" int mkdirat(int folder, const char *name, mode_t mode) noexcept {
  if (EmbeddedHost::faults().folderError != 0) {
    errno = EmbeddedHost::faults().folderError;
    return -1;
  }
  return static_cast<int>(syscall(SYS_mkdirat, folder, name, mode));
}
