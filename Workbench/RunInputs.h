#pragma once

#include "EmbeddedHost/TemplateFile.h"
#include "Workbench/StudyFile.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Workbench {

class UnitSystem;

/// A file that a run is given: rendered from a template, or a copy.
struct RunFile {
  std::string name;        ///< in the run's folder
  std::string content;     ///< of a rendered file
  std::string copyOf;      ///< the file to copy; empty for a rendered file
  std::string fingerprint; ///< of the file to copy
};

/// A short text that stands for the content of a file.
/// \return empty when the file cannot be read; `problem` then says why
std::string fileFingerprint(const std::string &path, std::string &problem);

/// What every run of a study gets: its templates and the files to copy, read once.
class RunInputs {
public:
  /// Reads the templates and the files to copy and checks every placeholder against the model.
  /// \param doubts  receives what can be run and is hardly meant: a template without a placeholder, and an input that no
  ///                 template, command, formula, rule or cost uses
  /// \return empty when a file cannot be read or a placeholder cannot be filled; every such place is added to
  ///         `problems`
  static std::optional<RunInputs> load(const StudyFile &study, const UnitSystem &units,
                                       std::vector<FileProblem> &doubts, std::vector<FileProblem> &problems);

  /// The files of one run with the values of `source`, copies included.
  /// \param warnings  when given, receives what a solver may read otherwise than it is written
  /// \return empty when a value cannot be written as its placeholder asks; see `problems`
  std::optional<std::vector<RunFile>> render(const EmbeddedHost::TemplateValueSource &source,
                                             std::vector<FileProblem> &problems,
                                             std::vector<FileProblem> *warnings = nullptr) const;

  /// The arguments of each stage's command with the values of `source`.
  /// \return empty when a value cannot be written as its placeholder asks; see `problems`
  std::optional<std::vector<std::vector<std::string>>>
  renderCommands(const EmbeddedHost::TemplateValueSource &source, std::vector<FileProblem> &problems,
                 std::vector<FileProblem> *warnings = nullptr) const;

private:
  // A text, or a template that is one placeholder.
  struct Argument {
    std::string text;
    std::optional<EmbeddedHost::TemplateFile> placeholder;
    FilePlace place;
  };
  struct Template {
    EmbeddedHost::TemplateFile file;
    std::string name;
  };

  static void loadCommands(const StudyFile &study, const UnitSystem &units, std::set<std::string> &used,
                           std::vector<FileProblem> &problems, RunInputs &inputs);

  std::string m_studyFile;
  std::vector<Template> m_templates;
  std::vector<std::vector<Argument>> m_commands;
  std::vector<RunFile> m_copies;
};

} // namespace Workbench
