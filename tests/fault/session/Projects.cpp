#include "tests/fault/session/Projects.h"

#include "tests/fault/session/BoxSession.h"

#include <sqlite3.h>

#include <fstream>
#include <sstream>

namespace FaultTests {

std::string boxProject(const std::string &folder) {
  return folder + "/box.optstudy";
}

std::string keptProject(const std::string &folder) {
  return folder + "/kept.optstudy";
}

std::string oldProject(const std::string &folder) {
  return folder + "/old.optstudy";
}

std::unique_ptr<EmbeddedHost::Project> openProject(const std::string &file, EmbeddedHost::OpenMode mode) {
  std::string problem;
  std::unique_ptr<EmbeddedHost::Project> project = EmbeddedHost::Project::open(file, mode, problem);
  expectDone(project == nullptr && problem.empty() ? "no reason" : problem);
  return project;
}

void buildProject(const std::string &file, const std::string &statementsFile) {
  std::ostringstream statements;
  statements << std::ifstream(statementsFile).rdbuf();
  sqlite3 *database = nullptr;
  std::string problem = statements.str().empty() ? statementsFile + " cannot be read" : "";
  if (sqlite3_open(file.c_str(), &database) != SQLITE_OK ||
      sqlite3_exec(database, statements.str().c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    problem = sqlite3_errmsg(database);
  }
  sqlite3_close(database);
  expectDone(problem);
}

} // namespace FaultTests
