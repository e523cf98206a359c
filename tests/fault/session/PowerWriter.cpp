#include "tests/fault/session/PowerWriter.h"

#include "EmbeddedHost/src/project/ProjectParts.h"
#include "tests/fault/session/Acknowledgements.h"
#include "tests/fault/session/BoxSession.h"
#include "tests/fault/session/CanonicalState.h"
#include "tests/fault/session/Projects.h"

#include <fstream>
#include <limits>

namespace FaultTests {

namespace {

constexpr int kRows = 150;

EntityModel::ModelVersion &versionOf(EmbeddedHost::Project &project, const std::string &label) {
  EntityModel::ModelVersion *version = project.changeManager().findVersion(label, nullptr);
  if (version == nullptr) {
    throw StepFailed("the version " + label + " is gone");
  }
  return *version;
}

// Only reads, so that it can be called while a row is being reported: no other version becomes the shown one.
std::string hashOfRow(EmbeddedHost::Project &project, const std::string &label) {
  EntityModel::ModelVersion &version = versionOf(project, label);
  EntityModel::ModelVersion *before = project.currentVersion();
  std::string hash = hashOf(versionText(project, version));
  EmbeddedHost::VersionTree &tree = project.parts().model.tree();
  tree.makeCurrent(tree.own(before));
  return hash;
}

} // namespace

void writeUntilThePowerFails(const std::string &folder, const std::string &acknowledgementFile,
                             bool skipsSyncing) {
  Acknowledgements acknowledgements(acknowledgementFile);
  BoxSession box(folder, kRows);
  if (skipsSyncing) {
    box.project().parts().file->database().execute("PRAGMA synchronous = OFF");
  }
  acknowledgements.add("begun");
  box.solve(std::numeric_limits<int>::max(),
            [&](const std::string &row) { acknowledgements.add(hashOfRow(box.project(), row) + " " + row); });
}

int countLostRows(const std::string &folder, const std::string &acknowledgementFile) {
  const auto project = openProject(boxProject(folder), EmbeddedHost::OpenMode::ReadWrite);
  int lost = 0;
  std::ifstream lines(acknowledgementFile);
  std::string hash;
  std::string row;
  std::getline(lines, row); // the begin
  while (lines >> hash && std::getline(lines.ignore(1), row)) {
    lost += hashOfRow(*project, row) == hash ? 0 : 1;
  }
  return lost;
}

} // namespace FaultTests
