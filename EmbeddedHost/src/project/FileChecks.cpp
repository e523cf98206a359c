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

constexpr std::size_t kFormatOffset = 60;
constexpr std::size_t kApplicationOffset = 68;

// Whether the file begins as a project does.
bool readHeader(Database &glance, Header &header) {
  return glance.readBytes(header.data(), static_cast<int>(header.size()), 0) &&
         std::memcmp(header.data(), "SQLite format 3", 16) == 0 &&
         bigEndian(header, kApplicationOffset) == kApplicationId;
}

// Which version of the program a project takes, if it says so in a form that we understand.
std::string neededProgram(Database &glance) {
  constexpr std::size_t kLongest = 20;
  try {
    Statement row = glance.prepare("SELECT value FROM property WHERE key = 'needs'");
    const std::string version = row.step() ? std::string(row.text(0)) : std::string();
    const bool isReadable =
        version.size() <= kLongest && version.find_first_not_of("0123456789.") == std::string::npos;
    return isReadable ? version : std::string();
  } catch (const DatabaseError &) {
    return {};
  }
}

std::string tooNew(std::int64_t format, const std::string &needed) {
  const std::string theirs = std::to_string(format);
  const std::string ours = std::to_string(kFormatVersion);
  return needed.empty() ? " was written by a newer version of this program: its format is " + theirs +
                              ", known here is " + ours + "."
                        : " was made by a newer program: it needs optstudy " + needed + " or later (format " +
                              theirs + "; this program knows format " + ours + ").";
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
std::int64_t formatOf(const std::string &file) {
  Database glance(file, Database::Access::Header);
  Header header = {};
  return readHeader(glance, header) ? bigEndian(header, kFormatOffset) : 0;
}

std::string checkHeader(const std::string &file) {
  const std::string name = "The file " + file;
  Database glance(file, Database::Access::Header);
  Header header = {};
  if (!readHeader(glance, header)) {
    return name + " is no project.";
  }
  const std::int64_t format = bigEndian(header, kFormatOffset);
  if (format > kFormatVersion) {
    return name + tooNew(format, neededProgram(glance));
  }
  // Neither a format before the first nor another way of keeping a journal was ever written.
  if (format < 1 || header[18] != 1 || header[19] != 1) {
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
