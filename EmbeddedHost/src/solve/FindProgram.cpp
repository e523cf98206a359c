#include "EmbeddedHost/SolverProcess.h"

#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

bool isExecutableFile(const std::string &path) {
  struct stat status = {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

} // namespace

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
