#include "tests/fault/judge/WorkFolder.h"

#include <cstdlib>
#include <filesystem>
#include <grp.h>
#include <iostream>
#include <stdlib.h>
#include <system_error>
#include <unistd.h>

namespace FaultTests {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kNobody = 65534;
constexpr const char *kNameBegin = "optstudy-fault-";

} // namespace

WorkFolder::WorkFolder() {
  std::string pattern = (fs::canonical(fs::temp_directory_path()) / kNameBegin).string() + "XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) {
    std::cerr << "no temporary folder " << pattern << "\n";
    std::exit(EXIT_FAILURE);
  }
  m_path = pattern;
}

WorkFolder::~WorkFolder() {
  std::error_code error;
  if (fs::path(m_path).filename().string().rfind(kNameBegin, 0) == 0 && !fs::is_symlink(m_path, error)) {
    fs::remove_all(m_path, error);
  }
}

bool WorkFolder::isBelow(const std::string &path) const {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return !error && real == fs::path(path) && real.parent_path() == fs::path(m_path);
}

std::string WorkFolder::makeFolder(const std::string &name) const {
  std::string path = m_path + "/" + name;
  fs::create_directory(path);
  return path;
}

void WorkFolder::removeFolder(const std::string &path) const {
  if (!isBelow(path)) {
    std::cerr << "not removed, because it is not below " << m_path << ": " << path << "\n";
    return;
  }
  std::error_code error;
  // What an orphaned solver still writes is removed with the whole folder.
  fs::remove_all(path, error);
}

std::string WorkFolder::takeFile(const std::string &file) const {
  std::string copy = m_path + "/" + fs::path(file).filename().string();
  fs::copy_file(file, copy);
  return copy;
}

bool WorkFolder::handOver() const {
  if (::getuid() != 0) {
    return true;
  }
  bool isDone = ::chown(m_path.c_str(), kNobody, kNobody) == 0;
  for (const fs::directory_entry &entry : fs::directory_iterator(m_path)) {
    isDone = isDone && ::lchown(entry.path().c_str(), kNobody, kNobody) == 0;
  }
  return isDone;
}

bool dropRights() {
  return ::getuid() != 0 || (::chdir("/") == 0 && ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 &&
                             ::setuid(kNobody) == 0 && ::getuid() != 0);
}

} // namespace FaultTests
