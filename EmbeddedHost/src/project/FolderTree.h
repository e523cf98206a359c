#pragma once

#include "EmbeddedHost/src/solve/FileDescriptor.h"

#include <string>
#include <vector>

namespace EmbeddedHost {

/// What stands under a name.
enum class EntryKind {
  Absent,
  Folder,
  File,   ///< a regular file
  Other,  ///< a link, pipe, device or socket
  Unknown ///< it could not be found out
};

/// A folder held open. What lies in it is reached from it by one name at a time and never through a link or into
/// another mounted file system, so that nothing that is put in the place of an entry, even while we work, leads out
/// of the folder. Problems are sentences with the path and the reason; names must not hold a "/".
class Folder {
public:
  Folder() = default;
  /// The folder at a path of the user's own; links on the way count, as everywhere on the system.
  static Folder at(const std::string &path);

  /// The folder of that name.
  Folder open(const std::string &name) const;
  /// The same, where another file system may be mounted.
  Folder openMounted(const std::string &name) const;
  /// Both, made when there is none.
  Folder make(const std::string &name) const;
  Folder makeMounted(const std::string &name) const;
  /// Makes a folder that must not be there yet.
  Folder makeNew(const std::string &name) const;

  bool isOpen() const { return m_descriptor.isOpen(); }
  /// Not open because nothing of that name is there.
  bool isAbsent() const;
  /// Why the folder is not open; "" when it is.
  std::string problem() const;
  /// The error number behind problem().
  int error() const { return m_error; }

  /// For messages only.
  const std::string &path() const { return m_path; }
  std::string pathOf(const std::string &name) const;

  EntryKind kindOf(const std::string &name) const;
  /// Whether the entry is that very folder.
  bool holds(const std::string &name, const Folder &folder) const;
  /// Whether entries can be renamed from here into the other folder.
  bool sharesFileSystem(const Folder &other) const;
  /// The names in it, without "." and "..".
  bool listNames(std::vector<std::string> &names, std::string &problem) const;
  /// Opens a regular file for reading; waits for nobody. When something else stands there by now it is not open.
  FileDescriptor openFile(const std::string &name, std::string &problem) const;
  /// Makes a file for writing that must not be there yet.
  FileDescriptor makeFile(const std::string &name, unsigned mode, std::string &problem) const;
  /// Renames an entry of any kind, which is not followed.
  /// \param flags  of renameat2; errno tells why it failed
  bool rename(const std::string &name, const Folder &target, const std::string &targetName, unsigned flags,
              std::string &problem) const;
  /// Removes an entry of any kind with everything in it; harmless when there is none. Depth does not matter.
  bool remove(const std::string &name, std::string &problem) const;
  /// Removes a folder if it is empty.
  void removeIfEmpty(const std::string &name) const;
  /// Writes the list of names to the disk, not what they stand for.
  bool sync(std::string &problem) const;
  /// Writes everything on the file system that the folder is on to the disk.
  bool syncFileSystem(std::string &problem) const;

private:
  Folder openNoLink(const std::string &name) const;
  static Folder failed(const std::string &path, int error);
  bool isMountedElsewhere(const Folder &other) const;
  bool emptyFolder(const std::string &name, std::string &problem) const;
  bool emptyInto(const Folder &top, std::vector<std::string> &folders, std::string &problem) const;

  FileDescriptor m_descriptor;
  std::string m_path;
  int m_error = 0;
};

/// "<path> cannot be <action>: <reason>."
std::string pathProblem(const std::string &path, const char *action, int error);

} // namespace EmbeddedHost
