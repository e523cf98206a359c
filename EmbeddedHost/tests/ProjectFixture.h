#pragma once

#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/tests/ModelFixture.h"

#include <functional>
#include <memory>
#include <string>

namespace EmbeddedHost {

/// A project that is saved in a folder of its own.
class ProjectTest : public ModelTest {
protected:
  ProjectTest();
  ~ProjectTest() override;

  void saveAs();
  void save();
  void closeProject() { project.reset(); }
  /// Opens the saved file beside the project. \throws std::runtime_error  it cannot be opened
  std::unique_ptr<Project> openCopy(OpenMode mode = OpenMode::ReadOnly) const;
  /// What is wrong with the saved file; "" when it can be opened.
  std::string problemOfOpening(OpenMode mode) const;
  /// A part of a project's list.
  static EntityModel::Entity *part(Project &other, int index);

  /// Leaves the journal of a change that was half done when its program was killed.
  void interruptAChange() const;
  /// Carries something out in a child process that is killed after ten seconds.
  /// \return what it answers, or -1 when it did not come to that
  static int inChild(const std::function<int()> &work);
  /// As inChild(), by somebody whom permissions bind, which the superuser is not.
  static int asOrdinaryUser(const std::function<int()> &work);

  TestFolder folder;
  std::string file = folder.path("fan.optstudy");
  EntityModel::ModelVersion *base = project->rootVersion();
};

} // namespace EmbeddedHost
