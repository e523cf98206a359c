#pragma once

#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/src/project/FileLock.h"
#include "EmbeddedHost/src/project/NewProject.h"
#include "EmbeddedHost/src/project/ProjectFormat.h"

#include <functional>
#include <memory>
#include <string>

namespace EmbeddedHost {

/// The open file of a project: a connection to its database and, for writing, the lock on it.
class ProjectFile {
public:
  /// Opens a file after making sure that it is a sound project of a known format. Until endReading() everything is
  /// read as it was at that moment, and nothing can be changed.
  /// \return null with one sentence in \p problem
  static std::unique_ptr<ProjectFile> open(const std::string &file, OpenMode mode, std::string &problem);
  /// Makes the file of a project, with the results folders that were copied for it, and opens it. All of it appears
  /// whole or not at all, and is not there when null is answered.
  /// \param fill  writes the content in the transaction that makes the tables
  static std::unique_ptr<ProjectFile> create(std::unique_ptr<NewProject> made,
                                             const std::function<void(Database &, TextTable &)> &fill,
                                             std::string &problem);

  const std::string &path() const { return m_path; }
  Database &database() { return m_database; }
  TextTable &texts() { return m_texts; }

  /// The content has been read.
  void endReading() { m_reading.reset(); }
  /// Carries out a change in one transaction. \return false with one sentence in \p problem; nothing has changed
  bool change(const std::function<void(Database &, TextTable &)> &change, std::string &problem);

private:
  ProjectFile(std::string path, Database database, std::unique_ptr<FileLock> lock);
  static std::unique_ptr<ProjectFile> openForWriting(const std::string &path, std::string &problem);
  static std::unique_ptr<ProjectFile> openForReading(const std::string &path, std::string &problem);
  static std::unique_ptr<ProjectFile> connect(const std::string &path, OpenMode mode,
                                              std::unique_ptr<FileLock> lock);
  /// What is checked has to be what is read then, whatever another process saves meanwhile.
  bool beginReading(std::string &problem);

  std::string m_path;
  std::unique_ptr<FileLock> m_lock;
  Database m_database;
  TextTable m_texts;
  std::unique_ptr<ReadTransaction> m_reading;
};

/// One sentence on what went wrong with a project.
std::string describe(const std::string &file, const DatabaseError &error);

/// Writes what a folder's entry is to the disk. \return whether that was done
bool syncFolder(const std::string &folder);

} // namespace EmbeddedHost
