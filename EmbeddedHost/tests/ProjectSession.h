#pragma once

#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/tests/ModelFixture.h"
#include "EmbeddedHost/tests/ProjectReference.h"

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace EmbeddedHost {

/// Carries out random steps on a project and on its reference, and compares the two after every step.
class ProjectSession {
public:
  ProjectSession(unsigned seed, ProjectReference::Mistake mistake);

  /// \return "" when the project was always as the reference, else the seed, the first step after which it was not,
  ///         what was done there and what differs
  std::string run(int steps);

private:
  using Action = void (ProjectSession::*)();

  void act(int step);
  void create();
  void move();
  void remove();
  void rename();
  void edit();
  void switchVersion();
  void relabel();
  void mark();
  void addVersion();
  void destroyVersion();
  void recordRun();
  void save();
  void saveAs();
  void reopen();

  void compare(bool switches);
  void compareVersions();
  void compareMarks(int version);
  void compareEdits(int version);
  void compareShown(int version);
  void compareEntity(int version, int entity);
  template <class Value> void expect(const std::string &what, const Value &actual, const Value &expected);
  void fail(const std::string &problem);

  std::size_t below(std::size_t count) { return random() % count; }
  int anyVersion();
  int anyEntity();
  int anyPart();
  std::string anyPath();
  EntityModel::ModelVersion *own(int version) const;
  EntityModel::Entity *own(const std::optional<int> &entity) const;
  EntityModel::EntityEditorService &editor() { return *project->getEntityEditor(); }

  unsigned seed;
  std::mt19937 random;
  TestFolder folder;
  std::unique_ptr<Project> project = Project::create(testSchema());
  ProjectReference reference;
  std::optional<ProjectReference> saved; ///< what the file has to hold; none before the first save
  int files = 0;
  std::string action;
  std::string problem;
};

} // namespace EmbeddedHost
