#include "EmbeddedHost/RunFiles.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/solve/FileDescriptor.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

std::string systemProblem(const std::string &path) {
  return path + ": " + systemReason(errno);
}

bool writeNewFileWithMode(const std::string &path, std::string_view content, mode_t mode,
                          std::string &problem) {
  FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!file.isOpen()) {
    problem = systemProblem(path);
    return false;
  }
  if (!writeAll(file.get(), content) || !file.close()) {
    problem = systemProblem(path);
    ::unlink(path.c_str());
    return false;
  }
  return true;
}

std::optional<std::string> readOpenFile(const FileDescriptor &file, const std::string &path,
                                        std::size_t largest, std::string &problem) {
  std::string content;
  std::array<char, 65536> buffer{};
  while (true) {
    const ssize_t count = ::read(file.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      problem = systemProblem(path);
      return std::nullopt;
    }
    if (count == 0) {
      return content;
    }
    content.append(buffer.data(), static_cast<std::size_t>(count));
    if (content.size() > largest) {
      problem = path + ": larger than " + std::to_string(largest) + " bytes";
      return std::nullopt;
    }
  }
}

// Opens for reading without ever waiting for the other end of a pipe, and refuses what is no regular file.
FileDescriptor openRegularFile(const std::string &path, mode_t &mode, std::string &problem) {
  FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status = {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
    problem = systemProblem(path);
    return FileDescriptor();
  }
  if (!S_ISREG(status.st_mode)) {
    problem = path + ": not a regular file";
    return FileDescriptor();
  }
  mode = status.st_mode;
  return file;
}

} // namespace

std::optional<std::string> readWholeFile(const std::string &path, std::size_t largest, std::string &problem) {
  mode_t mode = 0;
  const FileDescriptor file = openRegularFile(path, mode, problem);
  if (!file.isOpen()) {
    return std::nullopt;
  }
  return readOpenFile(file, path, largest, problem);
}

bool writeNewFile(const std::string &path, std::string_view content, std::string &problem) {
  return writeNewFileWithMode(path, content, S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH,
                              problem);
}

bool copyToNewFile(const std::string &from, const std::string &to, std::string &problem) {
  mode_t mode = 0;
  const FileDescriptor source = openRegularFile(from, mode, problem);
  if (!source.isOpen()) {
    return false;
  }
  FileDescriptor target(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode & 0777U));
  if (!target.isOpen()) {
    problem = systemProblem(to);
    return false;
  }
  std::array<char, 65536> buffer{};
  while (true) {
    const ssize_t count = ::read(source.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      problem = systemProblem(from);
      ::unlink(to.c_str());
      return false;
    }
    if (count == 0) {
      break;
    }
    if (!writeAll(target.get(), std::string_view(buffer.data(), static_cast<std::size_t>(count)))) {
      problem = systemProblem(to);
      ::unlink(to.c_str());
      return false;
    }
  }
  if (!target.close()) {
    problem = systemProblem(to);
    ::unlink(to.c_str());
    return false;
  }
  return true;
}

} // namespace EmbeddedHost
