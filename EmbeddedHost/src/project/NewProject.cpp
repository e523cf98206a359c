#include "EmbeddedHost/src/project/NewProject.h"

#include "EmbeddedHost/RunRecord.h"
#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/src/project/FileChecks.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/Leftovers.h"
#include "EmbeddedHost/src/project/ProjectFile.h"
#include "EmbeddedHost/src/project/VersionStores.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <initializer_list>
#include <stdio.h>
#include <utility>
#include <vector>

namespace EmbeddedHost {

namespace fs = std::filesystem;

namespace {

bool isProject(const std::string &file) {
  try {
    return formatOf(file) > 0;
  } catch (const DatabaseError &) {
    return false;
  }
}

std::string nameIn(const std::string &path) {
  return fs::path(path).filename().string();
}

bool sync(const Folder &folder, std::string &problem) {
  if (!syncFolder(folder.path())) {
    problem = "The folder " + folder.path() + " cannot be written to the disk: " + systemReason(errno) + ".";
    return false;
  }
  return true;
}

} // namespace

NewProject::NewProject(Folder folder, std::string name)
    : m_folder(std::move(folder)), m_name(std::move(name)), m_random(newFolderName()) {}

std::string NewProject::unfinishedName() const {
  std::string name = m_name;
  return name.append(kNew).append(m_random);
}

std::string NewProject::unfinishedResults() const {
  return unfinishedName().append(kResultsEnding);
}

std::string NewProject::resultsName() const {
  return nameIn(resultsFolder(path()));
}

std::unique_ptr<NewProject> NewProject::claim(const std::string &file, std::string &problem) {
  problem.clear();
  std::error_code error;
  const fs::path absolute = fs::absolute(file, error);
  fs::path folder;
  if (!error) {
    folder = fs::canonical(absolute.parent_path(), error);
  }
  if (error) {
    problem = "The folder of " + file + " cannot be used: " + systemReason(error.value()) + ".";
    return nullptr;
  }
  Folder opened = Folder::at(folder.string());
  if (!opened.isOpen()) {
    problem = opened.problem();
    return nullptr;
  }
  std::unique_ptr<NewProject> made(new NewProject(std::move(opened), absolute.filename().string()));
  if (!made->checkName(file, problem)) {
    return nullptr;
  }
  const std::string path = made->path();
  made->m_lock = FileLock::acquire(path, problem);
  if (made->m_lock == nullptr) {
    return nullptr;
  }
  removeLeftovers(path);
  problem = checkBesideNewProject(path);
  if (!problem.empty()) {
    return nullptr;
  }
  const std::string results = made->m_folder.pathOf(made->resultsName());
  made->m_resultsLock = FileLock::acquire(results, problem);
  if (made->m_resultsLock == nullptr) {
    problem = "The results folder " + results + " cannot be claimed. " + problem;
    return nullptr;
  }
  if (made->sharesResults()) {
    problem = "Two projects cannot share the results folder " + results + "; choose another name.";
    return nullptr;
  }
  if (made->m_folder.kindOf(made->resultsName()) != EntryKind::Absent) {
    problem = "There is a results folder " + results + " of another project already.";
    return nullptr;
  }
  return made;
}

bool NewProject::checkName(const std::string &file, std::string &problem) const {
  std::error_code error;
  if (m_name.empty() || m_name == "." || m_name == "..") {
    problem = "The project " + file + " cannot be made: it has no name.";
    return false;
  }
  // It would be taken for what a killed program has left.
  if (isUnfinishedName(m_name)) {
    problem = "The project " + file + " cannot be made: unfinished projects have such names.";
    return false;
  }
  const fs::file_type present = fs::symlink_status(path(), error).type();
  if (present == fs::file_type::not_found) {
    return true;
  }
  problem = present == fs::file_type::none
                ? "The project " + file + " cannot be made: " + systemReason(error.value()) + "."
                : "There is a file " + file + " already.";
  return false;
}

// Whether another project beside the name has the same results folder, or would have as soon as it needs one. Only a
// file without the common ending can be one.
bool NewProject::sharesResults() const {
  std::vector<std::string> names;
  std::string ignored;
  // A folder that cannot be listed cannot be written to the disk either, which is reported then.
  m_folder.listNames(names, ignored);
  return std::any_of(names.begin(), names.end(), [this](const std::string &name) {
    return name != m_name && nameIn(resultsFolder(m_folder.pathOf(name))) == resultsName() &&
           !isUnfinishedName(name) && m_folder.kindOf(name) == EntryKind::File &&
           isProject(m_folder.pathOf(name));
  });
}

bool NewProject::makeResults(std::string &problem) {
  if (m_results.isOpen()) {
    return true;
  }
  m_results = m_folder.makeNew(unfinishedResults());
  const Folder mark = m_results.isOpen() ? m_results.makeNew(kPublishing) : Folder();
  const Folder inner = mark.isOpen() ? mark.makeNew(m_random) : Folder();
  for (const Folder *made : std::initializer_list<const Folder *>{&m_results, &mark, &inner}) {
    if (!made->isOpen()) {
      problem = made->problem();
      return false;
    }
  }
  return true;
}

bool NewProject::copyResults(const Folder &results, const std::string &folder, std::string &problem) {
  if (!dropResults(folder, problem)) {
    return false;
  }
  const Folder source = results.open(folder);
  if (!source.isOpen()) {
    problem = source.isAbsent() ? std::string() : source.problem();
    return problem.empty();
  }
  return makeResults(problem) && copyTree(source, m_results, folder, problem, nullptr, kUnfinishedRunFolder);
}

bool NewProject::dropResults(const std::string &folder, std::string &problem) {
  return !m_results.isOpen() || m_results.remove(folder, problem);
}

bool NewProject::publishResults(std::string &problem) {
  if (!m_results.isOpen()) {
    return true;
  }
  m_areResultsPlaced =
      m_folder.rename(unfinishedResults(), m_folder, resultsName(), RENAME_NOREPLACE, problem);
  return m_areResultsPlaced && sync(m_folder, problem);
}

bool NewProject::publish(std::string &problem) {
  const bool isWritten =
      (!m_results.isOpen() || syncTree(m_results, problem)) &&
      // Before anything has its name, too: a folder that cannot be written is better noticed now.
      sync(m_folder, problem);
  if (!isWritten || !publishResults(problem)) {
    return false;
  }
  m_isNamed = m_folder.rename(unfinishedName(), m_folder, m_name, RENAME_NOREPLACE, problem);
  return m_isNamed && sync(m_folder, problem);
}

std::unique_ptr<FileLock> NewProject::keep() {
  m_isKept = true;
  std::string ignored;
  if (m_results.isOpen()) {
    m_results.remove(kPublishing, ignored);
  }
  return std::move(m_lock);
}

NewProject::~NewProject() {
  if (m_isKept || m_lock == nullptr) {
    return;
  }
  std::string ignored;
  // Back under the unfinished names, in one step each. The file goes last: where the results cannot be taken back it
  // tells whoever uses the name next that they are nobody's.
  if (m_isNamed && !m_folder.rename(m_name, m_folder, unfinishedName(), RENAME_NOREPLACE, ignored)) {
    return;
  }
  if (m_areResultsPlaced && m_folder.holds(resultsName(), m_results) &&
      !m_folder.rename(resultsName(), m_folder, unfinishedResults(), RENAME_NOREPLACE, ignored)) {
    return;
  }
  if (m_results.isOpen() && m_folder.holds(unfinishedResults(), m_results)) {
    m_results = Folder();
    m_folder.remove(unfinishedResults(), ignored);
  }
  for (const std::string &name : {unfinishedName(), unfinishedName().append(kJournalEnding)}) {
    if (m_folder.kindOf(name) == EntryKind::File) {
      m_folder.remove(name, ignored);
    }
  }
}

} // namespace EmbeddedHost
