#include "tests/study-property/ReferenceStudy.h"

#include <algorithm>

// The manager, and what the host tells it.

namespace StudyProperty {

void ReferenceStudy::makeCurrent(int version) {
  if (model.current != version) {
    model.current = version;
    announceVersion(model.label(version));
  }
}

void ReferenceStudy::announceVersion(const std::string &label) {
  const bool isBusy = held.has_value() && (isSolving || m_isEditing);
  if (!isBusy && (held.has_value() ? study().base : "") != label) {
    initializeVersion();
  }
}

void ReferenceStudy::announceRoot() {
  initializeVersion();
}

bool ReferenceStudy::edit(int part, const std::string &path, const std::string &text) {
  const std::string label = model.label(model.current);
  if (!model.has(part, path) || model.versions.at(model.current).isReadOnly || isResult(path)) {
    return false;
  }
  for (const auto &[number, each] : studies) {
    const bool isInputOfIt =
        each.base == label && std::any_of(each.groups[1].begin(), each.groups[1].end(),
                                          [&](const Group &group) { return contains(group, part, path); });
    if (text.empty() && isInputOfIt) {
      return false;
    }
  }
  try {
    model.setText(part, path, text);
  } catch (const Refusal &) {
    return false;
  }
  if ((isSolving && mistake != Mistake::GuardedEditsAreTaken) || !held.has_value()) {
    return true;
  }
  const std::string written = model.value(model.current, part, path).text();
  for (std::size_t group = 0; group < groups(true).size(); ++group) {
    if (contains(groups(true)[group], part, path)) {
      setVariantValue(0, group, written);
    }
  }
  return true;
}

int ReferenceStudy::studyOf(const std::string &label) const {
  for (const auto &[number, each] : studies) {
    if (each.base == label) {
      return number;
    }
  }
  return -1;
}

void ReferenceStudy::initializeVersion() {
  if (held.has_value() && isSolving) {
    return;
  }
  ++m_loads;
  held.reset();
  const int found = studyOf(model.label(model.current));
  if (found < 0) {
    return;
  }
  held.emplace();
  held->study = found;
  construct();
  held->rows = loaded(false);
  if (const int base = model.find(study().base); base != ReferenceModel::kNone) {
    model.current = base;
  }
  updateCostCalculator();
}

void ReferenceStudy::construct() {
  study().hasConfiguration = study().hasConfiguration || model.versions.at(model.current).studyType == 3;
  fix(study());
}

void ReferenceStudy::beginStudy(int type) {
  ReferenceModel::Version &version = model.versions.at(model.current);
  if (version.studyType != 0) {
    return;
  }
  for (int found = studyOf(version.label); found >= 0; found = studyOf(version.label)) {
    studies.erase(found);
  }
  version.studyType = type;
  ++m_loads;
  held.emplace();
  held->study = nextStudy++;
  studies[held->study].base = version.label;
  study().hasConfiguration = type == 3;
  held->rows = loaded(true);
  if (const int base = model.find(study().base); base != model.current) {
    model.current = base;
  }
  study().base = model.label(model.current);
  createCopyVersion(true);
  announceVersion(model.label(model.current));
}

void ReferenceStudy::endStudy(bool deletesVersions) {
  const std::string label = model.label(model.current);
  const int baseline = model.studyBaseline(model.current);
  for (int found = studyOf(label); found >= 0; found = studyOf(label)) {
    studies.erase(found);
  }
  held.reset();
  if (baseline != ReferenceModel::kNone) {
    std::vector<int> doomed = deletesVersions ? model.followers(baseline) : std::vector<int>();
    if (mistake == Mistake::EndingSparesOthers) {
      doomed.erase(std::remove_if(doomed.begin(), doomed.end(),
                                  [this](int version) { return !model.isCase(version); }),
                   doomed.end());
    }
    model.clearStudy(baseline);
    model.versions.at(baseline).isReadOnly = false;
    for (const int follower : model.followers(baseline)) {
      if (!deletesVersions) {
        model.clearStudy(follower);
        model.versions.at(follower).isReadOnly = false;
      }
    }
    model.destroy(doomed);
  }
  announceVersion(model.label(model.current));
}

bool ReferenceStudy::canBeginStudy(int version) const {
  const bool isHeld = held.has_value() && study().base == model.label(version);
  const int type = model.type(version);
  return (isHeld || type == 0 || (type == 3 && !held.has_value())) && !model.isCase(version);
}

void ReferenceStudy::addAttribute(bool isInput, int part, const std::string &path) {
  if (!held.has_value() || groupContaining(isInput, part, path) >= 0) {
    return;
  }
  const int index = addGroup(isInput, part, path);
  if (isInput && model.versions.at(model.current).studyType == 3) {
    Variable &variable = groups(true)[static_cast<std::size_t>(index)].variables.front();
    variable.minimum = model.value(model.current, part, path).text();
    variable.maximum = variable.minimum;
  }
}

bool ReferenceStudy::isItemValid(const std::string &path, bool isInput, int type) const {
  const bool fits = type != 3 || defaultValue(path).kind != Kind::Integer;
  return studyOf(model.label(model.current)) >= 0 && isResult(path) != isInput && fits;
}

} // namespace StudyProperty
