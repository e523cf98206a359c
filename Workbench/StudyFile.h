#pragma once

#include "EmbeddedHost/LinePattern.h"
#include "EmbeddedHost/ResultExtractor.h"
#include "EmbeddedHost/TemplateFile.h"
#include "HostModel/StudyEnumerations.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

class UnitSystem;

using EmbeddedHost::FileProblem;

/// A place in the study file, both counted from 1.
struct FilePlace {
  std::size_t line = 0;
  std::size_t column = 0;
};

enum class AttributeKind { Real, Integer, Boolean, Choice, Text };

/// A value of an attribute, checked against the attribute's declaration.
struct StudyValue {
  /// The value as a number: a real in the attribute's declared unit, a whole number, 0 or 1 for a boolean,
  /// the option's position from 1 for a choice; 0 for a text.
  double number = 0.0;
  /// What the study file says: a text's value, and how messages quote any other.
  std::string text;
  FilePlace place;
};

/// An attribute of an entity, named "Entity.Attribute".
struct StudyAttribute {
  std::string entity;
  std::string name;
  AttributeKind kind = AttributeKind::Real;
  bool isResult = false; ///< computed by the solver: without a value until then
  std::string unit;      ///< the declared unit, in which everything about this attribute is kept and shown
  StudyValue value;      ///< of a result: unused
  std::optional<double> minimum; ///< in the declared unit
  std::optional<double> maximum;
  std::vector<std::string> options; ///< of a choice
  std::string description;
  FilePlace place;

  std::string fullName() const { return entity + "." + name; }
};

/// A file of the study file's folder that goes into every run's folder under another name or the same.
struct StudyInputFile {
  std::string from; ///< relative to the study file, unless it is absolute
  std::string to;   ///< relative to the run's folder
  FilePlace place;
};

enum class ResultSource {
  StandardOutput, ///< of a stage
  StandardError,  ///< of a stage
  File,
  ExitCode, ///< of a stage; without an extractor
  WallTime  ///< of a stage, or of all, in seconds; without an extractor
};

/// Where one result is found after a run.
struct StudyExtractor {
  std::string attribute; ///< full name
  ResultSource source = ResultSource::StandardOutput;
  std::string file;                 ///< relative to the run's folder; of ResultSource::File only
  std::optional<std::size_t> stage; ///< of the other sources; empty: the time of all stages
  std::string unit;                 ///< in which the solver writes the number
  std::optional<EmbeddedHost::ResultExtractor> extractor;
  std::optional<double> minimum; ///< what is plausible, in the declared unit
  std::optional<double> maximum;
  FilePlace place;
};

/// A result that is computed by an expression, in declared units, instead of by a solver.
struct StudyFormula {
  std::string attribute;              ///< full name
  std::string text;                   ///< over "%Entity.Attribute%"
  std::vector<std::string> variables; ///< full names of the attributes that it uses
  std::optional<double> minimum;      ///< what is plausible, in the declared unit
  std::optional<double> maximum;
  FilePlace place; ///< of the expression
};

/// One argument of a command: a text, or a placeholder that is filled for each run.
struct StudyArgument {
  std::string text; ///< as it is written
  bool isPlaceholder = false;
  FilePlace place;
};

/// One command of a solver.
struct StudyStage {
  std::string name; ///< empty for the only one
  std::vector<StudyArgument> command;
  FilePlace place; ///< of the command
  std::chrono::milliseconds timeLimit{std::chrono::minutes(10)};
  std::vector<int> exitCodes{0};           ///< those that are no failure
  std::vector<std::string> versionCommand; ///< what prints the program's version; empty: its file says enough

  const std::string &program() const { return command.front().text; }
  /// The names of the files, in the run's folder, that keep what the stage prints.
  std::string outputLog() const { return name.empty() ? "stdout.log" : name + ".stdout.log"; }
  std::string errorLog() const { return name.empty() ? "stderr.log" : name + ".stderr.log"; }
};

/// Why a run failed, as far as it decides whether to try again.
enum class FailureReason { ExitCode, Signal, TimeLimit, Extraction, NotANumber, OutputTooLarge };
constexpr std::size_t kFailureReasons = 6;

/// What of a run's folder is kept when the run has ended.
enum class KeptFiles {
  All,
  Outputs, ///< what the stages printed, and the files with results
  Failed   ///< everything of a run that failed, nothing of any other
};

/// What has to be found in a log or file of a run that succeeded.
struct StudyMarker {
  EmbeddedHost::LinePattern pattern;
  ResultSource source = ResultSource::StandardOutput; ///< a log or a file
  std::string file;
  std::size_t stage = 0;
  FilePlace place;
};

/// How a version is solved.
struct StudySolver {
  std::vector<StudyInputFile> templates;
  std::vector<StudyInputFile> copies;
  std::vector<StudyStage> stages; ///< in their order; none when every result is a formula
  std::map<std::string, std::string> environment;
  std::array<int, kFailureReasons> retries{}; ///< how often a run that failed for the reason is tried again
  KeptFiles keep = KeptFiles::All;
  std::size_t outputLimit = std::size_t{16} * 1024 * 1024; ///< bytes kept of each of a stage's logs
  std::size_t fileLimit = 0;   ///< bytes of the largest file that a stage may write, 0: no limit
  std::size_t folderLimit = 0; ///< bytes of all files of a run when it has ended, 0: no limit
  std::optional<StudyMarker> success;
  std::string installHint;                ///< how to get the solver, for people
  std::vector<StudyExtractor> extractors; ///< one per result that is no formula
};

/// A condition that the inputs of every row have to meet.
struct StudyRule {
  std::string text; ///< an expression over attributes that are no results, in declared units; "" for none
  std::vector<std::string> variables;
  FilePlace place;
};

/// A group of attributes that share one value (an input) or are compared as one (an output).
struct StudyGroup {
  std::string name;                    ///< may be empty
  std::vector<std::string> attributes; ///< full names, at least one; the first gives the group its macro
  std::optional<double> minimum;       ///< in the declared unit of the first attribute
  std::optional<double> maximum;
  std::optional<double> step;
  std::optional<double> lowBound;
  std::optional<double> highBound;
  FilePlace place;

  const std::string &macro() const { return attributes.front(); }
  const std::string &title() const { return name.empty() ? macro() : name; }
};

/// A row to be solved beside the baseline.
struct StudyRow {
  std::string name;               ///< empty: named when it is made, and recognised by its values
  std::vector<StudyValue> values; ///< one per input group
  FilePlace place;
};

/// What is declared once and for all about a study: the model, the solver, the study itself. Everything has
/// been checked: names exist, values are within their limits, units fit.
struct StudyFile {
  std::string path;   ///< as it was given
  std::string folder; ///< of the study file
  std::string title;
  std::vector<StudyAttribute> attributes; ///< in file order, entity by entity
  StudySolver solver;
  std::vector<StudyFormula> formulas; ///< in an order in which each can be computed
  EntityModel::ModelVersionStudyType type = EntityModel::ModelVersionStudyType::Parametric;
  MathematicalUtilities::OptimisationStrategy target = MathematicalUtilities::OptimisationStrategy::None;
  std::string cost;
  FilePlace costPlace;
  StudyRule rule;
  std::size_t stopAfter = 5; ///< equal failures in a row after which a solve gives up; 0 for never
  std::vector<StudyGroup> inputs;
  std::vector<StudyGroup> outputs;
  std::vector<StudyRow> rows;
  std::size_t gridRows = 0;       ///< of the grid, equal ones included
  std::vector<std::string> notes; ///< what a person should know though nothing is wrong
  /// What is legal in cost, rule and formulas and seldom meant, each with the change that removes it.
  std::vector<FileProblem> warnings;

  /// The attribute of that full name, or null.
  const StudyAttribute *findAttribute(const std::string &fullName) const;
  /// The folder's file of that name, for messages and for reading.
  std::string pathOf(const std::string &from) const;

  /// Reads and checks a study file: a JSON text when its name ends in ".json", else YAML.
  /// \return empty when anything is wrong with it; everything found is added to `problems`, in the file's
  /// order
  static std::optional<StudyFile> read(const std::string &path, const UnitSystem &units,
                                       std::vector<FileProblem> &problems);

  /// The same for a text; `path` names it in messages and gives the folder.
  static std::optional<StudyFile> parse(const std::string &path, const std::string &text,
                                        const UnitSystem &units, std::vector<FileProblem> &problems);
};

/// The value in the form that the model reads: a number with the declared unit, a whole number, a text.
std::string hostText(const StudyAttribute &attribute, const StudyValue &value);

/// The largest number of rows that a grid may have.
constexpr std::size_t kLargestGrid = 100000;

} // namespace Workbench
