#include "tests/fault/judge/Disk.h"

#include "tests/fault/judge/Command.h"
#include "tests/fault/judge/WorkFolder.h"

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <grp.h>
#include <iostream>
#include <sched.h>
#include <sys/mount.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace FaultTests {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kNobody = 65534;
constexpr int kUnmountAttempts = 250;
constexpr std::chrono::milliseconds kUnmountPause{20};

void stopUnless(bool isDone) {
  if (!isDone) {
    std::cerr << "The rights of root cannot be taken or given up.\n";
    std::_Exit(EXIT_FAILURE);
  }
}

void giveUpForNow() {
  stopUnless(::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0);
}

// Nothing of the files' content is touched as root: only what mount and umount do themselves.
Ending runAsRoot(const std::vector<std::string> &words, const std::string &log) {
  const RootScope root;
  return runCommand(words, log, log);
}

} // namespace

RootScope::RootScope() {
  stopUnless(::seteuid(0) == 0 && ::setegid(0) == 0);
}

RootScope::~RootScope() {
  giveUpForNow();
}

bool prepareMounting(const std::string &workFolder) {
  if (::getuid() != 0 || ::unshare(CLONE_NEWNS) != 0 ||
      ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
      ::chown(workFolder.c_str(), kNobody, kNobody) != 0) {
    return false;
  }
  const char *path = std::getenv("PATH");
  ::setenv("PATH", ((path == nullptr ? std::string() : path + std::string(":")) + "/usr/sbin:/sbin").c_str(),
           1);
  stopUnless(::setgroups(0, nullptr) == 0);
  giveUpForNow();
  return true;
}

Disk::Disk(std::string image, std::string folder) : m_image(std::move(image)), m_folder(std::move(folder)) {
  // Written to the disk when asked to and not before, so that what nobody asked for is really lost.
  const std::string options = "loop,commit=600,noatime,nodev,nosuid";
  const std::string log = m_image + ".mount";
  if (runAsRoot({"mount", "-t", "ext4", "-o", options, m_image, m_folder}, log).exitCode != 0) {
    m_problem = m_image + " cannot be mounted: " + readFile(log);
  }
}

Disk::~Disk() {
  if (!m_problem.empty()) {
    return;
  }
  // A solver whose starter was ended may take a moment to end.
  for (int attempt = 0; attempt < kUnmountAttempts; ++attempt) {
    if (runAsRoot({"umount", m_folder}, m_image + ".umount").exitCode == 0) {
      return;
    }
    std::this_thread::sleep_for(kUnmountPause);
  }
  std::cerr << m_folder << " cannot be unmounted: " << readFile(m_image + ".umount") << "\n";
}

std::string makeImage(const std::string &image) {
  constexpr std::uintmax_t kSize = std::uintmax_t{64} * 1024 * 1024;
  std::error_code error;
  fs::remove(image, error);
  writeFile(image, "");
  fs::resize_file(image, kSize, error);
  const std::string log = image + ".made";
  if (error || runCommand({"mkfs.ext4", "-q", "-F", "-E", "root_owner=65534:65534", image}, log, log + ".err")
                       .exitCode != 0) {
    return image + " cannot be made: " + readFile(log + ".err");
  }
  return "";
}

bool copyImage(const std::string &from, const std::string &to) {
  return runCommand({"cp", "--sparse=always", from, to}, to + ".out", to + ".err").exitCode == 0;
}

int startWithoutRights(const std::vector<std::string> &words, const std::string &outputFile,
                       const std::string &errorFile) {
  std::vector<std::string> texts = words;
  std::vector<char *> arguments;
  arguments.reserve(texts.size() + 1);
  for (std::string &text : texts) {
    arguments.push_back(text.data());
  }
  arguments.push_back(nullptr);
  const pid_t child = ::fork();
  if (child != 0) {
    return child;
  }
  const bool hasNone = ::seteuid(0) == 0 && dropRights();
  constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
  const int output = ::open(outputFile.c_str(), kFlags, S_IRUSR | S_IWUSR);
  const int error = ::open(errorFile.c_str(), kFlags, S_IRUSR | S_IWUSR);
  if (hasNone && ::dup2(output, STDOUT_FILENO) >= 0 && ::dup2(error, STDERR_FILENO) >= 0) {
    ::execvp(arguments.front(), arguments.data());
  }
  ::_exit(EXIT_FAILURE);
}

} // namespace FaultTests
