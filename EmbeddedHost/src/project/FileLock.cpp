#include "EmbeddedHost/src/project/FileLock.h"

#include "EmbeddedHost/SystemReason.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

constexpr int kAttempts = 100;

// The holder may have removed the file when it let go of the lock; a lock on it keeps nobody out then.
bool isStillTheFile(int descriptor, const std::string &path) {
  struct stat held = {};
  struct stat named = {};
  return fstat(descriptor, &held) == 0 && lstat(path.c_str(), &named) == 0 && held.st_ino == named.st_ino &&
         held.st_dev == named.st_dev;
}

std::string whyNotOpened(const std::string &file, const std::string &path, int error) {
  switch (error) {
  case ELOOP:
  case EISDIR:
  case ENXIO:
    return "The lock file " + path + " is no file of its own; move it away.";
  case EROFS:
  case EACCES:
  case EPERM:
    return "The project " + file + " can be opened for reading only: its lock file " + path +
           " cannot be written: " + systemReason(error) + ".";
  default:
    return "The lock file " + path + " cannot be opened: " + systemReason(error) + ".";
  }
}

// A pipe or a device would reach somebody, and under a second name the content may be of use to somebody.
bool isFileOfItsOwn(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink < 2;
}

// Under each of its names a file would have another lock and another journal. (A folder, which is locked in the same
// way, has several names by nature.)
std::string checkNames(const std::string &file) {
  struct stat status = {};
  if (stat(file.c_str(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink < 2) {
    return {};
  }
  return "The project " + file + " can be opened for reading only: it has " +
         std::to_string(status.st_nlink) +
         " names (hard links), and a program that used another one would not see that it is open here. "
         "Remove the "
         "other names, or work on a copy.";
}

std::string holder(int descriptor) {
  char text[128] = {};
  const ssize_t size = pread(descriptor, text, sizeof text - 1, 0);
  return size <= 0 ? "another process" : std::string(text, static_cast<std::size_t>(size));
}

std::string thisHost() {
  char host[64] = {};
  return gethostname(host, sizeof host - 1) == 0 ? host : "this machine";
}

std::string textOfHolder(long process) {
  return "process " + std::to_string(process) + " on " + thisHost();
}

void nameHolder(int descriptor) {
  const std::string text = textOfHolder(getpid());
  // Only a courtesy to whoever is kept out; the lock holds without it.
  if (ftruncate(descriptor, 0) == 0) {
    [[maybe_unused]] const ssize_t written = pwrite(descriptor, text.data(), text.size(), 0);
  }
}

} // namespace

FileLock::FileLock(int descriptor, std::string path) : m_descriptor(descriptor), m_path(std::move(path)) {}

FileLock::~FileLock() {
  unlink(m_path.c_str());
  close(m_descriptor);
}

bool FileLock::isHeld(const std::string &file) {
  const int descriptor = open((file + ".lock").c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  if (descriptor < 0) {
    return errno != ENOENT;
  }
  const std::string named = holder(descriptor);
  close(descriptor);
  constexpr std::size_t kNumberAt = 8; // behind "process "
  const long process = named.size() > kNumberAt ? std::atol(named.c_str() + kNumberAt) : 0;
  const bool isOurs = process > 0 && named == textOfHolder(process);
  return !isOurs || kill(static_cast<pid_t>(process), 0) == 0 || errno != ESRCH;
}

std::unique_ptr<FileLock> FileLock::acquire(const std::string &file, std::string &problem) {
  const std::string path = file + ".lock";
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
    if (descriptor < 0) {
      problem = whyNotOpened(file, path, errno);
      return nullptr;
    }
    if (!isFileOfItsOwn(descriptor)) {
      problem = whyNotOpened(file, path, ENXIO);
      close(descriptor);
      return nullptr;
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
      const int error = errno;
      problem = error == EWOULDBLOCK
                    ? "The project " + file + " is open in " + holder(descriptor) +
                          "; until it is closed there it can be opened for reading only."
                    : "The lock file " + path + " cannot be locked: " + systemReason(error) + ".";
      close(descriptor);
      return nullptr;
    }
    if (isStillTheFile(descriptor, path)) {
      nameHolder(descriptor);
      std::unique_ptr<FileLock> lock(new FileLock(descriptor, path));
      problem = checkNames(file);
      return problem.empty() ? std::move(lock) : nullptr;
    }
    close(descriptor);
  }
  problem = "The lock file " + path + " cannot be locked: it keeps changing.";
  return nullptr;
}

} // namespace EmbeddedHost
