#pragma once

#include "EmbeddedHost/Project.h"

#include <string>

namespace EmbeddedHost {

/// What became of a command. Converts to whether it was done.
struct CommandResult {
  std::string problem; ///< "" when done, else one sentence for people; nothing has changed then

  explicit operator bool() const { return problem.empty(); }
};

/// What a user does to a project. Commands respect read-only versions, refuse what would break a study, and
/// send the notifications that observers expect. The project, or a wrapper around it, must be the installed
/// host. Exceptions of observers pass through; the command itself has been carried out then.
class Commands {
public:
  explicit Commands(Project &project);

  /// Makes the project the one that the application shows: sets the current file and the current entity and
  /// tells the observers, so that a study of the current version is loaded. After create() or open().
  void announceOpened();
  /// Ends the use of the project: no version is current any more, the observers are told, and the current
  /// file and entity are cleared, so that no observer keeps anything of it. The project may be destroyed
  /// then, and must not be used otherwise. Unsaved changes are lost. Refused while a solver runs.
  [[nodiscard]] CommandResult close();

  /// Makes a version current. One notification is sent, with the root entity.
  [[nodiscard]] CommandResult switchVersion(EntityModel::ModelVersion *version);
  /// As above, for the first version with this label.
  [[nodiscard]] CommandResult switchVersion(const std::string &label);
  /// Sets one value in the current version and tells the observers of it. Refused in a read-only version, for
  /// results, locked and internal values, and for unsetting an input of the current version's study.
  [[nodiscard]] CommandResult edit(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                                   const std::string &text);
  /// Gives a version another label. Refused for a read-only version, for a study's baseline and cases, whose
  /// labels tie them to their study, for "" and for a label that is taken.
  [[nodiscard]] CommandResult renameVersion(EntityModel::ModelVersion *version, const std::string &label);
  /// Removes a version and what follows it. Refused for the root version and when a version that would go is
  /// read-only, a study's baseline or a study's case.
  [[nodiscard]] CommandResult deleteVersion(EntityModel::ModelVersion *version);

  /// Saves; see Project::save().
  [[nodiscard]] CommandResult save();
  /// Saves into another file, which becomes the current file.
  [[nodiscard]] CommandResult saveAs(const std::string &file);

  /// While one lives a solver runs: the project cannot be closed, no version deleted and none renamed.
  class SolverRun {
  public:
    explicit SolverRun(Commands &commands);
    SolverRun(const SolverRun &) = delete;
    SolverRun &operator=(const SolverRun &) = delete;
    ~SolverRun();

  private:
    Commands &m_commands;
  };

private:
  Project &m_project;
  int m_solverRuns = 0;
};

} // namespace EmbeddedHost
