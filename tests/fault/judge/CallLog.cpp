#include "tests/fault/judge/CallLog.h"

#include "tests/fault/judge/Command.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace FaultTests {

std::string writeClassCalls() {
  // A question mark: not every machine has the older calls.
  return "write,writev,pwrite64,sendfile,fallocate,fsync,fdatasync,sync_file_range,?syncfs,ftruncate,?"
         "truncate,"
         "?rename,renameat,renameat2,?unlink,unlinkat,?rmdir,?mkdir,mkdirat,?link,linkat,?symlink,symlinkat,"
         "copy_file_range,ioctl,?open,?creat,openat";
}

std::string callOf(const std::string &line) {
  const std::size_t bracket = line.find('(');
  const std::string name = line.substr(0, bracket == std::string::npos ? 0 : bracket);
  const bool isName = std::all_of(name.begin(), name.end(), [](unsigned char character) {
    return std::isalnum(character) != 0 || character == '_';
  });
  return isName ? name : "";
}

std::vector<CallPoint> pointsOf(const std::string &log) {
  std::vector<CallPoint> points;
  std::map<std::string, int> counts;
  for (const std::string &line : linesOf(log)) {
    const std::string name = callOf(line);
    if (name.empty()) {
      continue;
    }
    const int ordinal = ++counts[name];
    const bool opens = name == "openat" || name == "open";
    if (!opens || line.find("O_CREAT") != std::string::npos) {
      points.push_back({name, ordinal});
    }
  }
  return points;
}

} // namespace FaultTests
