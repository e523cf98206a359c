#include "EmbeddedHost/tests/ReadOnlyMedia.h"

#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/tests/ModelFixture.h"

#include <filesystem>
#include <signal.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {

namespace fs = std::filesystem;
using EntityModel::ModelVersion;

std::string makeProjectToRead(const std::string &folder) {
  const auto project = Project::create(testSchema());
  EntityModel::Entity *part = project->createEntity("Part", project->rootEntity(), "Parts", "A");
  project->setValue(part, "Count", "4");
  project->setValue(part, "Note", std::string(20000, 'x'));
  EntityModel::ChangeManager &tree = project->changeManager();
  ModelVersion *row = tree.startNewVersion("Row", "", "", "", nullptr, project->rootVersion(), false);
  tree.setCurrentVersion(row, nullptr, false, nullptr, true);
  project->setValue(part, "Count", "5");
  std::string problem;
  std::string file = folder + "/fan.optstudy";
  RunRecord run;
  run.status = RunStatus::Failed;
  run.reason = "no convergence";
  const bool isMade =
      project->saveAs(file, problem) &&
      project->recordRun(*row, run, {{part, EntityModel::AttributePath("Mass"), 2.5}}, problem);
  if (!isMade) {
    throw std::runtime_error(problem);
  }
  return file;
}

void interruptAChangeOf(const std::string &file) {
  const pid_t child = fork();
  if (child == 0) {
    Database database(file, Database::Access::ReadWrite);
    database.execute("PRAGMA cache_size = 1");
    database.execute("BEGIN IMMEDIATE");
    database.execute("UPDATE value SET value = 'half done'");
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (!fs::exists(file + "-journal")) {
    throw std::runtime_error("no journal");
  }
}

namespace {

std::string anonymous(std::string text, const std::string &file) {
  for (std::size_t place = 0; (place = text.find(file)) != std::string::npos;) {
    text.replace(place, file.size(), "<file>");
  }
  return text;
}

} // namespace

std::string reportOfReading(const std::string &file) {
  std::string problem;
  std::string report =
      Project::open(file, OpenMode::ReadWrite, problem) == nullptr ? "" : "opened for writing; ";
  report += problem + "\n";
  const auto project = Project::open(file, OpenMode::ReadOnly, problem);
  if (project == nullptr) {
    return anonymous(report + problem + "\n", file);
  }
  for (ModelVersion *version : project->versions()) {
    project->changeManager().setCurrentVersion(version, nullptr, false, nullptr, true);
    EntityModel::Entity *part = project->attribute(project->rootEntity(), "Parts")->asList()->getEntity(0);
    report += version->getLabel() + ": Count " + project->attribute(part, "Count")->getValueAsString() +
              ", Mass " + project->attribute(part, "Mass")->getValueAsString() + ", run " +
              project->runRecord(*version).reason + "\n";
    // Asked to make the folder, which it cannot.
    project->versionFolder(*version, true);
  }
  report += project->save(problem) ? "saved\n" : problem + "\n";
  return anonymous(report, file);
}

std::string wholeReport(const std::string &reason) {
  return "The project <file> can be opened for reading only: its lock file <file>.lock cannot be written: " +
         reason +
         ".\n"
         "Base: Count 4, Mass , run \n"
         "Row: Count 5, Mass 2.5 kg, run no convergence\n"
         "The project <file> was opened for reading only.\n";
}

std::string interruptedReport(const std::string &reason) {
  return "The project <file> can be opened for reading only: its lock file <file>.lock cannot be written: " +
         reason +
         ".\n"
         "The project <file> cannot be opened: attempt to write a readonly database (if a program was "
         "interrupted "
         "while saving, open the project once where it can be written).\n";
}

std::map<std::string, std::string> everythingIn(const std::string &folder) {
  std::map<std::string, std::string> files;
  for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder)) {
    files[entry.path().string()] = entry.is_regular_file() ? contentOf(entry.path().string()) : "";
  }
  return files;
}

} // namespace EmbeddedHost
