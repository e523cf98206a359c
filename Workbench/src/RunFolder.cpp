#include "Workbench/src/RunFolder.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SystemReason.h"
#include "Workbench/src/RunResults.h"

#include <algorithm>
#include <filesystem>

namespace Workbench {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLogTail = 2000;
constexpr std::size_t kLargestLog = std::size_t{64} * 1024 * 1024;

// The end of a text, from the beginning of a line where possible and never from the middle of a character.
std::string tailOf(const std::string &text) {
  if (text.size() <= kLogTail) {
    return text;
  }
  std::size_t begin = text.size() - kLogTail;
  const std::size_t line = text.find('\n', begin);
  begin = line == std::string::npos || line + 1 == text.size() ? begin : line + 1;
  while (begin < text.size() && (static_cast<unsigned char>(text[begin]) & 0xC0U) == 0x80U) {
    ++begin;
  }
  return text.substr(begin);
}

// Removes everything below the folder but the files of these names. A link is removed, never what it points to.
void removeAllBut(const fs::path &folder, const std::vector<std::string> &names, std::error_code &error) {
  std::vector<fs::path> others;
  std::vector<fs::path> folders;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const bool isFolder = fs::is_directory(entry->symlink_status());
    const std::string name = entry->path().lexically_relative(folder).generic_string();
    if (isFolder) {
      folders.push_back(entry->path());
    } else if (std::find(names.begin(), names.end(), name) == names.end()) {
      others.push_back(entry->path());
    }
  }
  for (const fs::path &file : others) {
    if (!error) {
      fs::remove(file, error);
    }
  }
  // The innermost first; one that holds a file to be kept stays.
  std::for_each(folders.rbegin(), folders.rend(), [](const fs::path &path) {
    std::error_code notEmpty;
    fs::remove(path, notEmpty);
  });
}

} // namespace

std::string makeRunFolder(const std::string &folder, const std::vector<RunFile> &files) {
  std::error_code error;
  fs::remove_all(folder, error); // removes a link itself, never what it points to
  if (error || !fs::create_directory(folder, error) || error) {
    return folder + ": " + EmbeddedHost::systemReason(error.value());
  }
  for (const RunFile &file : files) {
    std::string problem;
    const std::string target = folder + "/" + file.name;
    const bool written = file.copyOf.empty() ? EmbeddedHost::writeNewFile(target, file.content, problem)
                                             : EmbeddedHost::copyToNewFile(file.copyOf, target, problem);
    if (!written) {
      return problem;
    }
  }
  return "";
}

std::string keepRunFolder(const std::string &folder, const StudySolver &solver, bool isOk) {
  const fs::path finished = fs::path(folder).parent_path() / kFinishedRunFolder;
  const bool isNothingKept = solver.keep == KeptFiles::Failed && isOk;
  std::error_code error;
  if (solver.keep == KeptFiles::Outputs) {
    removeAllBut(folder, resultFiles(solver), error);
  } else if (isNothingKept) {
    fs::remove_all(folder, error);
  }
  if (!error) {
    fs::remove_all(finished, error);
  }
  if (!error && !isNothingKept) {
    fs::rename(folder, finished, error);
  }
  return error ? finished.string() + ": " + EmbeddedHost::systemReason(error.value()) : "";
}

std::string logTails(const std::string &folder, const StudySolver &solver) {
  std::string tail;
  for (const StudyStage &stage : solver.stages) {
    for (const std::string &log : {stage.outputLog(), stage.errorLog()}) {
      std::string problem;
      std::string file = folder;
      file.append("/").append(log);
      const std::optional<std::string> text = EmbeddedHost::readWholeFile(file, kLargestLog, problem);
      if (text && !text->empty()) {
        tail.append(log).append(":\n").append(tailOf(*text));
      }
    }
  }
  return tail;
}

} // namespace Workbench
