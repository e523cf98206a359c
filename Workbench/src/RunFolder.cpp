#include "Workbench/src/RunFolder.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SystemReason.h"
#include "Workbench/src/RunResults.h"

#include <algorithm>
#include <cstdint>
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

// The files of a run's folder that the solver itself has not written.
std::vector<std::string> notWritten(const StudySolver &solver, const std::vector<RunFile> &given) {
  std::vector<std::string> names;
  for (const StudyStage &stage : solver.stages) {
    names.push_back(stage.outputLog());
    names.push_back(stage.errorLog());
  }
  for (const RunFile &file : given) {
    names.push_back(file.name);
  }
  return names;
}

// "1500000 bytes"
std::string sizeText(std::uintmax_t bytes) {
  return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
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

std::string excessOf(const std::string &folder, const StudySolver &solver,
                     const std::vector<RunFile> &given) {
  if (solver.fileLimit == 0 && solver.folderLimit == 0) {
    return "";
  }
  const std::vector<std::string> known = notWritten(solver, given);
  std::uintmax_t all = 0;
  std::error_code error;
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!fs::is_regular_file(entry->symlink_status())) {
      continue;
    }
    const std::uintmax_t size = entry->file_size(error);
    const std::string name = entry->path().lexically_relative(folder).generic_string();
    const bool isWritten = std::find(known.begin(), known.end(), name) == known.end();
    // Who writes on at the limit is sent a signal, or told if it does not heed that: nothing gets beyond it.
    if (!error && solver.fileLimit > 0 && size >= solver.fileLimit && isWritten) {
      return "output too large: " + name + " has reached the file-limit of " + sizeText(solver.fileLimit);
    }
    all += error ? 0 : size;
  }
  if (error) {
    return "output: the size of " + folder + " cannot be found: " + EmbeddedHost::systemReason(error.value());
  }
  return solver.folderLimit == 0 || all <= solver.folderLimit
             ? ""
             : "output too large: the run's files hold " + sizeText(all) +
                   ", more than the folder-limit of " + sizeText(solver.folderLimit);
}

std::string removeWritten(const std::string &folder, const StudySolver &solver,
                          const std::vector<RunFile> &given) {
  std::error_code error;
  removeAllBut(folder, notWritten(solver, given), error);
  return error ? folder + ": " + EmbeddedHost::systemReason(error.value()) : "";
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
