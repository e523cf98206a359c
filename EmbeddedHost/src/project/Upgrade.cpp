#include "EmbeddedHost/src/project/Upgrade.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/project/DatabaseCopy.h"
#include "EmbeddedHost/src/project/FileChecks.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/Leftovers.h"
#include "EmbeddedHost/src/project/Migrations.h"
#include "EmbeddedHost/src/project/ProjectFile.h"
#include "EmbeddedHost/src/project/ProjectFormat.h"
#include "EmbeddedHost/src/project/ProjectReader.h"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

std::string inFront(const std::string &file, const std::string &reason) {
  return "The project " + file + " is of an older format and cannot be brought to the present one: " + reason;
}

// Who may do what with the copy is as with the project.
bool takePermissions(const std::string &from, const std::string &to, std::string &problem) {
  struct stat status = {};
  if (stat(from.c_str(), &status) != 0 || chmod(to.c_str(), status.st_mode & 0777U) != 0) {
    problem = inFront(from, pathProblem(to, "written", errno));
    return false;
  }
  // Only for the superuser is it somebody else's.
  [[maybe_unused]] const int result = chown(to.c_str(), status.st_uid, status.st_gid);
  return true;
}

/// Two copies of a project, which are gone afterwards unless they got their names.
class Upgrade {
public:
  explicit Upgrade(const std::string &file)
      : m_file(file), m_folder(Folder::at(std::filesystem::path(file).parent_path().string())),
        m_name(std::filesystem::path(file).filename().string()), m_fresh(newName()), m_former(newName()) {}
  Upgrade(const Upgrade &) = delete;
  Upgrade &operator=(const Upgrade &) = delete;
  ~Upgrade() {
    for (std::string name : {m_fresh, m_former}) {
      if (!name.empty()) {
        remove(name);
        remove(name.append(kJournalEnding));
      }
    }
  }

  bool prepare(std::string &problem);
  bool publish(std::string &problem);

private:
  std::string newName() const {
    std::string name = m_name;
    return name.append(kUpgrade).append(newFolderName());
  }
  void remove(const std::string &name) const {
    std::string ignored;
    if (m_folder.kindOf(name) == EntryKind::File) {
      m_folder.remove(name, ignored);
    }
  }
  bool convert(Database &fresh, std::string &problem) const;

  std::string m_file;
  Folder m_folder;
  std::string m_name;
  std::string m_fresh;
  std::string m_former;
  std::int64_t m_format = 0;
};

bool Upgrade::convert(Database &fresh, std::string &problem) const {
  Transaction transaction(fresh);
  migrate(fresh, m_format);
  transaction.commit();
  Statement check = fresh.prepare("PRAGMA quick_check(1)");
  if (!check.step() || check.text(0) != "ok") {
    problem = "The project " + m_file + " is damaged: " + std::string(check.text(0)) + ".";
    return false;
  }
  try {
    Model model(readSchema(fresh));
    readModel(fresh, model);
    return true;
  } catch (const DamagedProject &damage) {
    problem = "The project " + m_file + " is damaged: it holds " + damage.what() + ".";
    return false;
  }
}

bool Upgrade::prepare(std::string &problem) {
  Database project(m_file, Database::Access::ReadWrite);
  // The first reading plays the journal of an interrupted save back.
  m_format = project.number("PRAGMA user_version");
  if (m_format < 1 || m_format > kFormatVersion) {
    problem = "The project " + m_file + " is damaged: its header contradicts itself.";
    return false;
  }
  if (project.isReadOnly()) {
    problem = "The project " + m_file + " cannot be written; it can be opened for reading only.";
    return false;
  }
  {
    const Database former(m_folder.pathOf(m_former), Database::Access::Create);
    copyDatabase(project, former);
  }
  Database fresh(m_folder.pathOf(m_fresh), Database::Access::Create);
  copyDatabase(project, fresh);
  return convert(fresh, problem);
}

bool Upgrade::publish(std::string &problem) {
  const std::string folder = m_folder.path();
  if (!takePermissions(m_file, m_folder.pathOf(m_fresh), problem) ||
      !takePermissions(m_file, m_folder.pathOf(m_former), problem)) {
    return false;
  }
  // Names before they are given, too, so that a power cut leaves no name of something that is not on the disk.
  if (!syncFolder(folder)) {
    problem = inFront(m_file, pathProblem(folder, "written to the disk", errno));
    return false;
  }
  if (!m_folder.rename(m_fresh, m_folder, m_name, 0, problem)) {
    problem = inFront(m_file, problem);
    return false;
  }
  // If it gets no name now it does when the project is opened next.
  std::string ignored;
  const std::string former = m_former;
  m_former.clear();
  nameKeptProject(m_folder, former, m_name, m_format, ignored);
  if (!syncFolder(folder)) {
    problem = inFront(m_file, pathProblem(folder, "written to the disk", errno));
    return false;
  }
  return true;
}

} // namespace

bool upgradeProject(const std::string &file, std::string &problem) {
  if (formatOf(file) == kFormatVersion) {
    return true;
  }
  Upgrade upgrade(file);
  try {
    return upgrade.prepare(problem) && upgrade.publish(problem);
  } catch (const DatabaseError &error) {
    const int kind = error.code() & 0xFF;
    if (kind == SQLITE_NOTADB || kind == SQLITE_CORRUPT) {
      throw;
    }
    problem = inFront(file, std::string(error.what()) + ".");
    return false;
  }
}

Database upgradedCopy(const Database &project, std::int64_t format) {
  Database copy(kInMemory, Database::Access::Create);
  copyDatabase(project, copy);
  {
    Transaction transaction(copy);
    migrate(copy, format);
    transaction.commit();
  }
  return copy;
}

} // namespace EmbeddedHost
