#include "EmbeddedHost/tests/OrdinaryUser.h"

#include <exception>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

bool becomeOrdinary() {
  constexpr unsigned kNobody = 65534;
  return getuid() != 0 ||
         (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setuid(kNobody) == 0 && getuid() == kNobody);
}

std::string answerOf(const std::function<std::string()> &work) {
  try {
    return becomeOrdinary() ? work() : "not an ordinary user";
  } catch (const std::exception &error) {
    return std::string("an exception: ") + error.what();
  }
}

void writeAll(int descriptor, const std::string &text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
    if (count <= 0) {
      return;
    }
    done += static_cast<std::size_t>(count);
  }
}

std::string readAll(int descriptor) {
  std::string text;
  char buffer[4096];
  for (ssize_t count = 0; (count = read(descriptor, buffer, sizeof buffer)) > 0;) {
    text.append(buffer, static_cast<std::size_t>(count));
  }
  return text;
}

} // namespace

std::string reportOfOrdinaryUser(const std::function<std::string()> &work) {
  int ends[2] = {};
  if (pipe(ends) != 0) {
    return "no pipe";
  }
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    writeAll(ends[1], answerOf(work));
    _exit(0);
  }
  close(ends[1]);
  const std::string answer = readAll(ends[0]);
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? answer
                                                       : "the child ended with " + std::to_string(status);
}

} // namespace EmbeddedHost
