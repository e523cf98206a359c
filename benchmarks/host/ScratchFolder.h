#pragma once

#include <string>

namespace HostBenchmark {

/// A new folder in another one, which goes with the object and everything in it.
class ScratchFolder {
public:
  /// \throws std::system_error  it cannot be made
  explicit ScratchFolder(const std::string &parent);
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;
  ~ScratchFolder();

  const std::string &path() const { return m_path; }
  /// The name of the file system that it is on, as far as it is known: what a save costs depends on it.
  std::string fileSystem() const;

private:
  std::string m_path;
};

} // namespace HostBenchmark
