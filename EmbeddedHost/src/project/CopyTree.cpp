#include "EmbeddedHost/src/project/CopyTree.h"

#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <memory>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace EmbeddedHost {

namespace {

/// Closes a file descriptor at the end of its scope.
class Descriptor {
public:
  explicit Descriptor(int number) : m_number(number) {}
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  ~Descriptor() {
    if (m_number >= 0) {
      ::close(m_number);
    }
  }
  int get() const { return m_number; }
  bool isOpen() const { return m_number >= 0; }
  /// Closes it now; an error of a write may come to light only here.
  bool close() {
    const int number = m_number;
    m_number = -1;
    return ::close(number) == 0;
  }

private:
  int m_number;
};

struct CloseDirectory {
  void operator()(DIR *directory) const { closedir(directory); }
};

// Does not wait for the other end of a pipe and follows no link.
constexpr int kReadFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

// The names in a folder; false when they cannot be read.
bool readNames(const std::string &folder, std::vector<std::string> &names) {
  const int descriptor = open(folder.c_str(), kReadFlags | O_DIRECTORY);
  if (descriptor < 0) {
    return false;
  }
  const std::unique_ptr<DIR, CloseDirectory> directory(fdopendir(descriptor));
  if (directory == nullptr) {
    ::close(descriptor);
    return false;
  }
  errno = 0;
  while (const dirent *entry = readdir(directory.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      names.emplace_back(name);
    }
  }
  return errno == 0;
}

std::string joined(const std::string &folder, const std::string &name) {
  std::string path = folder;
  path += '/';
  path += name;
  return path;
}

bool writeAll(int target, const char *bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t written = write(target, bytes, count);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    // A full disk may also show as a short or empty write.
    if (written <= 0) {
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
    if (!writeAll(target, buffer.data(), static_cast<std::size_t>(count))) {
      return false;
    }
  }
}

bool copyFile(int source, const struct stat &status, const std::string &to) {
  const mode_t mode = (status.st_mode & 0777U) | S_IRUSR | S_IWUSR;
  Descriptor target(open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
  return target.isOpen() && copyContent(source, target.get()) && target.close();
}

} // namespace

bool copyTree(const std::string &from, const std::string &to) {
  struct Folder {
    std::string from;
    std::string to;
  };
  std::vector<Folder> waiting = {{from, to}};
  while (!waiting.empty()) {
    const Folder folder = waiting.back();
    waiting.pop_back();
    std::vector<std::string> names;
    if (mkdir(folder.to.c_str(), 0777) != 0 || !readNames(folder.from, names)) {
      return false;
    }
    for (const std::string &name : names) {
      const std::string source = joined(folder.from, name);
      const std::string target = joined(folder.to, name);
      struct stat status = {};
      if (lstat(source.c_str(), &status) != 0) {
        return false;
      }
      if (S_ISDIR(status.st_mode)) {
        waiting.push_back({source, target});
      } else if (S_ISREG(status.st_mode)) {
        const Descriptor file(open(source.c_str(), kReadFlags));
        if (!file.isOpen() || fstat(file.get(), &status) != 0 || !copyFile(file.get(), status, target)) {
          return false;
        }
      }
    }
  }
  return true;
}

bool syncTree(const std::string &folder) {
  std::vector<std::string> waiting = {folder};
  while (!waiting.empty()) {
    const std::string current = waiting.back();
    waiting.pop_back();
    std::vector<std::string> names;
    if (!readNames(current, names)) {
      return false;
    }
    for (const std::string &name : names) {
      const std::string path = joined(current, name);
      struct stat status = {};
      if (lstat(path.c_str(), &status) != 0) {
        return false;
      }
      if (S_ISDIR(status.st_mode)) {
        waiting.push_back(path);
      } else if (S_ISREG(status.st_mode)) {
        const Descriptor file(open(path.c_str(), kReadFlags));
        if (!file.isOpen() || fsync(file.get()) != 0) {
          return false;
        }
      }
    }
    const Descriptor directory(open(current.c_str(), kReadFlags | O_DIRECTORY));
    if (!directory.isOpen() || fsync(directory.get()) != 0) {
      return false;
    }
  }
  return true;
}

} // namespace EmbeddedHost
