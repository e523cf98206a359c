#include "EmbeddedHost/src/project/FolderTree.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/project/FolderName.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <stdio.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

struct CloseDirectory {
  void operator()(DIR *directory) const { closedir(directory); }
};

// Only to find entries from; a folder that cannot be listed can still be entered.
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr int kListFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
// Does not wait for the other end of a pipe and follows no link.
constexpr int kFileFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

} // namespace

std::string pathProblem(const std::string &path, const char *action, int error) {
  return path + " cannot be " + action + ": " + systemReason(error) + ".";
}

Folder Folder::failed(const std::string &path, int error) {
  Folder folder;
  folder.m_path = path;
  folder.m_error = error;
  return folder;
}

Folder Folder::at(const std::string &path) {
  Folder folder;
  folder.m_path = path.empty() ? "." : path;
  folder.m_descriptor = FileDescriptor(::open(folder.m_path.c_str(), kFolderFlags));
  return folder.isOpen() ? std::move(folder) : failed(folder.m_path, errno);
}

Folder Folder::openNoLink(const std::string &name) const {
  Folder folder;
  folder.m_path = pathOf(name);
  folder.m_descriptor = FileDescriptor(openat(m_descriptor.get(), name.c_str(), kFolderFlags | O_NOFOLLOW));
  return folder.isOpen() ? std::move(folder) : failed(folder.m_path, errno);
}

Folder Folder::openMounted(const std::string &name) const {
  return openNoLink(name);
}

Folder Folder::open(const std::string &name) const {
  Folder folder = openNoLink(name);
  return folder.isOpen() && isMountedElsewhere(folder) ? failed(folder.m_path, EXDEV) : std::move(folder);
}

Folder Folder::make(const std::string &name) const {
  if (mkdirat(m_descriptor.get(), name.c_str(), 0777) != 0 && errno != EEXIST) {
    return failed(pathOf(name), errno);
  }
  return open(name);
}

Folder Folder::makeMounted(const std::string &name) const {
  if (mkdirat(m_descriptor.get(), name.c_str(), 0777) != 0 && errno != EEXIST) {
    return failed(pathOf(name), errno);
  }
  return openNoLink(name);
}

Folder Folder::makeNew(const std::string &name) const {
  if (mkdirat(m_descriptor.get(), name.c_str(), 0777) != 0) {
    return failed(pathOf(name), errno);
  }
  return open(name);
}

bool Folder::isAbsent() const {
  return !isOpen() && m_error == ENOENT;
}

std::string Folder::problem() const {
  return isOpen() ? std::string() : pathProblem(m_path, "used as a folder", m_error);
}

std::string Folder::pathOf(const std::string &name) const {
  return m_path.back() == '/' ? m_path + name : m_path + "/" + name;
}

EntryKind Folder::kindOf(const std::string &name) const {
  struct stat status = {};
  if (fstatat(m_descriptor.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno == ENOENT ? EntryKind::Absent : EntryKind::Unknown;
  }
  if (S_ISDIR(status.st_mode)) {
    return EntryKind::Folder;
  }
  return S_ISREG(status.st_mode) ? EntryKind::File : EntryKind::Other;
}

bool Folder::holds(const std::string &name, const Folder &folder) const {
  struct stat named = {};
  struct stat held = {};
  return fstatat(m_descriptor.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
         fstat(folder.m_descriptor.get(), &held) == 0 && named.st_ino == held.st_ino &&
         named.st_dev == held.st_dev;
}

bool Folder::isMountedElsewhere(const Folder &other) const {
  struct statx own = {};
  struct statx others = {};
  if (statx(m_descriptor.get(), "", AT_EMPTY_PATH, STATX_MNT_ID, &own) != 0 ||
      statx(other.m_descriptor.get(), "", AT_EMPTY_PATH, STATX_MNT_ID, &others) != 0) {
    return true;
  }
  if ((own.stx_mask & others.stx_mask & STATX_MNT_ID) != 0) {
    return own.stx_mnt_id != others.stx_mnt_id;
  }
  // Kernels before 5.8 do not number their mounts.
  return own.stx_dev_major != others.stx_dev_major || own.stx_dev_minor != others.stx_dev_minor;
}

bool Folder::sharesFileSystem(const Folder &other) const {
  return !isMountedElsewhere(other);
}

bool Folder::listNames(std::vector<std::string> &names, std::string &problem) const {
  const int listed = openat(m_descriptor.get(), ".", kListFlags);
  const std::unique_ptr<DIR, CloseDirectory> directory(listed < 0 ? nullptr : fdopendir(listed));
  if (directory == nullptr) {
    problem = pathProblem(m_path, "read", errno);
    if (listed >= 0) {
      ::close(listed);
    }
    return false;
  }
  errno = 0;
  while (const dirent *entry = readdir(directory.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  if (errno != 0) {
    problem = pathProblem(m_path, "read", errno);
    return false;
  }
  return true;
}

FileDescriptor Folder::openFile(const std::string &name, std::string &problem) const {
  FileDescriptor file(openat(m_descriptor.get(), name.c_str(), kFileFlags));
  struct stat status = {};
  if (!file.isOpen() || fstat(file.get(), &status) != 0) {
    problem = pathProblem(pathOf(name), "read", errno);
    return {};
  }
  // A device that was put in its place since it was looked at might never come to an end.
  if (!S_ISREG(status.st_mode)) {
    problem = pathOf(name) + " cannot be read: It is no longer a file.";
    return {};
  }
  return file;
}

FileDescriptor Folder::makeFile(const std::string &name, unsigned mode, std::string &problem) const {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW;
  FileDescriptor file(openat(m_descriptor.get(), name.c_str(), kFlags, mode));
  if (!file.isOpen()) {
    problem = pathProblem(pathOf(name), "written", errno);
  }
  return file;
}

bool Folder::rename(const std::string &name, const Folder &target, const std::string &targetName,
                    unsigned flags, std::string &problem) const {
  const int own = m_descriptor.get();
  const int other = target.m_descriptor.get();
  bool isDone = renameat2(own, name.c_str(), other, targetName.c_str(), flags) == 0;
  // Network file systems know no flags; there the look before has to do.
  const bool hasNoFlags = !isDone && (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP);
  if (hasNoFlags && flags == RENAME_NOREPLACE && target.kindOf(targetName) == EntryKind::Absent) {
    isDone = renameat(own, name.c_str(), other, targetName.c_str()) == 0;
  }
  if (!isDone) {
    const int error = errno;
    problem = pathOf(name) + " cannot be renamed to " + target.pathOf(targetName) + ": " +
              systemReason(error) + ".";
    errno = error;
  }
  return isDone;
}

// Removes everything but folders that are not empty; these are moved up into the top folder and noted, so that no
// path ever becomes too long and no more than two folders are open at a time.
bool Folder::emptyInto(const Folder &top, std::vector<std::string> &folders, std::string &problem) const {
  std::vector<std::string> names;
  if (!listNames(names, problem)) {
    return false;
  }
  for (const std::string &name : names) {
    const int own = m_descriptor.get();
    if (unlinkat(own, name.c_str(), 0) == 0 || errno == ENOENT) {
      continue;
    }
    if (errno != EISDIR) {
      problem = pathProblem(pathOf(name), "removed", errno);
      return false;
    }
    if (unlinkat(own, name.c_str(), AT_REMOVEDIR) == 0) {
      continue;
    }
    const std::string newName = newFolderName();
    if (!rename(name, top, newName, RENAME_NOREPLACE, problem)) {
      return false;
    }
    folders.push_back(newName);
  }
  return true;
}

bool Folder::remove(const std::string &name, std::string &problem) const {
  const int own = m_descriptor.get();
  if (unlinkat(own, name.c_str(), 0) == 0 || errno == ENOENT) {
    return true;
  }
  if (errno != EISDIR) {
    problem = pathProblem(pathOf(name), "removed", errno);
    return false;
  }
  // Closed before they are removed, as the file system would otherwise keep them for us until then.
  if (!emptyFolder(name, problem)) {
    return false;
  }
  if (unlinkat(own, name.c_str(), AT_REMOVEDIR) != 0) {
    problem = pathProblem(pathOf(name), "removed", errno);
    return false;
  }
  return true;
}

bool Folder::emptyFolder(const std::string &name, std::string &problem) const {
  const Folder top = open(name);
  if (!top.isOpen()) {
    problem = top.problem();
    return false;
  }
  std::vector<std::string> waiting;
  if (!top.emptyInto(top, waiting, problem)) {
    return false;
  }
  while (!waiting.empty()) {
    const std::string next = waiting.back();
    waiting.pop_back();
    Folder folder = top.open(next);
    if (!folder.isOpen()) {
      problem = folder.problem();
      return false;
    }
    if (!folder.emptyInto(top, waiting, problem)) {
      return false;
    }
    folder = Folder();
    if (unlinkat(top.m_descriptor.get(), next.c_str(), AT_REMOVEDIR) != 0) {
      problem = pathProblem(top.pathOf(next), "removed", errno);
      return false;
    }
  }
  return true;
}

void Folder::removeIfEmpty(const std::string &name) const {
  // Whoever left something in it still needs it.
  [[maybe_unused]] const int result = unlinkat(m_descriptor.get(), name.c_str(), AT_REMOVEDIR);
}

bool Folder::sync(std::string &problem) const {
  const FileDescriptor folder(openat(m_descriptor.get(), ".", kListFlags));
  if (!folder.isOpen() || fsync(folder.get()) != 0) {
    problem = pathProblem(m_path, "written to the disk", errno);
    return false;
  }
  return true;
}

bool Folder::syncFileSystem(std::string &problem) const {
  const FileDescriptor folder(openat(m_descriptor.get(), ".", kListFlags));
  if (!folder.isOpen() || syncfs(folder.get()) != 0) {
    problem = pathProblem(m_path, "written to the disk", errno);
    return false;
  }
  return true;
}

} // namespace EmbeddedHost
