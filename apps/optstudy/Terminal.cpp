#include "apps/optstudy/Terminal.h"

#include "Workbench/ExitCode.h"

#include <iostream>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// A pipe or socket whose other end is closed.
bool hasLostItsReader(int descriptor) {
  pollfd output{descriptor, POLLOUT, 0};
  return ::poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

} // namespace

std::size_t terminalWidth() {
  winsize size{};
  return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

int exitCodeAfterPrinting(int code) {
  std::cout.flush();
  if (std::cout || hasLostItsReader(STDOUT_FILENO)) {
    return code;
  }
  std::cerr << "The results could not be written to standard output: is the disk full?\n";
  return code == Workbench::ExitCode::kDone ? Workbench::ExitCode::kInternalError : code;
}
