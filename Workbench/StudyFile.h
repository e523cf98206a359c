#pragma once

#include "EmbeddedHost/ResultExtractor.h"
#include "EmbeddedHost/TemplateFile.h"
#include "HostModel/StudyEnumerations.h"

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
  std::string from; ///< relative to the study file
  std::string to;   ///< relative to the run's folder
  FilePlace place;
};

enum class ResultSource { StandardOutput, StandardError, File };

/// Where one result is found after a run.
struct StudyExtractor {
  std::string attribute; ///< full name
  ResultSource source = ResultSource::StandardOutput;
  std::string file; ///< relative to the run's folder; of ResultSource::File only
  std::string unit; ///< in which the solver writes the number
  EmbeddedHost::ResultExtractor extractor;
  FilePlace place;
};

/// How a version is solved.
struct StudySolver {
  std::vector<StudyInputFile> templates;
  std::vector<StudyInputFile> copies;
  std::vector<std::string> command;
  FilePlace commandPlace;
  std::map<std::string, std::string> environment;
  std::chrono::milliseconds timeLimit{std::chrono::minutes(10)};
  std::vector<int> exitCodes{0};
  std::string installHint;                ///< how to get the solver, for people
  std::vector<StudyExtractor> extractors; ///< one per result
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
  EntityModel::ModelVersionStudyType type = EntityModel::ModelVersionStudyType::Parametric;
  MathematicalUtilities::OptimisationStrategy target = MathematicalUtilities::OptimisationStrategy::None;
  std::string cost;
  FilePlace costPlace;
  std::vector<StudyGroup> inputs;
  std::vector<StudyGroup> outputs;
  std::vector<StudyRow> rows;
  std::vector<std::string> notes; ///< what a person should know though nothing is wrong

  /// The attribute of that full name, or null.
  const StudyAttribute *findAttribute(const std::string &fullName) const;

  /// Reads and checks a study file.
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
