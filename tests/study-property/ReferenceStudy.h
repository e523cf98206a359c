#pragma once

#include "tests/study-property/ReferenceModel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace StudyProperty {

using Texts = std::vector<std::string>;

/// Sets a flag and gives it back its former value.
class FlagScope {
public:
  explicit FlagScope(bool &flag) : m_flag(flag), m_previous(flag) { flag = true; }
  FlagScope(const FlagScope &) = delete;
  FlagScope &operator=(const FlagScope &) = delete;
  ~FlagScope() { m_flag = m_previous; }

private:
  bool &m_flag;
  bool m_previous;
};

struct ReferenceVariable {
  int part = 0;
  std::string path;
  std::string minimum, maximum, step, lowBound, highBound;
  bool isLowBoundOn = false;
  bool isHighBoundOn = false;
};
struct ReferenceGroup {
  std::string name;
  std::vector<ReferenceVariable> variables;
};
struct StoredStudy {
  std::string base, copy, cost;
  int target = 0;
  bool hasConfiguration = false;
  std::array<std::vector<ReferenceGroup>, 2> groups; ///< [0] outputs, [1] inputs
};
struct ReferenceRow {
  std::string name;
  std::array<std::vector<std::optional<Value>>, 2> cells; ///< as the groups
  std::optional<double> cost;
};
struct ReferenceTerm {
  double factor;
  std::string macro;
};
struct ReferenceCalculator {
  double constant = 0.0;
  std::vector<ReferenceTerm> terms;
  std::map<std::string, double> variables;
};
/// What the manager holds.
struct ReferenceHeld {
  int study = 0;
  std::vector<ReferenceRow> rows;
  std::optional<ReferenceCalculator> calculator;
  bool hasError = false;
};

/// What a project with studies has to be after each operation, worked out from what the operations promise and with
/// nothing of the library. Operations have the names that they have there. What they throw is a Refusal.
class ReferenceStudy {
public:
  using Variable = ReferenceVariable;
  using Group = ReferenceGroup;
  using Study = StoredStudy;
  using Row = ReferenceRow;
  using Term = ReferenceTerm;
  using Calculator = ReferenceCalculator;
  using Held = ReferenceHeld;

  explicit ReferenceStudy(Mistake wrongIdea) : mistake(wrongIdea) {}

  ReferenceModel model;
  std::map<int, Study> studies; ///< by number, which is also their order in the list
  int nextStudy = 0;
  std::optional<Held> held;
  bool isSolving = false;
  Mistake mistake;

  Study &study() { return studies.at(held->study); }
  const Study &study() const { return studies.at(held->study); }
  std::vector<Group> &groups(bool isInput) { return study().groups[isInput ? 1 : 0]; }
  const std::vector<Group> &groups(bool isInput) const { return study().groups[isInput ? 1 : 0]; }
  int numGroups(bool isInput) const { return static_cast<int>(groups(isInput).size()); }
  const Value *cell(bool isInput, std::size_t row, std::size_t group) const;

  /// \name What the host does
  /// @{
  void makeCurrent(int version);
  void announceVersion(const std::string &label);
  void announceRoot();
  /// \return whether the user was let
  bool edit(int part, const std::string &path, const std::string &text);
  /// @}

  /// \name The manager
  /// @{
  int studyOf(const std::string &label) const;
  void initializeVersion();
  /// What making a study data object does to the stored study.
  void construct();
  void beginStudy(int type);
  void endStudy(bool deletesVersions);
  bool canBeginStudy(int version) const;
  void addAttribute(bool isInput, int part, const std::string &path);
  bool isItemValid(const std::string &path, bool isInput, int type) const;
  /// @}

  /// \name Groups
  /// @{
  std::string macro(const Variable &variable) const;
  std::string macro(const Group &group) const;
  std::string displayName(const Group &group) const;
  bool contains(const Group &group, int part, const std::string &path) const;
  int groupContaining(bool isInput, int part, const std::string &path) const;
  int addGroup(bool isInput, int part, const std::string &path);
  int addGroupFromGroup(bool isInput, int source);
  void removeGroup(bool isInput, int index);
  void removeFromGroup(bool isInput, int part, const std::string &path);
  void removeFromGroup(int part, const std::string &path);
  void removeAttributeFromGroup(bool isInput, int flatIndex);
  void moveAttribute(bool isInput, int from, int position, int to);
  void moveGroup(bool isInput, int from, int to);
  void setGroupName(bool isInput, int index, const std::string &name);
  bool isGroupSameValue(bool isInput, std::size_t a, std::size_t b) const;
  void fix(Study &repaired) const;
  /// @}

  /// \name Rows
  /// @{
  /// The rows that a load of the held study makes; stores a copy's name that it finds again, unless it is a new study.
  std::vector<Row> loaded(bool isNew);
  std::size_t addVariant(const Texts &values, const std::string &name, std::uint64_t position);
  std::size_t addVariant(std::size_t row, const std::string &name, std::uint64_t position);
  void removeVariant(std::size_t row, bool destroysVersion);
  void setVariantName(std::size_t row, const std::string &name);
  void setVariantValues(const std::string &name, const Texts &values);
  void setVariantValue(std::size_t row, std::size_t group, const std::string &value);
  int rowIndex(const std::string &name) const;
  void updateAlternates(int flags, const std::vector<std::size_t> &rows);
  std::vector<std::size_t> allRows() const;
  /// @}

  /// \name Versions
  /// @{
  std::string copyName(int number) const;
  std::string alternateName(int number) const;
  void createCopyVersion(bool forceNew);
  void createMissingVersions();
  bool allVersionsExist() const;
  /// @}

  /// \name Costs
  /// @{
  void setCostFunction(const std::string &text);
  void updateCostCalculator();
  void recalculateCost(std::size_t row);
  void recalculateCosts();
  bool isVariableInCostFunction(bool isInput, std::size_t group) const;
  void setOptimisationTarget(int target);
  /// @}

private:
  bool resolves(const Variable &variable) const { return model.has(variable.part, variable.path); }
  std::optional<Value> shown(const Variable &variable) const;
  std::optional<Value> firstShown(const Group &group) const;
  void fix(Variable &variable) const;
  Row rowOf(int version) const;
  std::string studyTypeName() const;
  void write(const std::vector<Group> &sideGroups, const std::vector<std::optional<Value>> &cells);
  void updateAlternate(int flags, Row &row);
  void price(Row &row);
  bool setVariable(const Row &row, bool isInput, std::size_t group);

  bool m_isEditing = false;
  int m_loads = 0; ///< counts what the manager has held
};

/// The cost functions of these tests: a sum of constants and of multiples of macros, as "%P0.A% * 2 + 3".
/// \return nothing when the text is no such sum
std::optional<ReferenceStudy::Calculator> calculatorOf(const std::string &text);

} // namespace StudyProperty
