#include "EmbeddedHost/src/project/ProjectFile.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/project/FileChecks.h"
#include "EmbeddedHost/src/project/FolderName.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

std::string describe(const std::string &file, const DatabaseError &error) {
  switch (error.code() & 0xFF) {
  case SQLITE_NOTADB:
  case SQLITE_CORRUPT:
    return "The project " + file + " is damaged: " + error.what() + ".";
  case SQLITE_BUSY:
    return "The project " + file + " is being written by another process at this moment.";
  case SQLITE_READONLY:
  case SQLITE_CANTOPEN:
    return "The project " + file + " cannot be opened: " + error.what() +
           " (if a program was interrupted while saving, open the project once where it can be written).";
  default:
    return "The project " + file + ": " + error.what() + ".";
  }
}

// Some file systems know only one of the two ways.
bool renameWithoutReplacing(const std::string &from, const std::string &to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  if (errno != EINVAL || link(from.c_str(), to.c_str()) != 0) {
    return false;
  }
  if (unlink(from.c_str()) == 0) {
    return true;
  }
  const int error = errno;
  unlink(to.c_str());
  errno = error;
  return false;
}

void writeNewFile(const std::string &path, const std::function<void(Database &, TextTable &)> &fill) {
  Database database(path, Database::Access::Create);
  database.execute("PRAGMA synchronous = FULL");
  TextTable texts(database);
  Transaction transaction(database);
  createTables(database);
  fill(database, texts);
  transaction.commit();
}

std::string unsyncedFolder(const std::string &folder) {
  return "The folder " + folder + " cannot be written to the disk: " + systemReason(errno) + ".";
}

// Plays the journal of an interrupted save back, which somebody who only reads cannot do.
void recover(const std::string &path) {
  std::string problem;
  const std::unique_ptr<FileLock> lock = FileLock::acquire(path, problem);
  if (lock != nullptr) {
    Database(path, Database::Access::ReadWrite).number("SELECT count(*) FROM sqlite_schema");
  }
}

} // namespace

bool syncFolder(const std::string &folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) {
    return false;
  }
  const bool isDone = fsync(descriptor) == 0;
  const int error = errno;
  close(descriptor);
  errno = error;
  return isDone;
}

ProjectFile::ProjectFile(std::string path, Database::Access access, std::unique_ptr<FileLock> lock)
    : m_path(std::move(path)), m_lock(std::move(lock)), m_database(m_path, access), m_texts(m_database) {
  // FULL, and the folder too once the journal is gone: a journal that comes back after a power cut would undo what
  // was reported as saved.
  m_database.execute("PRAGMA synchronous = EXTRA");
  m_database.execute("PRAGMA cell_size_check = ON");
}

std::unique_ptr<ProjectFile> ProjectFile::connect(const std::string &path, OpenMode mode,
                                                  std::unique_ptr<FileLock> lock) {
  const bool writes = mode == OpenMode::ReadWrite;
  const Database::Access access = writes ? Database::Access::ReadWrite : Database::Access::ReadOnly;
  try {
    return std::unique_ptr<ProjectFile>(new ProjectFile(path, access, std::move(lock)));
  } catch (const DatabaseError &error) {
    if (writes || error.code() != SQLITE_READONLY_ROLLBACK) {
      throw;
    }
  }
  recover(path);
  return std::unique_ptr<ProjectFile>(new ProjectFile(path, access, nullptr));
}

std::unique_ptr<ProjectFile> ProjectFile::open(const std::string &file, OpenMode mode, std::string &problem) {
  problem = checkFile(file);
  if (!problem.empty()) {
    return nullptr;
  }
  try {
    // One name, so that every link to the file stands for the same lock.
    std::error_code error;
    const std::string path = std::filesystem::canonical(file, error).string();
    problem = error ? "The project " + file + " cannot be opened: " + systemReason(error.value()) + "."
                    : checkHeader(path);
    std::unique_ptr<FileLock> lock;
    if (problem.empty() && mode == OpenMode::ReadWrite) {
      lock = FileLock::acquire(path, problem);
    }
    if (problem.empty()) {
      problem = checkBesideProject(path);
    }
    if (!problem.empty()) {
      return nullptr;
    }
    std::unique_ptr<ProjectFile> opened = connect(path, mode, std::move(lock));
    if (mode == OpenMode::ReadWrite && opened->m_database.isReadOnly()) {
      problem = "The project " + file + " cannot be written; it can be opened for reading only.";
      return nullptr;
    }
    // What is checked has to be what is read then, whatever another process saves meanwhile.
    opened->m_reading = std::make_unique<ReadTransaction>(opened->m_database);
    Statement check = opened->m_database.prepare("PRAGMA quick_check(1)");
    if (!check.step() || check.text(0) != "ok") {
      problem = "The project " + file + " is damaged: " + std::string(check.text(0)) + ".";
      return nullptr;
    }
    return opened;
  } catch (const DatabaseError &error) {
    problem = describe(file, error);
    return nullptr;
  }
}

std::unique_ptr<ProjectFile> ProjectFile::create(const std::string &file,
                                                 const std::function<void(Database &, TextTable &)> &fill,
                                                 std::string &problem) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::path folder = fs::absolute(file, error).parent_path();
  if (!error) {
    folder = fs::canonical(folder, error);
  }
  const std::string path = (folder / fs::path(file).filename()).string();
  if (error || fs::path(file).filename().empty()) {
    problem = "The project " + file +
              " cannot be made: " + (error ? systemReason(error.value()) : "it has no name") + ".";
    return nullptr;
  }
  std::unique_ptr<FileLock> lock = FileLock::acquire(path, problem);
  if (lock != nullptr) {
    problem = checkBesideNewProject(path);
  }
  if (!problem.empty()) {
    return nullptr;
  }
  const std::string unfinished = path + ".new-" + newFolderName();
  bool isNamed = false;
  try {
    writeNewFile(unfinished, fill);
    // Before the file has its name, too: a folder that cannot be written to the disk is better noticed now.
    if (!syncFolder(folder.string())) {
      problem = unsyncedFolder(folder.string());
    } else if (!renameWithoutReplacing(unfinished, path)) {
      problem = "The project " + file + " cannot be made: " + systemReason(errno) + ".";
    } else {
      isNamed = true;
      if (syncFolder(folder.string())) {
        return std::unique_ptr<ProjectFile>(
            new ProjectFile(path, Database::Access::ReadWrite, std::move(lock)));
      }
      problem = unsyncedFolder(folder.string());
    }
  } catch (const DatabaseError &failure) {
    problem = describe(file, failure);
  }
  // What could not be made is not to be found later, without what belongs beside it.
  fs::remove(isNamed ? path : unfinished, error);
  fs::remove(unfinished + "-journal", error);
  return nullptr;
}

bool ProjectFile::change(const std::function<void(Database &, TextTable &)> &change, std::string &problem) {
  try {
    Transaction transaction(m_database);
    change(m_database, m_texts);
    transaction.commit();
    return true;
  } catch (const DatabaseError &error) {
    m_texts.forget();
    problem = "The project " + m_path + " could not be saved: " + error.what() + ".";
    return false;
  } catch (...) {
    m_texts.forget();
    throw;
  }
}

} // namespace EmbeddedHost
