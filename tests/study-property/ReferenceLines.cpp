#include "tests/study-property/StateLines.h"

#include <set>

// What the reference expects to be seen.

namespace StudyProperty {

std::string textOf(const VariableTexts &variable) {
  return variable.macro + " [" + variable.minimum + ", " + variable.maximum + ", " + variable.step + "; " +
         flag(variable.isLowOn) + " " + variable.low + ", " + flag(variable.isHighOn) + " " + variable.high +
         "]";
}

std::string textOf(const std::optional<double> &cost) {
  return cost.has_value() ? std::to_string(*cost) : "none";
}

namespace {

Texts versionLines(const ReferenceStudy &reference, bool isShown) {
  const ReferenceModel &model = reference.model;
  Texts lines;
  for (const auto &[number, version] : model.versions) {
    std::string line = "version \"" + version.label + "\"";
    line += " after " + (number == 0 ? "none" : model.label(version.previous));
    line += version.isReadOnly ? " read-only" : "";
    line += " study " + std::to_string(version.studyType) + " type " + std::to_string(model.type(number));
    line += isShown && reference.canBeginStudy(number) ? " may begin" : "";
    line += isShown && number == model.current ? " current" : "";
    line += reference.studyOf(version.label) >= 0 ? " has a study" : "";
    for (const int alternate : model.alternates(number)) {
      line += ", " + model.label(alternate);
    }
    lines.push_back(line);
  }
  return lines;
}

Texts partLines(const ReferenceStudy &reference) {
  const ReferenceModel &model = reference.model;
  Texts lines;
  for (int part = 0; part < ReferenceModel::kParts; ++part) {
    if (model.parts[static_cast<std::size_t>(part)].isThere) {
      std::string line = model.parts[static_cast<std::size_t>(part)].name + ":";
      for (const std::string &path : paths()) {
        line += " (" + model.value(model.current, part, path).text() + ")";
      }
      lines.push_back(line);
    }
  }
  return lines;
}

Texts studyLines(const ReferenceStudy &reference) {
  Texts lines;
  for (const auto &[number, study] : reference.studies) {
    lines.push_back("study of \"" + study.base + "\", copy \"" + study.copy + "\", cost \"" + study.cost +
                    "\", target " + std::to_string(study.target) +
                    (study.hasConfiguration ? ", configured" : ""));
    for (const bool isInput : {true, false}) {
      for (const ReferenceStudy::Group &group : study.groups[isInput ? 1 : 0]) {
        std::string line = std::string(isInput ? "  input" : "  output") + " group \"" + group.name + "\", " +
                           reference.displayName(group) + ":";
        for (const ReferenceStudy::Variable &variable : group.variables) {
          line += " " + textOf(VariableTexts{reference.macro(variable), variable.minimum, variable.maximum,
                                             variable.step, variable.lowBound, variable.highBound,
                                             variable.isLowBoundOn, variable.isHighBoundOn});
        }
        lines.push_back(line);
      }
    }
  }
  return lines;
}

Texts attributesInUse(const ReferenceStudy &reference) {
  const ReferenceModel &model = reference.model;
  Texts lines;
  for (const bool isInput : {true, false}) {
    std::set<std::string> names;
    for (const ReferenceStudy::Group &group : reference.groups(isInput)) {
      for (const ReferenceStudy::Variable &variable : group.variables) {
        if (model.has(variable.part, variable.path)) {
          names.insert(reference.macro(variable));
        }
      }
    }
    std::string line = "in use:";
    for (const std::string &name : names) {
      line += " " + name;
    }
    lines.push_back(line);
  }
  return lines;
}

} // namespace

Texts rowLines(const ReferenceStudy &reference) {
  Texts lines;
  const std::size_t count = reference.held->rows.size();
  for (std::size_t row = 0; row < count; ++row) {
    std::string line = "row \"" + reference.held->rows[row].name + "\":";
    for (const bool isInput : {true, false}) {
      for (std::size_t group = 0; group < reference.groups(isInput).size(); ++group) {
        const Value *cell = reference.cell(isInput, row, group);
        line += " (" + (cell == nullptr ? "no cell" : cell->text()) + ")";
      }
      line += isInput ? " |" : "";
    }
    lines.push_back(line + " cost " + textOf(reference.held->rows[row].cost));
  }
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < reference.groups(isInput).size(); ++group) {
      std::string line = "column:";
      for (std::size_t row = 0; row < count; ++row) {
        const Value *cell = reference.cell(isInput, row, group);
        line += " " + std::to_string(cell == nullptr ? 0.0 : cell->standard());
      }
      line += reference.isGroupSameValue(isInput, 0, group) ? ", as the first" : ", not as the first";
      line += reference.isVariableInCostFunction(isInput, group) ? ", priced" : ", not priced";
      lines.push_back(line);
    }
  }
  lines.push_back(std::string(reference.held->hasError ? "a cost error, " : "no cost error, ") +
                  (reference.allVersionsExist() ? "all versions" : "versions are missing"));
  return lines;
}

Texts storedLines(const ReferenceStudy &reference) {
  Texts lines = versionLines(reference, false);
  append(lines, studyLines(reference));
  return lines;
}

Texts stateLines(const ReferenceStudy &reference) {
  Texts lines = versionLines(reference, true);
  append(lines, partLines(reference));
  append(lines, studyLines(reference));
  std::string valid = "valid:";
  for (const std::string &path : paths()) {
    for (const int choice : {0, 1, 2, 3}) {
      valid += flag(reference.isItemValid(path, choice % 2 == 0, choice < 2 ? 1 : 3));
    }
  }
  lines.push_back(valid);
  if (!reference.held.has_value()) {
    lines.emplace_back("nothing is held");
    return lines;
  }
  lines.push_back("held: \"" + reference.study().base + "\"");
  append(lines, attributesInUse(reference));
  append(lines, rowLines(reference));
  return lines;
}

} // namespace StudyProperty
