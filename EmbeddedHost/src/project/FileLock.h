#pragma once

#include <memory>
#include <string>

namespace EmbeddedHost {

/// Keeps a second process, or a second project of this one, from writing a project. The lock ends with the process
/// however that ends, and programs that are started do not inherit it.
class FileLock {
public:
  /// \param file  the file to be locked; a file with ".lock" added to its name stands for it
  /// \return null with one sentence in \p problem, which names the holder where another one has the lock, and says so
  ///         where the file can be opened for reading all the same; never waits
  static std::unique_ptr<FileLock> acquire(const std::string &file, std::string &problem);
  /// Whether somebody who has the lock may be at it still: false when there is no lock file, and when the process of this
  /// machine that it names has ended. Touches nothing.
  static bool isHeld(const std::string &file);
  FileLock(const FileLock &) = delete;
  FileLock &operator=(const FileLock &) = delete;
  ~FileLock();

private:
  FileLock(int descriptor, std::string path);

  int m_descriptor;
  std::string m_path;
};

} // namespace EmbeddedHost
