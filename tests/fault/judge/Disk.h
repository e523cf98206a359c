#pragma once

#include <string>
#include <vector>

namespace FaultTests {

/// Takes the rights of root back for as long as it lives; the process otherwise acts as a user without any.
class RootScope {
public:
  RootScope();
  RootScope(const RootScope &) = delete;
  RootScope &operator=(const RootScope &) = delete;
  ~RootScope();
};

/// Makes the mounts of this process its own, so that none outlives it, and gives up the rights of root but for
/// RootScope.
/// \return false without root or that right
bool prepareMounting(const std::string &workFolder);

/// A file system in a file, mounted on a folder until this object ends.
class Disk {
public:
  Disk(std::string image, std::string folder);
  Disk(const Disk &) = delete;
  Disk &operator=(const Disk &) = delete;
  ~Disk();

  /// Why it is not mounted; "" when it is.
  const std::string &problem() const { return m_problem; }
  const std::string &folder() const { return m_folder; }

private:
  std::string m_image;
  std::string m_folder;
  std::string m_problem;
};

/// Makes an empty file system in a new file.
/// \return "" when done, else why not
std::string makeImage(const std::string &image);
/// Copies what has reached the image by now, and nothing that the system still keeps in memory for it.
/// \return whether it was copied
bool copyImage(const std::string &from, const std::string &to);

/// Starts a program for good as the user without rights.
int startWithoutRights(const std::vector<std::string> &words, const std::string &outputFile,
                       const std::string &errorFile);

} // namespace FaultTests
