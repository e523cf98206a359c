#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace StudyProperty {

/// A deliberately wrong idea of what a study is, to see that a comparison finds it.
enum class Mistake {
  None,
  LoadingLeavesEmptyCells, ///< a group whose first variable resolves to nothing keeps its place in loaded rows
  MovedGroupsTakeTheirCells,  ///< moving a group moves its column
  RemovingChecksTheIndex,     ///< removing the group behind the last one is refused
  RemovingFromAnySide,        ///< an attribute without a side is removed from the outputs too
  OutputsAreNotWritten,       ///< pushing a row leaves the outputs of its version alone
  UnknownVariablesAreSkipped, ///< pricing passes over a group that the cost function was not built with
  EndingSparesOthers,         ///< ending a study destroys only its copy and its rows
  ReopeningKeepsUnsaved,      ///< closing saves
  ThrowingSwitchesBack,       ///< a pass that throws returns to the version where it began
  GuardedEditsAreTaken,       ///< an edit during a solver run reaches the baseline's row
  NewColumnsAreTheRowsOwn,    ///< a new group's cells have the value of each row's version
  RemovedRowsComeBack,        ///< a row that is removed while its version is kept is loaded again
  CopiesAreFamily,            ///< an alternate follows the copy and not what the copy follows
};

/// What the host throws at a text that is no value of an attribute, and what the library throws.
class Refusal : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

inline constexpr const char *kHostRefusal = "the host throws";

/// Kinds of the values of a part: "A", "B", "X", "Y" are reals, "N" an integer, "L" a length in "mm" or "m". "X" and
/// "Y" are results.
enum class Kind { Real, Integer, Length };

struct Value {
  Kind kind = Kind::Real;
  std::optional<double> number;
  std::string unit;

  std::string text() const;
  /// In metres where it is a length; 0 without a number.
  double standard() const;
  /// In a unit's text; the standard value when it is none.
  double in(const std::string &unitText) const;
  /// What becomes of it when a text is assigned. \throws Refusal  the text is no such value
  Value assigned(const std::string &valueText) const;
};

const std::vector<std::string> &paths();
bool isResult(const std::string &path);
Value defaultValue(const std::string &path);

/// The parts of the model, its tree of versions and what each version shows, worked out in the simplest way. Versions
/// have numbers in order of creation, 0 is the root version; parts have places in the list.
class ReferenceModel {
public:
  static constexpr int kNone = -1;
  static constexpr int kParts = 3;

  struct Part {
    std::string name;
    bool isThere = true;
  };
  struct Version {
    int previous = kNone;
    int family = kNone; ///< number of the first origin
    std::string label;
    int studyType = 0;
    bool isCopy = false;
    bool isRemoved = false;
    bool isReadOnly = false;
    std::map<std::pair<int, std::string>, Value> edits; ///< by part and path
  };
  struct Family {
    int origin = kNone;
    std::vector<int> members;
  };

  ReferenceModel();

  std::vector<Part> parts;
  std::map<int, Version> versions;
  std::map<int, Family> families;
  int current = 0;
  int next = 1;

  /// Whether the attribute exists.
  bool has(int part, const std::string &path) const;
  /// What a version shows of an existing attribute.
  const Value &value(int version, int part, const std::string &path) const;
  /// \throws Refusal  the text is no such value
  void setText(int part, const std::string &path, const std::string &text);
  int find(const std::string &label) const; ///< the oldest with this label
  std::string uniqueLabel(const std::string &label) const;
  std::string label(int version) const { return versions.at(version).label; }
  bool isCase(int version) const;
  int type(int version) const; ///< 0 ordinary, 1 alternate, 2 copy, 3 a study's baseline
  int studyBaseline(int version) const;
  std::vector<int> alternates(int version) const;
  std::vector<int> followers(int version) const;
  int addFollower(int previous, const std::string &label);
  int addAlternate(int origin, std::uint64_t position);
  /// With all that follow them; the root version never.
  void destroy(const std::vector<int> &doomed);
  std::vector<int> withFollowers(std::vector<int> doomed) const;
  void clearStudy(int version);
};

} // namespace StudyProperty
