#include "EmbeddedHost/src/project/ProjectFile.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/ProjectReader.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kHeaderSize = 100;
using Header = std::array<unsigned char, kHeaderSize>;

std::int64_t bigEndian(const Header &header, std::size_t offset) {
  std::int64_t number = 0;
  for (std::size_t byte = 0; byte < 4; ++byte) {
    number = number * 256 + header[offset + byte];
  }
  return number;
}

// Says what is wrong with a file, "" for nothing. The file is read through the database library without locks and
// journals: a descriptor of our own would, when closed, drop the library's locks on the file.
std::string checkHeader(const std::string &file) {
  const std::string name = "The file " + file;
  Database glance(file, Database::Access::Header);
  Header header = {};
  if (!glance.readStart(header.data(), static_cast<int>(header.size())) ||
      std::memcmp(header.data(), "SQLite format 3", 16) != 0 || bigEndian(header, 68) != kApplicationId) {
    return name + " is no project.";
  }
  if (bigEndian(header, 60) > kFormatVersion) {
    return name + " was written by a newer version of this program: its format is " +
           std::to_string(bigEndian(header, 60)) + ", known here is " + std::to_string(kFormatVersion) + ".";
  }
  // Neither an older format nor another way of keeping a journal was ever written.
  if (bigEndian(header, 60) != kFormatVersion || header[18] != 1 || header[19] != 1) {
    return name + " is damaged: its header contradicts itself.";
  }
  return {};
}

std::string checkFile(const std::string &file) {
  struct stat status = {};
  if (stat(file.c_str(), &status) != 0) {
    return "The project " + file + " cannot be opened: " + systemReason(errno) + ".";
  }
  return S_ISREG(status.st_mode) ? std::string() : file + " is no file.";
}

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
  return errno == EINVAL && link(from.c_str(), to.c_str()) == 0 && unlink(from.c_str()) == 0;
}

} // namespace

bool syncFolder(const std::string &folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) {
    return false;
  }
  const bool isDone = fsync(descriptor) == 0;
  close(descriptor);
  return isDone;
}

ProjectFile::ProjectFile(std::string path, Database::Access access, std::unique_ptr<FileLock> lock)
    : m_path(std::move(path)), m_lock(std::move(lock)), m_database(m_path, access), m_texts(m_database) {
  // FULL, and the folder too once the journal is gone: a journal that comes back after a power cut would undo what
  // was reported as saved.
  m_database.execute("PRAGMA synchronous = EXTRA");
  m_database.execute("PRAGMA cell_size_check = ON");
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
    if (!problem.empty()) {
      return nullptr;
    }
    const bool writes = mode == OpenMode::ReadWrite;
    std::unique_ptr<ProjectFile> opened(new ProjectFile(
        path, writes ? Database::Access::ReadWrite : Database::Access::ReadOnly, std::move(lock)));
    if (writes && opened->m_database.isReadOnly()) {
      problem = "The project " + file + " cannot be written; it can be opened for reading only.";
      return nullptr;
    }
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
  const fs::path folder = fs::canonical(fs::absolute(file).parent_path(), error);
  const std::string path = (folder / fs::path(file).filename()).string();
  if (error || fs::path(file).filename().empty()) {
    problem = "The project " + file +
              " cannot be made: " + (error ? systemReason(error.value()) : "it has no name") + ".";
    return nullptr;
  }
  std::unique_ptr<FileLock> lock = FileLock::acquire(path, problem);
  if (lock == nullptr) {
    return nullptr;
  }
  const std::string unfinished = path + ".new-" + newFolderName();
  try {
    {
      Database database(unfinished, Database::Access::Create);
      database.execute("PRAGMA synchronous = FULL");
      TextTable texts(database);
      Transaction transaction(database);
      createTables(database);
      fill(database, texts);
      transaction.commit();
    }
    if (!renameWithoutReplacing(unfinished, path)) {
      problem = "The project " + file + " cannot be made: " + systemReason(errno) + ".";
      fs::remove(unfinished, error);
    }
    if (!problem.empty()) {
      return nullptr;
    }
    if (!syncFolder(folder.string())) {
      problem =
          "The folder " + folder.string() + " cannot be written to the disk: " + systemReason(errno) + ".";
      return nullptr;
    }
    return std::unique_ptr<ProjectFile>(new ProjectFile(path, Database::Access::ReadWrite, std::move(lock)));
  } catch (const DatabaseError &failure) {
    problem = describe(file, failure);
    fs::remove(unfinished, error);
    fs::remove(unfinished + "-journal", error);
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
