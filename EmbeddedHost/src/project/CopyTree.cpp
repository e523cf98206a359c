#include "EmbeddedHost/src/project/CopyTree.h"

#include "EmbeddedHost/src/project/CopyProgress.h"

#include <array>
#include <cerrno>
#include <linux/fs.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace EmbeddedHost {

namespace {

bool isTooDeep(int depth, const Folder &folder, std::string &problem) {
  if (depth <= kDeepestFolder) {
    return false;
  }
  problem = folder.path() + " cannot be used: It lies more than " + std::to_string(kDeepestFolder) +
            " folders deep.";
  return true;
}

bool writeBytes(int target, const char *bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(target, bytes, count);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    // A full disk may also show as an empty write.
    if (written <= 0) {
      errno = written == 0 ? ENOSPC : errno;
      return false;
    }
    bytes += written;
    count -= static_cast<std::size_t>(written);
  }
  return true;
}

bool copyContent(int source, int target) {
  if (ioctl(target, FICLONE, source) == 0) {
    return true;
  }
  constexpr std::size_t kAtOnce = std::size_t{1} << 30;
  bool hasCopied = false;
  for (;;) {
    const ssize_t copied = copy_file_range(source, nullptr, target, nullptr, kAtOnce, 0);
    if (copied == 0 && hasCopied) {
      return true;
    }
    if (copied <= 0) {
      break;
    }
    hasCopied = true;
  }
  // Between file systems, or where the kernel copies nothing: by hand, from where it stopped.
  std::array<char, 65536> buffer = {};
  for (;;) {
    const ssize_t count = read(source, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      return count == 0;
    }
    if (!writeBytes(target, buffer.data(), static_cast<std::size_t>(count))) {
      return false;
    }
  }
}

bool copyFile(const Folder &from, const Folder &to, const std::string &name, std::string &problem) {
  const FileDescriptor source = from.openFile(name, problem);
  struct stat status = {};
  if (!source.isOpen()) {
    return false;
  }
  if (fstat(source.get(), &status) != 0) {
    problem = pathProblem(from.pathOf(name), "read", errno);
    return false;
  }
  const unsigned mode = (status.st_mode & 0777U) | S_IRUSR | S_IWUSR;
  FileDescriptor target = to.makeFile(name, mode, problem);
  if (!target.isOpen()) {
    return false;
  }
  // An error of a write may come to light only when the file is closed.
  if (!copyContent(source.get(), target.get()) || !target.close()) {
    problem = from.pathOf(name) + " cannot be copied: " + pathProblem(to.pathOf(name), "written", errno);
    return false;
  }
  return true;
}

bool copyEntries(const Folder &source, const Folder &target, int depth, std::string &problem,
                 CopyProgress *progress, const std::string &leftOut = {}) {
  std::vector<std::string> names;
  if (isTooDeep(depth, source, problem) || !source.listNames(names, problem)) {
    return false;
  }
  for (const std::string &name : names) {
    const EntryKind kind = source.kindOf(name);
    if (kind == EntryKind::Other || name == leftOut) {
      continue;
    }
    if (kind != EntryKind::Folder) {
      // What has gone since it was listed, or cannot be looked at, fails there with its reason.
      if (!copyFile(source, target, name, problem)) {
        return false;
      }
      if (progress != nullptr) {
        progress->copiedFile();
      }
      continue;
    }
    const Folder from = source.open(name);
    const Folder to = from.isOpen() ? target.makeNew(name) : Folder();
    if (!from.isOpen() || !to.isOpen()) {
      problem = from.isOpen() ? to.problem() : from.problem();
      return false;
    }
    if (!copyEntries(from, to, depth + 1, problem, progress)) {
      return false;
    }
  }
  return true;
}

bool syncEntries(const Folder &folder, int depth, std::string &problem) {
  std::vector<std::string> names;
  if (isTooDeep(depth, folder, problem) || !folder.listNames(names, problem)) {
    return false;
  }
  for (const std::string &name : names) {
    const EntryKind kind = folder.kindOf(name);
    if (kind == EntryKind::Other) {
      continue;
    }
    if (kind != EntryKind::Folder) {
      const FileDescriptor file = folder.openFile(name, problem);
      if (!file.isOpen()) {
        return false;
      }
      if (fsync(file.get()) != 0) {
        problem = pathProblem(folder.pathOf(name), "written to the disk", errno);
        return false;
      }
      continue;
    }
    const Folder inner = folder.open(name);
    if (!inner.isOpen()) {
      problem = inner.problem();
      return false;
    }
    if (!syncEntries(inner, depth + 1, problem)) {
      return false;
    }
  }
  return folder.sync(problem);
}

} // namespace

bool copyTree(const Folder &source, const Folder &target, const std::string &name, std::string &problem,
              CopyProgress *progress, const std::string &leftOut) {
  const Folder made = target.makeNew(name);
  if (!made.isOpen()) {
    problem = made.problem();
    return false;
  }
  return copyEntries(source, made, 1, problem, progress, leftOut);
}

bool syncTree(const Folder &folder, std::string &problem) {
  return syncEntries(folder, 1, problem);
}

} // namespace EmbeddedHost
