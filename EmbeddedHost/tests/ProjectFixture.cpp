#include "EmbeddedHost/tests/ProjectFixture.h"

#include <filesystem>
#include <signal.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {

ProjectTest::ProjectTest() = default;
ProjectTest::~ProjectTest() = default;

void ProjectTest::saveAs() {
  std::string problem;
  ASSERT_TRUE(project->saveAs(file, problem)) << problem;
  EXPECT_FALSE(project->needsSave());
}

void ProjectTest::save() {
  std::string problem;
  ASSERT_TRUE(project->save(problem)) << problem;
}

std::unique_ptr<Project> ProjectTest::openCopy(OpenMode mode) const {
  std::string problem;
  std::unique_ptr<Project> opened = Project::open(file, mode, problem);
  EXPECT_EQ(problem, "");
  if (opened == nullptr) {
    throw std::runtime_error(problem);
  }
  return opened;
}

std::string ProjectTest::problemOfOpening(OpenMode mode) const {
  std::string problem;
  const auto opened = Project::open(file, mode, problem);
  EXPECT_EQ(opened == nullptr, !problem.empty());
  return problem;
}

EntityModel::Entity *ProjectTest::part(Project &other, int index) {
  return other.attribute(other.rootEntity(), "Parts")->asList()->getEntity(index);
}

void ProjectTest::interruptAChange() const {
  const pid_t child = fork();
  if (child == 0) {
    Database database(file, Database::Access::ReadWrite);
    // So small that changes go into the file before they are committed.
    database.execute("PRAGMA cache_size = 1");
    database.execute("BEGIN IMMEDIATE");
    database.execute("UPDATE value SET value = 'half done'");
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(std::filesystem::exists(file + "-journal"));
}

int ProjectTest::inChild(const std::function<int()> &work) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(10);
    _exit(work());
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int ProjectTest::asOrdinaryUser(const std::function<int()> &work) {
  return inChild([&work] {
    constexpr unsigned kNobody = 65534;
    const bool isOrdinary = getuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
    return isOrdinary ? work() : -1;
  });
}

} // namespace EmbeddedHost
