// A solver that does what solvers should not: misbehaving_solver WHAT [ARGUMENT]

#include "EmbeddedHost/tests/Misbehaviour.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <string>
#include <unistd.h>

namespace {

void printFiles() {
  DIR *files = opendir("/proc/self/fd");
  while (const dirent *entry = readdir(files)) {
    const int number = std::atoi(entry->d_name);
    if (entry->d_name[0] != '.' && number != dirfd(files)) {
      std::printf("%d\n", number);
    }
  }
  closedir(files);
}

} // namespace

int main(int count, char **arguments) {
  const std::string what = count > 1 ? arguments[1] : "";
  const char *const argument = count > 2 ? arguments[2] : nullptr;
  const int answer = misbehave(what, argument);
  if (answer >= 0) {
    return answer;
  }
  if (what == "files") {
    printFiles();
  } else if (what == "supervisor") {
    std::printf("%d\n", getppid());
  } else if (what == "arguments") {
    for (int at = 0; at < count; ++at) {
      std::fwrite(arguments[at], 1, std::strlen(arguments[at]) + 1, stdout);
    }
  } else if (what == "environment") {
    for (char **variable = environ; *variable != nullptr; ++variable) {
      std::fwrite(*variable, 1, std::strlen(*variable) + 1, stdout);
    }
  } else {
    return 99;
  }
  return 0;
}
