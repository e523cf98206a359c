#pragma once

#include "EmbeddedHost/src/project/FileLock.h"
#include "EmbeddedHost/src/project/FolderTree.h"

#include <memory>
#include <string>

namespace EmbeddedHost {

/// A project on its way to a name that nobody has. Its file and its results folder are made beside that name and get
/// it when both are complete and on the disk: the results first, as a project without its results would be a loss. What
/// was made is removed again, and nothing else, unless keep() is reached.
class NewProject {
public:
  /// Holds the name's lock and clears up what killed programs have left under it.
  /// \return null with one sentence in \p problem, for example when the name is taken
  static std::unique_ptr<NewProject> claim(const std::string &file, std::string &problem);
  NewProject(const NewProject &) = delete;
  NewProject &operator=(const NewProject &) = delete;
  ~NewProject();

  /// The path that the project's file will have.
  std::string path() const { return m_folder.pathOf(m_name); }
  /// The path to write its database to.
  std::string unfinishedPath() const { return m_folder.pathOf(unfinishedName()); }

  /// Copies a version's folder, which it may have been copied from before. What an unfinished run has left in it is
  /// left out. Harmless when there is no such folder.
  /// \param results  the results folder of the project that is copied
  bool copyResults(const Folder &results, const std::string &folder, std::string &problem);
  /// Takes a copied version's folder back.
  bool dropResults(const std::string &folder, std::string &problem);

  /// Writes all to the disk and gives it its names.
  bool publish(std::string &problem);
  /// It stays. \return the lock on it
  std::unique_ptr<FileLock> keep();

private:
  NewProject(Folder folder, std::string name);
  std::string unfinishedName() const;
  std::string unfinishedResults() const;
  std::string resultsName() const;
  bool checkName(const std::string &file, std::string &problem) const;
  bool sharesResults() const;
  bool makeResults(std::string &problem);
  bool publishResults(std::string &problem);

  Folder m_folder;
  std::string m_name;
  std::string m_random;
  std::unique_ptr<FileLock> m_lock;
  std::unique_ptr<FileLock> m_resultsLock; // nobody else makes a project that would share the results
  Folder m_results;
  bool m_areResultsPlaced = false;
  bool m_isNamed = false;
  bool m_isKept = false;
};

} // namespace EmbeddedHost
