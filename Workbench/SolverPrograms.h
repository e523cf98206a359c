#pragma once

#include "Workbench/StudyFile.h"

#include <optional>
#include <string>
#include <vector>

namespace Workbench {

/// The programs of a study's commands as they are on this computer.
class SolverPrograms {
public:
  /// Looks for every program: with a slash beside the study file, any other in `searchPath`. Starts nothing.
  /// \return empty when one is missing; every such command is added to `problems`
  static std::optional<SolverPrograms> find(const StudyFile &study, const std::string &searchPath,
                                            std::vector<FileProblem> &problems);

  /// \param files  one a stage
  SolverPrograms(const StudyFile &study, std::vector<std::string> files);

  /// Runs the commands that print versions, one after the other, each for kLongestVersion at most.
  /// \return "" or why a version is not known
  std::string askVersions(const StudyFile &study, const std::string &searchPath);

  /// The program files, one a stage.
  const std::vector<std::string> &files() const { return m_files; }
  /// What tells one program from another, one text a stage: what its version command has printed, or the content of
  /// its file. Without askVersions() the version of a stage that has such a command is "".
  const std::vector<std::string> &identities() const { return m_identities; }
  /// What the version commands have printed, for people; "" without one.
  const std::string &version() const { return m_version; }

  static constexpr std::chrono::seconds kLongestVersion{10};

private:
  std::vector<std::string> m_files;
  std::vector<std::string> m_identities;
  std::string m_version;
};

} // namespace Workbench
