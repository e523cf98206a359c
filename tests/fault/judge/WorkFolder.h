#pragma once

#include <string>

namespace FaultTests {

/// A new temporary folder, below which everything happens. Removed in the end, and nothing else ever is.
class WorkFolder {
public:
  WorkFolder();
  WorkFolder(const WorkFolder &) = delete;
  WorkFolder &operator=(const WorkFolder &) = delete;
  ~WorkFolder();

  const std::string &path() const { return m_path; }
  /// A new folder below.
  std::string makeFolder(const std::string &name) const;
  /// Copies a file into the folder, together with the right to execute it. \return the copy
  std::string takeFile(const std::string &file) const;
  /// Gives the folder and the files in it to the user who is left when rights are dropped.
  /// \return false when that is not possible
  bool handOver() const;
  /// Removes a folder that makeFolder() made; anything else is refused.
  void removeFolder(const std::string &path) const;

private:
  bool isBelow(const std::string &path) const;

  std::string m_path;
};

/// Gives up the rights of root, if the process has them: what goes wrong from then on cannot do harm. The working folder
/// becomes "/", because whoever is left may not be allowed to enter the one of root.
/// \return false when that is not possible
bool dropRights();

} // namespace FaultTests
