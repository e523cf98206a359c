#include "tests/study-property/ReferenceStudy.h"

#include <algorithm>
#include <numeric>

// The rows of the matrix and the versions that they stand for.

namespace StudyProperty {

namespace {

constexpr int kWrites = 1;
constexpr int kReads = 2;

} // namespace

const Value *ReferenceStudy::cell(bool isInput, std::size_t row, std::size_t group) const {
  if (row >= held->rows.size() || group >= groups(isInput).size()) {
    return nullptr;
  }
  const std::vector<std::optional<Value>> &cells = held->rows[row].cells[isInput ? 1 : 0];
  return group < cells.size() && cells[group].has_value() ? &*cells[group] : nullptr;
}

// The value as the current version has it, unless the version has one of its own. A group without such a value gets no
// cell, and the cells of the groups behind it move up.
ReferenceStudy::Row ReferenceStudy::rowOf(int version) const {
  Row row;
  row.name = model.label(version);
  for (const std::size_t side : {1U, 0U}) {
    for (const Group &group : study().groups[side]) {
      std::optional<Value> value = firstShown(group);
      if (value.has_value()) {
        const Variable &first = group.variables.front();
        const auto &edits = model.versions.at(version).edits;
        const auto own = edits.find({first.part, first.path});
        value = own == edits.end() ? value : own->second;
      }
      if (value.has_value() || mistake == Mistake::LoadingLeavesEmptyCells) {
        row.cells[side].push_back(value);
      }
    }
  }
  return row;
}

std::vector<ReferenceStudy::Row> ReferenceStudy::loaded(bool isNew) {
  std::vector<Row> rows;
  if (const int base = model.find(study().base); base != ReferenceModel::kNone) {
    rows.push_back(rowOf(base));
  }
  const auto followsBase = [this](int version) {
    const int previous = version == ReferenceModel::kNone ? version : model.versions.at(version).previous;
    return previous != ReferenceModel::kNone && model.label(previous) == study().base;
  };
  if (!isNew && study().copy.empty() && followsBase(model.find(copyName(0)))) {
    study().copy = copyName(0);
  }
  const int copy = model.find(study().copy);
  if (!followsBase(copy)) {
    return rows;
  }
  for (const int version : model.alternates(copy)) {
    const bool isStudyCase = mistake == Mistake::RemovedRowsComeBack || model.isCase(version);
    if (isStudyCase && model.label(version) != study().copy) {
      rows.push_back(rowOf(version));
    }
  }
  return rows;
}

int ReferenceStudy::rowIndex(const std::string &name) const {
  const auto found = std::find_if(held->rows.begin(), held->rows.end(),
                                  [&name](const Row &row) { return row.name == name; });
  return found == held->rows.end() ? -1 : static_cast<int>(found - held->rows.begin());
}

std::size_t ReferenceStudy::addVariant(const Texts &values, const std::string &name, std::uint64_t position) {
  if (values.size() != groups(true).size()) {
    return 0;
  }
  const FlagScope editing(m_isEditing);
  std::string chosen = name.empty() ? "" : model.uniqueLabel(name);
  for (int number = 1; chosen.empty(); ++number) {
    chosen = model.find(alternateName(number)) == ReferenceModel::kNone ? alternateName(number) : "";
  }
  const int remembered = model.current;
  const int copy = model.find(study().copy);
  if (copy == ReferenceModel::kNone || model.versions.at(copy).previous == ReferenceModel::kNone) {
    return 0;
  }
  const int version = model.addAlternate(copy, position);
  if (mistake == Mistake::CopiesAreFamily) {
    model.versions.at(version).previous = copy;
  }
  model.versions.at(version).label = chosen;
  model.clearStudy(version);
  model.versions.at(version).isReadOnly = true;
  makeCurrent(version);
  for (std::size_t group = 0; group < values.size(); ++group) {
    for (const Variable &variable : groups(true)[group].variables) {
      if (resolves(variable)) {
        model.setText(variable.part, variable.path, values[group]);
      }
    }
  }
  held->rows.push_back(rowOf(version));
  makeCurrent(remembered);
  return held->rows.size() - 1;
}

std::size_t ReferenceStudy::addVariant(std::size_t row, const std::string &name, std::uint64_t position) {
  if (row >= held->rows.size()) {
    throw Refusal("out_of_range: OptimizationData::addVariant: Variant index out of range");
  }
  Texts values;
  for (std::size_t group = 0; group < groups(true).size(); ++group) {
    if (const Value *value = cell(true, row, group)) {
      values.push_back(value->text());
    }
  }
  return addVariant(values, name, position);
}

void ReferenceStudy::removeVariant(std::size_t row, bool destroysVersion) {
  if (row >= held->rows.size()) {
    throw Refusal("out_of_range: OptimizationData::removeVariant: Variant index out of range");
  }
  if (row == 0) {
    throw Refusal("out_of_range: OptimizationData::removeVariant: removeVariant called on baseline");
  }
  const int version = model.find(held->rows[row].name);
  if (version != ReferenceModel::kNone && destroysVersion) {
    const int loads = m_loads;
    model.destroy({version});
    announceVersion(model.label(model.current));
    if (m_loads != loads) {
      return;
    }
  } else if (version != ReferenceModel::kNone) {
    model.clearStudy(version);
    model.versions.at(version).isRemoved = true;
    model.versions.at(version).isReadOnly = false;
  }
  held->rows.erase(held->rows.begin() + static_cast<std::ptrdiff_t>(row));
}

void ReferenceStudy::setVariantName(std::size_t row, const std::string &name) {
  if (row >= held->rows.size()) {
    throw Refusal("out_of_range: OptimizationData::setVariantName: Variant index out of range");
  }
  if (row == 0) {
    throw Refusal("logic_error: OptimizationData::setVariantName: setVariantName called on baseline");
  }
  const int version = model.find(held->rows[row].name);
  held->rows[row].name = name;
  if (version != ReferenceModel::kNone) {
    model.versions.at(version).label = name;
  }
}

void ReferenceStudy::setVariantValues(const std::string &name, const Texts &values) {
  if (values.size() != groups(true).size()) {
    throw Refusal("logic_error: Incorrect number of values provided to setVariantValues");
  }
  const int row = rowIndex(name);
  if (row < 0) {
    throw Refusal("logic_error: Invalid variant name provided to setVariantValues");
  }
  std::vector<std::optional<Value>> &cells = held->rows[static_cast<std::size_t>(row)].cells[1];
  for (std::size_t group = 0; group < values.size() && group < cells.size(); ++group) {
    if (cells[group].has_value()) {
      cells[group] = cells[group]->assigned(values[group]);
    }
  }
  updateAlternates(kWrites | kReads, {static_cast<std::size_t>(row)});
}

void ReferenceStudy::setVariantValue(std::size_t row, std::size_t group, const std::string &value) {
  if (row >= held->rows.size()) {
    return;
  }
  std::vector<std::optional<Value>> &cells = held->rows[row].cells[1];
  if (group < cells.size() && cells[group].has_value()) {
    cells[group] = cells[group]->assigned(value);
  }
  updateAlternates(kWrites | kReads, {row});
}

std::vector<std::size_t> ReferenceStudy::allRows() const {
  std::vector<std::size_t> rows(held->rows.size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  return rows;
}

void ReferenceStudy::updateAlternates(int flags, const std::vector<std::size_t> &rows) {
  const int remembered = model.current;
  for (const std::size_t row : rows) {
    if (row >= held->rows.size()) {
      continue;
    }
    try {
      updateAlternate(flags, held->rows[row]);
    } catch (const Refusal &) {
      if (mistake == Mistake::ThrowingSwitchesBack) {
        model.current = remembered;
      }
      throw;
    }
  }
  const FlagScope editing(m_isEditing);
  makeCurrent(remembered);
}

void ReferenceStudy::updateAlternate(int flags, Row &row) {
  const FlagScope editing(m_isEditing);
  const int version = model.find(row.name);
  if (version == ReferenceModel::kNone) {
    return;
  }
  makeCurrent(version);
  if ((flags & kWrites) != 0) {
    write(groups(true), row.cells[1]);
    if (mistake != Mistake::OutputsAreNotWritten) {
      write(groups(false), row.cells[0]);
    }
  }
  if ((flags & kReads) != 0) {
    for (std::size_t group = 0; group < groups(false).size() && group < row.cells[0].size(); ++group) {
      const std::optional<Value> value = firstShown(groups(false)[group]);
      if (row.cells[0][group].has_value() && value.has_value()) {
        row.cells[0][group] = value;
      }
    }
    price(row);
  }
}

void ReferenceStudy::write(const std::vector<Group> &sideGroups,
                           const std::vector<std::optional<Value>> &cells) {
  for (std::size_t group = 0; group < sideGroups.size() && group < cells.size(); ++group) {
    for (const Variable &variable : sideGroups[group].variables) {
      if (cells[group].has_value() && resolves(variable)) {
        model.setText(variable.part, variable.path, cells[group]->text());
      }
    }
  }
}

} // namespace StudyProperty
