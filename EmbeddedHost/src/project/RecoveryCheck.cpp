#include "EmbeddedHost/src/project/RecoveryCheck.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/project/ProjectReader.h"
#include "EmbeddedHost/src/project/Upgrade.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdlib.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace EmbeddedHost {

namespace {

namespace fs = std::filesystem;

/// A fresh folder with a copy of a project and its journal.
class ProjectCopy {
public:
  explicit ProjectCopy(const std::string &file) {
    std::error_code error;
    std::string pattern = (fs::temp_directory_path(error) / "project-recovery-XXXXXX").string();
    if (error || mkdtemp(pattern.data()) == nullptr) {
      return;
    }
    m_folder = pattern;
    m_isComplete = copyProject(file) && copyJournal(file);
  }
  ProjectCopy(const ProjectCopy &) = delete;
  ProjectCopy &operator=(const ProjectCopy &) = delete;
  ~ProjectCopy() {
    if (!m_folder.empty()) {
      unlink(path().c_str());
      unlink(journal().c_str());
      rmdir(m_folder.c_str());
    }
  }

  bool isComplete() const { return m_isComplete; }
  std::string path() const { return m_folder + "/copy"; }

private:
  std::string journal() const { return path() + "-journal"; }

  // Through the database library: a descriptor of our own would, when closed, drop the library's locks on the file.
  bool copyProject(const std::string &file) const {
    constexpr std::int64_t kBlock = 1 << 20;
    std::error_code error;
    const auto size = static_cast<std::int64_t>(fs::file_size(file, error));
    Database glance(file, Database::Access::Header);
    std::ofstream copy(path(), std::ios::binary);
    std::vector<unsigned char> block(static_cast<std::size_t>(kBlock));
    bool isCopied = !error;
    for (std::int64_t offset = 0; isCopied && offset < size; offset += kBlock) {
      const auto count = std::min(kBlock, size - offset);
      isCopied = glance.readBytes(block.data(), static_cast<int>(count), offset) &&
                 copy.write(reinterpret_cast<const char *>(block.data()), count).good();
    }
    copy.close();
    return isCopied && copy.good();
  }
  bool copyJournal(const std::string &file) const {
    std::error_code error;
    return fs::copy_file(file + "-journal", journal(), error);
  }

  std::string m_folder;
  bool m_isComplete = false;
};

} // namespace

void checkRecovery(const std::string &file) {
  std::error_code error;
  const std::uintmax_t journal = fs::file_size(file + "-journal", error);
  if (error || journal == 0) {
    return;
  }
  const std::uintmax_t largest = fs::file_size(file, error) + journal;
  const ProjectCopy copy(file);
  if (!copy.isComplete()) {
    return;
  }
  const std::string found = "the journal of an interrupted save beside it does not restore it: ";
  try {
    Database database(copy.path(), Database::Access::ReadWrite);
    Statement check = database.prepare("PRAGMA quick_check(1)");
    if (!check.step() || check.text(0) != "ok") {
      throw DatabaseError(SQLITE_CORRUPT, found + std::string(check.text(0)));
    }
    // What is undone had its pages in the file or in the journal, so a larger project is none that ever was.
    if (fs::file_size(copy.path(), error) > largest || error) {
      throw DatabaseError(SQLITE_CORRUPT, found + "it tells of pages that never were");
    }
    const std::int64_t format = database.number("PRAGMA user_version");
    Database present = format < kFormatVersion ? upgradedCopy(database, format) : std::move(database);
    Model model(readSchema(present));
    readModel(present, model);
  } catch (const DamagedProject &damage) {
    throw DatabaseError(SQLITE_CORRUPT, found + "it holds " + damage.what());
  } catch (const DatabaseError &failure) {
    // Of the copy's folder, which says nothing of the project.
    const int code = failure.code() & 0xFF;
    if (code != SQLITE_FULL && code != SQLITE_IOERR && code != SQLITE_CANTOPEN) {
      throw;
    }
  }
}

} // namespace EmbeddedHost
