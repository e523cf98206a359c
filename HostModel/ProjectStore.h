#pragma once

#include "HostModel/Export.h"

#include <string>

namespace Tools {
class ToolProgress;
}

namespace ProjectData {

/// Names the store of one version: the project's file and the version's folder.
struct StoreLocation {
  std::string projectFile;
  std::string versionFolder;
};

/// What a host writes to offer ProjectStore. With an empty file or folder nothing may happen, and nothing
/// outside the version's own store may ever be touched.
class HOSTMODEL_EXPORT ProjectStoreService {
public:
  ProjectStoreService() = default;
  ProjectStoreService(const ProjectStoreService &) = delete;
  ProjectStoreService &operator=(const ProjectStoreService &) = delete;
  virtual ~ProjectStoreService();

  virtual std::string getStoreDirectoryName(const StoreLocation &store) = 0;
  virtual bool remove(const StoreLocation &store) = 0;
  virtual bool copyResults(const StoreLocation &source, const StoreLocation &target, bool move,
                           Tools::ToolProgress *progress, bool overwrite) = 0;
};

/// The on-disk store of one version's results. A value: it holds its location and forwards to the installed
/// host; without one the directory name is "" and nothing happens.
class HOSTMODEL_EXPORT ProjectStore {
public:
  ProjectStore(const std::string &projectFile, const std::string &versionFolder);
  ~ProjectStore();

  /// The directory of the store; "" when it has no place.
  std::string getStoreDirectoryName() const;
  /// Removes what the store holds.
  bool remove();
  /// Copies the stored results into \p target; not an error when there are none or when both stores are one.
  bool copyResults(ProjectStore &target, bool move, Tools::ToolProgress *progress, bool overwrite);

private:
  StoreLocation m_location;
};

} // namespace ProjectData

namespace FileSystem {

/// What a host writes to offer Directory.
class HOSTMODEL_EXPORT DirectoryService {
public:
  DirectoryService() = default;
  DirectoryService(const DirectoryService &) = delete;
  DirectoryService &operator=(const DirectoryService &) = delete;
  virtual ~DirectoryService();

  virtual bool rename(const std::string &from, const std::string &to) = 0;
};

/// Directory operations of the installed host; without one nothing happens and the answer is false.
class HOSTMODEL_EXPORT Directory {
public:
  Directory() = delete;

  static bool rename(const std::string &from, const std::string &to);
};

} // namespace FileSystem
