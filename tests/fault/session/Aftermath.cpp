#include "tests/fault/session/Aftermath.h"

#include "EmbeddedHost/src/project/ProjectParts.h"
#include "tests/fault/session/BoxSession.h"
#include "tests/fault/session/CanonicalState.h"
#include "tests/fault/session/Projects.h"

#include <array>
#include <filesystem>
#include <iostream>
#include <set>

namespace FaultTests {

namespace {

namespace fs = std::filesystem;
using EmbeddedHost::OpenMode;
using EmbeddedHost::Project;

bool isThere(const std::string &file) {
  std::error_code error;
  return fs::symlink_status(file, error).type() != fs::file_type::not_found;
}

std::array<std::string, 3> projectsOf(const std::string &folder) {
  return {boxProject(folder), keptProject(folder), oldProject(folder)};
}

void addKnown(std::set<std::string> &known, const std::string &file) {
  const std::unique_ptr<Project> project = openProject(file, OpenMode::ReadOnly);
  known.insert(file);
  for (const auto &[number, version] : project->parts().model.tree().versions()) {
    const std::string folder = project->versionFolder(*version, false);
    known.insert(folder);
    known.insert(fs::path(folder).parent_path().string());
  }
}

void printUnknown(const std::string &folder, const std::set<std::string> &known) {
  for (fs::recursive_directory_iterator entry(folder), end; entry != end; ++entry) {
    const std::string path = entry->path().string();
    if (known.count(path) == 0) {
      std::cout << "litter " << path << "\n";
    }
    // What a version keeps is its own business.
    if (known.count(path) == 0 || entry->path().parent_path().extension() == ".results") {
      entry.disable_recursion_pending();
    }
  }
}

} // namespace

void printStates(const std::string &folder, OpenMode mode) {
  for (const std::string &file : projectsOf(folder)) {
    const std::string name = fs::path(file).filename().string();
    std::cout << (isThere(file) ? projectText(*openProject(file, mode), name) : "@ " + name + " absent\n");
  }
}

void goOnAfterwards(const std::string &folder) {
  {
    BoxSession box(folder, 0);
    std::string problem;
    if (!isThere(keptProject(folder)) && !box.project().backup(keptProject(folder), problem)) {
      throw StepFailed(problem);
    }
  }
  openProject(oldProject(folder), OpenMode::ReadWrite);
  std::set<std::string> known{folder + "/in.txt.template", folder + "/solve.sh", folder + "/hook.sh",
                              oldProject(folder) + ".format-1"};
  for (const std::string &file : projectsOf(folder)) {
    addKnown(known, file);
  }
  printUnknown(folder, known);
}

} // namespace FaultTests
