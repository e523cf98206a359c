#include "EmbeddedHost/src/project/ProjectFile.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/project/FileChecks.h"
#include "EmbeddedHost/src/project/Leftovers.h"
#include "EmbeddedHost/src/project/RecoveryCheck.h"
#include "EmbeddedHost/src/project/Upgrade.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

void writeNewFile(const std::string &path, const std::function<void(Database &, TextTable &)> &fill) {
  Database database(path, Database::Access::Create);
  database.execute("PRAGMA synchronous = FULL");
  TextTable texts(database);
  Transaction transaction(database);
  createTables(database);
  fill(database, texts);
  transaction.commit();
}

// Plays the journal of an interrupted save back, which somebody who only reads cannot do.
void recover(const std::string &path) {
  std::string problem;
  const std::unique_ptr<FileLock> lock = FileLock::acquire(path, problem);
  if (lock != nullptr) {
    checkRecovery(path);
    Database(path, Database::Access::ReadWrite).number("SELECT count(*) FROM sqlite_schema");
  }
}

} // namespace

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

ProjectFile::ProjectFile(std::string path, Database database, std::unique_ptr<FileLock> lock)
    : m_path(std::move(path)), m_lock(std::move(lock)), m_database(std::move(database)), m_texts(m_database) {
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
    return std::unique_ptr<ProjectFile>(new ProjectFile(path, Database(path, access), std::move(lock)));
  } catch (const DatabaseError &error) {
    if (writes || error.code() != SQLITE_READONLY_ROLLBACK) {
      throw;
    }
  }
  recover(path);
  return std::unique_ptr<ProjectFile>(new ProjectFile(path, Database(path, access), nullptr));
}

bool ProjectFile::beginReading(std::string &problem) {
  m_reading = std::make_unique<ReadTransaction>(m_database);
  Statement check = m_database.prepare("PRAGMA quick_check(1)");
  if (!check.step() || check.text(0) != "ok") {
    problem = "The project " + m_path + " is damaged: " + std::string(check.text(0)) + ".";
    return false;
  }
  return true;
}

std::unique_ptr<ProjectFile> ProjectFile::openForWriting(const std::string &path, std::string &problem) {
  std::unique_ptr<FileLock> lock = FileLock::acquire(path, problem);
  if (lock == nullptr) {
    return nullptr;
  }
  problem = checkBesideProject(path);
  if (!problem.empty()) {
    return nullptr;
  }
  checkRecovery(path);
  removeLeftovers(path);
  if (!upgradeProject(path, problem)) {
    return nullptr;
  }
  std::unique_ptr<ProjectFile> opened = connect(path, OpenMode::ReadWrite, std::move(lock));
  if (opened->m_database.isReadOnly()) {
    problem = "The project " + path + " cannot be written; it can be opened for reading only.";
    return nullptr;
  }
  return opened->beginReading(problem) ? std::move(opened) : nullptr;
}

std::unique_ptr<ProjectFile> ProjectFile::openForReading(const std::string &path, std::string &problem) {
  problem = checkBesideProject(path);
  if (!problem.empty()) {
    return nullptr;
  }
  std::unique_ptr<ProjectFile> opened = connect(path, OpenMode::ReadOnly, nullptr);
  const std::int64_t format = opened->m_database.number("PRAGMA user_version");
  if (format < kFormatVersion) {
    opened.reset(new ProjectFile(path, upgradedCopy(opened->m_database, format), nullptr));
  }
  return opened->beginReading(problem) ? std::move(opened) : nullptr;
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
    if (!problem.empty()) {
      return nullptr;
    }
    return mode == OpenMode::ReadWrite ? openForWriting(path, problem) : openForReading(path, problem);
  } catch (const DatabaseError &error) {
    problem = describe(file, error);
    return nullptr;
  }
}

std::unique_ptr<ProjectFile> ProjectFile::create(std::unique_ptr<NewProject> made,
                                                 const std::function<void(Database &, TextTable &)> &fill,
                                                 std::string &problem) {
  const std::string path = made->path();
  try {
    writeNewFile(made->unfinishedPath(), fill);
    if (!made->publish(problem)) {
      return nullptr;
    }
    auto created = std::unique_ptr<ProjectFile>(
        new ProjectFile(path, Database(path, Database::Access::ReadWrite), nullptr));
    created->m_lock = made->keep();
    return created;
  } catch (const DatabaseError &failure) {
    problem = describe(path, failure);
    return nullptr;
  }
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
