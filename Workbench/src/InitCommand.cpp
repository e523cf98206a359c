#include "Workbench/InitCommand.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SystemReason.h"
#include "Workbench/ExitCode.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/Examples.h"
#include "Workbench/src/PlainText.h"

#include <filesystem>
#include <ostream>

namespace Workbench {

namespace {

namespace fs = std::filesystem;

// What has been made so far; it is removed again unless all of it is kept.
class NewFiles {
public:
  NewFiles() = default;
  NewFiles(const NewFiles &) = delete;
  NewFiles &operator=(const NewFiles &) = delete;
  ~NewFiles() {
    // One by one and the last one first: a folder that holds something else by now stays.
    while (!m_paths.empty()) {
      std::error_code ignored;
      fs::remove(m_paths.back(), ignored);
      m_paths.pop_back();
    }
  }

  // "" or what went wrong.
  std::string makeFolder(const fs::path &folder) {
    fs::path path;
    for (const fs::path &part : folder) {
      path /= part;
      std::error_code error;
      if (!part.empty() && fs::create_directory(path, error)) {
        m_paths.push_back(path);
      }
      if (error) {
        return path.string() + ": the folder cannot be made: " + EmbeddedHost::systemReason(error.value());
      }
    }
    return "";
  }

  std::string write(const fs::path &path, std::string_view text) {
    std::string problem;
    if (!EmbeddedHost::writeNewFile(path.string(), text, problem)) {
      return problem;
    }
    m_paths.push_back(path);
    std::error_code error;
    if (text.substr(0, 2) == "#!") {
      fs::permissions(path, fs::perms::owner_exec, fs::perm_options::add, error);
    }
    return error ? path.string() + ": " + EmbeddedHost::systemReason(error.value()) : "";
  }

  void keep() { m_paths.clear(); }

private:
  std::vector<fs::path> m_paths;
};

std::vector<ExampleFile> filesOf(const std::string &example) {
  std::vector<ExampleFile> files;
  for (const ExampleFile &file : exampleFiles()) {
    if (file.example == example) {
      files.push_back(file);
    }
  }
  return files;
}

bool isStudyFile(const ExampleFile &file) {
  constexpr std::string_view kEnding = ".study.yaml";
  return file.name.size() > kEnding.size() && file.name.substr(file.name.size() - kEnding.size()) == kEnding;
}

int refuseUnknown(const std::string &example, const Console &console) {
  const std::vector<std::string> names = exampleNames();
  std::string known;
  for (const std::string &name : names) {
    known.append(known.empty() ? "" : ", ").append(name);
  }
  console.error("There is no example \"" + example + "\"" + didYouMean(example, names));
  console.error("The examples are " + known + ".");
  return ExitCode::kUsage;
}

// Reports every file that is there already, as a link too. \return whether there is one
bool reportExisting(const fs::path &folder, const std::vector<ExampleFile> &files, const Console &console) {
  bool isAny = false;
  for (const ExampleFile &file : files) {
    std::error_code ignored;
    const fs::path path = folder / file.name;
    if (fs::exists(fs::symlink_status(path, ignored))) {
      console.error(path.string() +
                    " exists already; nothing was written. Give another folder, or move it away.");
      isAny = true;
    }
  }
  return isAny;
}

} // namespace

std::vector<std::string> exampleNames() {
  std::vector<std::string> names;
  for (const ExampleFile &file : exampleFiles()) {
    if (names.empty() || names.back() != file.example) {
      names.emplace_back(file.example);
    }
  }
  return names;
}

int initCommand(const std::string &folder, const std::string &example, const Console &console) {
  const std::vector<ExampleFile> files = filesOf(example.empty() ? kDefaultExample : example);
  if (files.empty()) {
    return refuseUnknown(example, console);
  }
  if (folder.empty()) {
    console.error("The folder has no name; \".\" is the one that you are in.");
    return ExitCode::kUsage;
  }
  if (reportExisting(folder, files, console)) {
    return ExitCode::kInvalid;
  }
  NewFiles made;
  std::string problem = made.makeFolder(folder);
  std::string studyFile;
  for (const ExampleFile &file : files) {
    const fs::path path = fs::path(folder) / file.name;
    studyFile = isStudyFile(file) ? path.string() : studyFile;
    problem = problem.empty() ? made.write(path, file.text) : problem;
  }
  if (!problem.empty()) {
    console.error(problem + "; nothing is left of what was made.");
    return ExitCode::kInternalError;
  }
  made.keep();
  for (const ExampleFile &file : files) {
    console.out << (fs::path(folder) / file.name).string() << "\n";
  }
  console.note("Next: optstudy check " + shellWord(studyFile));
  return ExitCode::kDone;
}

} // namespace Workbench
