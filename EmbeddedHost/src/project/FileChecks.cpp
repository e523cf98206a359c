#include "EmbeddedHost/src/project/FileChecks.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/src/project/ProjectFormat.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kHeaderSize = 100;
using Header = std::array<unsigned char, kHeaderSize>;

constexpr const char *kJournal = "-journal";
constexpr const char *kWriteAheadLog = "-wal";
constexpr const char *kSharedMemory = "-shm";

std::int64_t bigEndian(const Header &header, std::size_t offset) {
  std::int64_t number = 0;
  for (std::size_t byte = 0; byte < 4; ++byte) {
    number = number * 256 + header[offset + byte];
  }
  return number;
}

// What stands under a name, a link itself included.
enum class Found { Nothing, File, SomethingElse };

Found lookFor(const std::string &path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) == 0) {
    return S_ISREG(status.st_mode) ? Found::File : Found::SomethingElse;
  }
  // What cannot be looked at is better not taken for absent.
  return errno == ENOENT || errno == ENOTDIR ? Found::Nothing : Found::SomethingElse;
}

std::string beside(const std::string &file, const std::string &path, const char *what) {
  return "Beside the project " + file + " lies " + path + ", which " + what;
}

} // namespace

std::string checkFile(const std::string &file) {
  struct stat status = {};
  if (stat(file.c_str(), &status) != 0) {
    return "The project " + file + " cannot be opened: " + systemReason(errno) + ".";
  }
  return S_ISREG(status.st_mode) ? std::string() : file + " is no file.";
}

// The file is read through the database library without locks and journals: a descriptor of our own would, when
// closed, drop the library's locks on the file.
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

std::string checkBesideProject(const std::string &file) {
  // A log of another way of saving is never ours, yet its rows would be taken for those of the project.
  const std::string log = file + kWriteAheadLog;
  if (lookFor(log) != Found::Nothing) {
    return beside(file, log, "is not of this program and would change what the project holds; move it away.");
  }
  // Opening a pipe would wait for ever, a link would lead elsewhere.
  const std::string journal = file + kJournal;
  if (lookFor(journal) == Found::SomethingElse) {
    return beside(file, journal, "is no journal; move it away.");
  }
  return {};
}

std::string checkBesideNewProject(const std::string &file) {
  for (const char *ending : {kJournal, kWriteAheadLog, kSharedMemory}) {
    const std::string path = file + ending;
    if (lookFor(path) != Found::Nothing) {
      return beside(file, path, "belongs to a project that is gone; move it away.");
    }
  }
  return {};
}

} // namespace EmbeddedHost
